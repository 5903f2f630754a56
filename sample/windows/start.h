#ifndef KITWRIGHT_SAMPLE_WINDOWS_START_H_
#define KITWRIGHT_SAMPLE_WINDOWS_START_H_

/* What the small programs of the sample packages share. They are linked without a run-time library, so that a
   package of a hundred files stays small. */

#define WIN32_LEAN_AND_MEAN
// The second header needs the first.
// clang-format off
#include <windows.h>
#include <setupapi.h>
// clang-format on

/* The arguments of this process: the command line behind the program's name, blanks skipped. */
static inline const WCHAR* Arguments(void) {
  const WCHAR* text = GetCommandLineW();
  if (*text == L'"') {
    for (++text; *text && *text != L'"'; ++text) {
    }
    if (*text) ++text;
  } else {
    while (*text && *text != L' ') ++text;
  }
  while (*text == L' ') ++text;
  return text;
}

#endif
