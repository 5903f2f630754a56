#ifndef KITWRIGHT_PLATFORM_SHARED_LIBRARY_ABI_H_
#define KITWRIGHT_PLATFORM_SHARED_LIBRARY_ABI_H_

/* How the makers' closed libraries are called: plain C functions under their exported names, found in a
   shared object NAME.so on the embedded machine and in NAME.dll on Windows. A stand-in includes this header,
   so that the compiler checks its functions against the calls.

   `char16_t` text is UTF-16 and `char` text is in the machine's 8-bit code page, both with a terminating
   zero. Texts belong to the caller and live for the call, but for a result, which belongs to the library and
   lives until the next call of the same function. Paths are Windows paths. Calls come on one thread. The
   library runs in the wizard's process: it finds the machine's folder and the current folder as every program
   of the machine does (MachinePaths::OfThisProcess). */

#include <stdint.h>
#include <uchar.h>

#ifdef _WIN32
#define KITWRIGHT_EXPORT __declspec(dllexport)
#else
#define KITWRIGHT_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Root keys, with the system's numbers. */
#define KITWRIGHT_HKEY_CURRENT_USER ((uintptr_t)0x80000001u)
#define KITWRIGHT_HKEY_LOCAL_MACHINE ((uintptr_t)0x80000002u)

/* An open key on the embedded machine, where REG_SHCopyKey is given the address of one. On Windows it is
   given the system's own handle. */
typedef struct KitwrightOpenKey {
  uintptr_t root;
  const char16_t* path; /* below the root, without it */
} KitwrightOpenKey;

/* Every library may export it: the number of the error that the last call of any other function raised, 0
   when that call ended normally. It stands for what a caller sees as a failed call and not as a result; a
   library that does not export it never raises. */
KITWRIGHT_EXPORT int LastCallRaised(void);

/* zedutil */
KITWRIGHT_EXPORT int IsAdmin(void);
KITWRIGHT_EXPORT int REG_SHDeleteKey(uintptr_t root, const char16_t* subkey);
KITWRIGHT_EXPORT int REG_SHDeleteEmptyKey(uintptr_t root, const char16_t* subkey);
KITWRIGHT_EXPORT int REG_SHDeleteEmptyKeyEx(uintptr_t root, const char16_t* subkey);
KITWRIGHT_EXPORT int REG_SHCopyKey(uintptr_t root, const char16_t* subkey, const void* open_destination_key,
                                   int zero);
KITWRIGHT_EXPORT int ConvertRegFile(const char16_t* path, int zero);
/* File mode (`file` 1): `length` is 0, `input` and `output` are char16_t paths. Text mode (`file` 0): both
   are the same char buffer of `length` characters, changed in place, whose length stays. */
KITWRIGHT_EXPORT int EncryptDecrypt(int encrypt, int file, int length, const void* input, void* output);

/* TxMailScan; `window` may be null. */
KITWRIGHT_EXPORT int Emal_ConfigZED(void* window, int one, int mode, int flush);

/* TxPanelLib */
KITWRIGHT_EXPORT int EditSiteList(void* window, int zero, const char* text_zero, const char16_t* help_path);

/* TxHelpLib */
KITWRIGHT_EXPORT int InitializeHtmlHelpPath(const char16_t* context);
KITWRIGHT_EXPORT const char16_t* GetHtmlHelpPath(void);

/* TxUnzip */
KITWRIGHT_EXPORT int TxUnzip(const char* archive, const char* folder);

/* bulwarkcfg */
KITWRIGHT_EXPORT int BWKExtractInstallerFilesA(const char* installer, const char* folder);
/* `install_folder` may be null. */
KITWRIGHT_EXPORT int BWKCreateInstallerA(const char* installer, const char* preferences,
                                         const char* install_folder, int fourth, int fifth);

#ifdef __cplusplus
}
#endif

#endif /* KITWRIGHT_PLATFORM_SHARED_LIBRARY_ABI_H_ */
