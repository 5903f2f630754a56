/* tool.exe: leaves a trace. Appends its arguments as a line to the file named by the environment variable
   SAMPLE_TRACE, else to C:\sample-trace.txt, so that one sees which programs an installation ran, and in what
   order. */

#include "start.h"

void Start(void) {
  static WCHAR path[MAX_PATH];
  static char line[4096];
  DWORD length = GetEnvironmentVariableW(L"SAMPLE_TRACE", path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) lstrcpyW(path, L"C:\\sample-trace.txt");
  int size = WideCharToMultiByte(CP_UTF8, 0, Arguments(), -1, line, sizeof(line) - 2, NULL, NULL);
  if (size <= 0) ExitProcess(2);
  line[size - 1] = '\r';
  line[size] = '\n';
  HANDLE file =
      CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ, NULL, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
  if (file == INVALID_HANDLE_VALUE) ExitProcess(1);
  DWORD written = 0;
  BOOL good = WriteFile(file, line, (DWORD)size + 1, &written, NULL) && written == (DWORD)size + 1;
  CloseHandle(file);
  ExitProcess(good ? 0 : 1);
}
