/* The stub in front of a self-extracting package, original file name "Repacker.exe". Behind the program lie a
   cabinet and sixteen bytes: "SMPLCAB1" and the cabinet's size, low byte first. The switch -nos_o"FOLDER"
   unpacks into FOLDER and shows nothing; -nos_ne means that the unpacked files stay. Exit code 0 when all
   files are there, 1 when something failed, 87 without a folder. */

#include "start.h"

static WCHAR g_folder[MAX_PATH];
static WCHAR g_program[MAX_PATH];
static WCHAR g_cabinet[MAX_PATH];
static char g_buffer[65536];

static BOOL TakeFolder(void) {
  WCHAR before = 0;
  for (const WCHAR* at = Arguments(); *at; before = *at++) {
    if (at[0] != L'-' || at[1] != L'n' || at[2] != L'o' || at[3] != L's' || at[4] != L'_' || at[5] != L'o')
      continue;
    at += 6;
    /* Quotes stand around the folder, or around the whole switch where another program passed it on. */
    WCHAR end = before == L'"' ? L'"' : L' ';
    if (*at == L'"') end = *at++;
    int length = 0;
    while (at[length] && at[length] != end && length < MAX_PATH - 2) {
      g_folder[length] = at[length];
      ++length;
    }
    return length > 0;
  }
  return FALSE;
}

/* Makes every folder of a path but the last part. */
static void MakeFolders(WCHAR* path) {
  for (WCHAR* at = path + 3; *at; ++at) {
    if (*at != L'\\') continue;
    *at = 0;
    CreateDirectoryW(path, NULL);
    *at = L'\\';
  }
}

static UINT CALLBACK OnNotify(PVOID context, UINT what, UINT_PTR first, UINT_PTR second) {
  (void)context;
  (void)second;
  if (what != SPFILENOTIFY_FILEINCABINET) return NO_ERROR;
  FILE_IN_CABINET_INFO_W* entry = (FILE_IN_CABINET_INFO_W*)first;
  for (const WCHAR* at = entry->NameInCabinet; *at; ++at) {
    if (*at == L':' || (at[0] == L'.' && at[1] == L'.')) return FILEOP_ABORT;
  }
  if (lstrlenW(g_folder) + lstrlenW(entry->NameInCabinet) + 2 > MAX_PATH) return FILEOP_ABORT;
  lstrcpyW(entry->FullTargetName, g_folder);
  lstrcatW(entry->FullTargetName, L"\\");
  lstrcatW(entry->FullTargetName, entry->NameInCabinet);
  MakeFolders(entry->FullTargetName);
  return FILEOP_DOIT;
}

/* Copies the cabinet behind this program into a file of its own. */
static BOOL WriteCabinet(void) {
  HANDLE program = CreateFileW(g_program, GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_EXISTING, 0, NULL);
  if (program == INVALID_HANDLE_VALUE) return FALSE;
  LARGE_INTEGER size, at;
  ULONGLONG trailer[2];
  DWORD done = 0;
  BOOL good = GetFileSizeEx(program, &size) && size.QuadPart > 16;
  at.QuadPart = size.QuadPart - 16;
  good = good && SetFilePointerEx(program, at, NULL, FILE_BEGIN) &&
         ReadFile(program, trailer, 16, &done, NULL) && done == 16 && trailer[0] == 0x314241434C504D53ULL &&
         trailer[1] <= (ULONGLONG)at.QuadPart;
  ULONGLONG left = good ? trailer[1] : 0;
  at.QuadPart -= (LONGLONG)left;
  good = good && SetFilePointerEx(program, at, NULL, FILE_BEGIN);
  HANDLE cabinet =
      good ? CreateFileW(g_cabinet, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL) : INVALID_HANDLE_VALUE;
  good = good && cabinet != INVALID_HANDLE_VALUE;
  while (good && left > 0) {
    DWORD part = left < sizeof(g_buffer) ? (DWORD)left : (DWORD)sizeof(g_buffer);
    DWORD written = 0;
    good = ReadFile(program, g_buffer, part, &done, NULL) && done == part &&
           WriteFile(cabinet, g_buffer, part, &written, NULL) && written == part;
    left -= part;
  }
  if (cabinet != INVALID_HANDLE_VALUE) CloseHandle(cabinet);
  CloseHandle(program);
  return good;
}

void Start(void) {
  static WCHAR temp[MAX_PATH];
  if (!TakeFolder()) ExitProcess(87);
  if (!GetModuleFileNameW(NULL, g_program, MAX_PATH) || !GetTempPathW(MAX_PATH, temp) ||
      !GetTempFileNameW(temp, L"rpk", 0, g_cabinet)) {
    ExitProcess(1);
  }
  MakeFolders(g_folder);
  CreateDirectoryW(g_folder, NULL);
  BOOL good = WriteCabinet() && SetupIterateCabinetW(g_cabinet, 0, OnNotify, NULL);
  DeleteFileW(g_cabinet);
  ExitProcess(good ? 0 : 1);
}
