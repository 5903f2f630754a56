/* A library that loads and offers nothing. */

#include "start.h"

BOOL WINAPI Start(HINSTANCE instance, DWORD reason, LPVOID reserved) {
  (void)instance;
  (void)reason;
  (void)reserved;
  return TRUE;
}
