#ifndef KITWRIGHT_PLATFORM_WINDOWS_SYSTEM_HEADERS_H_
#define KITWRIGHT_PLATFORM_WINDOWS_SYSTEM_HEADERS_H_

// The system's own header, for the source files of this folder. It turns plain names into macros for the
// calls' 16-bit forms; the names that interfaces of the project bear are taken back, and the forms are named
// in full.

// The second stands on the first.
// clang-format off
#include <windows.h>
#include <msi.h>
// clang-format on

#undef CopyFile
#undef DeleteFile

#endif  // KITWRIGHT_PLATFORM_WINDOWS_SYSTEM_HEADERS_H_
