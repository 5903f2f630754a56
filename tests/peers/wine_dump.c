/* wine_dump FILE SQL...: prints the rows of selects as Windows Installer's own interface gives them, fields between
   tabs, streams by their size. Built by the test for Windows and run under Wine. */
#include <windows.h>
#include <msi.h>
#include <msiquery.h>
#include <stdio.h>

static int dump(MSIHANDLE database, const char* sql) {
  MSIHANDLE view, record;
  UINT error = MsiDatabaseOpenViewA(database, sql, &view);
  if (error) return fprintf(stderr, "%s: %u\n", sql, error), 1;
  error = MsiViewExecute(view, 0);
  if (error) return fprintf(stderr, "%s: %u\n", sql, error), 1;
  while (MsiViewFetch(view, &record) == ERROR_SUCCESS) {
    UINT fields = MsiRecordGetFieldCount(record);
    for (UINT i = 1; i <= fields; ++i) {
      static char text[200000];
      DWORD size = sizeof text;
      if (i > 1) putchar('\t');
      if (MsiRecordGetStringA(record, i, text, &size) == ERROR_SUCCESS) {
        fputs(text, stdout);
      } else {
        printf("[%u bytes]", (unsigned)MsiRecordDataSize(record, i));
      }
    }
    putchar('\n');
    MsiCloseHandle(record);
  }
  MsiCloseHandle(view);
  return 0;
}

int main(int argc, char** argv) {
  MSIHANDLE database;
  UINT error = MsiOpenDatabaseA(argv[1], MSIDBOPEN_READONLY, &database);
  int failures = 0;
  if (error) return fprintf(stderr, "open %s: %u\n", argv[1], error), 1;
  for (int i = 2; i < argc; ++i) failures += dump(database, argv[i]);
  MsiCloseHandle(database);
  return failures != 0;
}
