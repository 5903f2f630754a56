// hold_files FILE...: has files open for itself alone. Prints "held" when it has them, and goes on until it is ended.
#include <stdio.h>
#include <windows.h>

int wmain(int argc, wchar_t** argv) {
  for (int i = 1; i < argc; ++i) {
    if (CreateFileW(argv[i], GENERIC_READ, 0, NULL, OPEN_EXISTING, 0, NULL) == INVALID_HANDLE_VALUE) {
      fprintf(stderr, "file %d: error %lu\n", i, GetLastError());
      return 1;
    }
  }
  puts("held");
  fflush(stdout);
  Sleep(INFINITE);
  return 0;
}
