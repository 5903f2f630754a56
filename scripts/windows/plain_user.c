// plain_user PROGRAM [ARGUMENT...]: runs a program as the same user without the rights of administrators.
#include <stdio.h>
#include <windows.h>

static int Failed(const char* call) { return fprintf(stderr, "%s: error %lu\n", call, GetLastError()), 99; }

int wmain(void) {
  BYTE administrators[SECURITY_MAX_SID_SIZE];
  DWORD size = sizeof administrators, code = 99;
  HANDLE token, plain;
  if (!CreateWellKnownSid(WinBuiltinAdministratorsSid, NULL, administrators, &size)) return Failed("CreateWellKnownSid");
  SID_AND_ATTRIBUTES denied = {administrators, 0};
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &token)) return Failed("OpenProcessToken");
  if (!CreateRestrictedToken(token, 0, 1, &denied, 0, NULL, 0, NULL, &plain)) return Failed("CreateRestrictedToken");
  // What follows the first word of the command line, which has no blanks.
  wchar_t* command = wcschr(GetCommandLineW(), L' ');
  if (!command) return fputs("usage: plain_user PROGRAM [ARGUMENT...]\n", stderr), 98;
  while (*command == L' ') ++command;
  STARTUPINFOW start = {.cb = sizeof start, .dwFlags = STARTF_USESTDHANDLES};
  start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  start.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
  start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started;
  if (!CreateProcessAsUserW(plain, NULL, command, NULL, NULL, TRUE, 0, NULL, NULL, &start, &started)) {
    return Failed("CreateProcessAsUser");
  }
  WaitForSingleObject(started.hProcess, INFINITE);
  GetExitCodeProcess(started.hProcess, &code);
  return (int)code;
}
