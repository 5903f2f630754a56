#ifndef KITWRIGHT_PLATFORM_WINDOWS_GUARDED_CALL_H_
#define KITWRIGHT_PLATFORM_WINDOWS_GUARDED_CALL_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Calls `action(context)`. When an exception of the system goes through it (a memory fault in a closed
   library, an error that it raises), the call is given up and the exception's code is the result; otherwise
   0. No object with a destructor may live in what is given up. */
unsigned long KwGuardedCall(void (*action)(void* context), void* context);

#ifdef __cplusplus
}
#endif

#endif /* KITWRIGHT_PLATFORM_WINDOWS_GUARDED_CALL_H_ */
