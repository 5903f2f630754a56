/* In C, since a C++ function has an exception handler of the compiler's own and a function can have but one.
 */

#include "platform/windows/guarded_call.h"

#include <windows.h>

static __thread unsigned long caught;

/* Asked by the system for the guarded range below: every exception ends it. Referenced from assembly alone.
 */
__attribute__((used)) static long KwCatchAll(EXCEPTION_POINTERS* exception, void* frame) {
  (void)frame;
  caught = exception->ExceptionRecord->ExceptionCode;
  return EXCEPTION_EXECUTE_HANDLER;
}

__attribute__((noinline)) unsigned long KwGuardedCall(void (*action)(void* context), void* context) {
  caught = 0;
  /* What the compiler calls a try block elsewhere: the system's own handler with a table of one range, whose
     filter is the function above and which goes on behind the range. */
  __asm__ __volatile__(
      "\t.seh_handler __C_specific_handler, @except\n"
      "\t.seh_handlerdata\n"
      "\t.long 1\n"
      "\t.rva .Lkw_guard_begin, .Lkw_guard_end, KwCatchAll, .Lkw_guard_end\n"
      "\t.text\n"
      ".Lkw_guard_begin:\n" ::
          : "memory");
  action(context);
  __asm__ __volatile__("\tnop\n.Lkw_guard_end: nop\n" ::
                           : "memory", "rbx", "rsi", "rdi", "r12", "r13", "r14", "r15");
  return caught;
}
