/* wine_statements FILE: runs each statement of the standard input, one a line, on the database as it lies in the
   file, through Windows Installer's own interface, and prints the answer: "= ok" or "= error", the rows that it gives
   with "|" behind each field, and behind a change the rows of all tables. Nothing is committed. Built by the test for
   Windows and run under Wine. */
#include <windows.h>
#include <msi.h>
#include <msiquery.h>
#include <stdio.h>
#include <string.h>

static char text[100000];

static void rows(MSIHANDLE view, const char* mark) {
  MSIHANDLE record;
  while (MsiViewFetch(view, &record) == ERROR_SUCCESS) {
    UINT fields = MsiRecordGetFieldCount(record);
    fputs(mark, stdout);
    for (UINT i = 1; i <= fields; ++i) {
      DWORD size = sizeof text;
      if (MsiRecordGetStringA(record, i, text, &size) == ERROR_SUCCESS) fputs(text, stdout);
      putchar('|');
    }
    putchar('\n');
    MsiCloseHandle(record);
  }
}

static UINT run(MSIHANDLE database, const char* sql, const char* mark, int select) {
  MSIHANDLE view;
  UINT error = MsiDatabaseOpenViewA(database, sql, &view);
  if (error) return error;
  error = MsiViewExecute(view, 0);
  if (!error && select) rows(view, mark);
  MsiViewClose(view);
  MsiCloseHandle(view);
  return error;
}

int main(int argc, char** argv) {
  static char line[100000];
  if (argc != 2) return 2;
  while (fgets(line, sizeof line, stdin)) {
    MSIHANDLE database;
    line[strcspn(line, "\r\n")] = 0;
    if (MsiOpenDatabaseA(argv[1], MSIDBOPEN_TRANSACT, &database)) return 1;
    int select = !_strnicmp(line, "select", 6);
    UINT error = run(database, line, " ", select);
    printf(error ? "= error %u\n" : "= ok\n", error);
    if (!select) {
      run(database, "SELECT * FROM `One`", " One|", 1);
      run(database, "SELECT * FROM `Two`", " Two|", 1);
    }
    puts(".");
    MsiCloseHandle(database);
  }
  return 0;
}
