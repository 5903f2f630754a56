/* What Windows Installer's own interface makes of a database. Built by the tests for Windows and run under Wine.

     wine_dump FILE SQL...          the rows of selects, fields between tabs, streams by their size
     wine_dump FILE --all           the rows of every table, each behind the table's name
     wine_dump FILE --export FOLDER every table as a text file, streams beside them, for --import
     wine_dump FILE --import FOLDER [SUMMARY]
                                    makes a new database of such a folder, with the summary information of another */
#include <windows.h>
#include <msi.h>
#include <msiquery.h>
#include <stdio.h>
#include <string.h>

static char text[4000000];

static int failed(const char* what, UINT error) { return fprintf(stderr, "%s: %u\n", what, error), 1; }

static int dump(MSIHANDLE database, const char* sql, const char* before) {
  MSIHANDLE view, record;
  UINT error = MsiDatabaseOpenViewA(database, sql, &view);
  if (error) return failed(sql, error);
  error = MsiViewExecute(view, 0);
  if (error) return failed(sql, error);
  while (MsiViewFetch(view, &record) == ERROR_SUCCESS) {
    UINT fields = MsiRecordGetFieldCount(record);
    fputs(before, stdout);
    for (UINT i = 1; i <= fields; ++i) {
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

/* The names of all tables, with one for the summary where it is to be exported too. */
static int tables(MSIHANDLE database, char names[][80], int most) {
  MSIHANDLE view, record;
  int count = 0;
  if (MsiDatabaseOpenViewA(database, "SELECT `Name` FROM `_Tables`", &view) || MsiViewExecute(view, 0)) return -1;
  while (count < most && MsiViewFetch(view, &record) == ERROR_SUCCESS) {
    DWORD size = 80;
    MsiRecordGetStringA(record, 1, names[count++], &size);
    MsiCloseHandle(record);
  }
  MsiCloseHandle(view);
  return count;
}

static int each_table(MSIHANDLE database, const char* folder) {
  static char names[400][80];
  int count = tables(database, names, 400), failures = 0;
  if (count <= 0) return failed("_Tables", 0);
  for (int i = 0; i < count; ++i) {
    char words[300];
    if (folder) {
      snprintf(words, sizeof words, "%s.idt", names[i]);
      UINT error = MsiDatabaseExportA(database, names[i], folder, words);
      if (error) failures += failed(names[i], error);
    } else {
      char before[100];
      snprintf(words, sizeof words, "SELECT * FROM `%s`", names[i]);
      snprintf(before, sizeof before, "%s\t", names[i]);
      failures += dump(database, words, before);
    }
  }
  if (folder) {
    UINT error = MsiDatabaseExportA(database, "_SummaryInformation", folder, "_SummaryInformation.idt");
    if (error) failures += failed("_SummaryInformation", error);
  }
  return failures;
}

/* Wine's exported summary information lacks its numbers, and without them no package can be installed. */
static int copy_summary(const char* from, MSIHANDLE to) {
  MSIHANDLE old, new;
  int failures = 0;
  UINT error = MsiGetSummaryInformationA(0, from, 0, &old);
  if (error) return failed(from, error);
  error = MsiGetSummaryInformationA(to, NULL, 20, &new);
  if (error) return failed("the new summary", error);
  for (UINT property = 1; property < 20; ++property) {
    UINT type = VT_EMPTY;
    INT number = 0;
    FILETIME time;
    DWORD size = sizeof text;
    error = MsiSummaryInfoGetPropertyA(old, property, &type, &number, &time, text, &size);
    if (!error && type == VT_EMPTY) continue;
    if (!error) error = MsiSummaryInfoSetPropertyA(new, property, type, number, &time, text);
    if (error) failures += failed("a property of the summary", error);
  }
  error = MsiSummaryInfoPersist(new);
  if (error) failures += failed("the summary", error);
  MsiCloseHandle(new);
  MsiCloseHandle(old);
  return failures;
}

static int import(const char* file, const char* folder, const char* summary) {
  MSIHANDLE database;
  WIN32_FIND_DATAA found;
  char pattern[MAX_PATH];
  int failures = 0;
  UINT error = MsiOpenDatabaseA(file, MSIDBOPEN_CREATE, &database);
  if (error) return failed(file, error);
  snprintf(pattern, sizeof pattern, "%s\\*.idt", folder);
  HANDLE search = FindFirstFileA(pattern, &found);
  if (search == INVALID_HANDLE_VALUE) return failed(pattern, GetLastError());
  do {
    error = MsiDatabaseImportA(database, folder, found.cFileName);
    if (error) failures += failed(found.cFileName, error);
  } while (FindNextFileA(search, &found));
  FindClose(search);
  if (summary) failures += copy_summary(summary, database);
  error = MsiDatabaseCommit(database);
  if (error) failures += failed("commit", error);
  MsiCloseHandle(database);
  return failures;
}

int main(int argc, char** argv) {
  MSIHANDLE database;
  int failures = 0;
  if ((argc == 4 || argc == 5) && strcmp(argv[2], "--import") == 0) return import(argv[1], argv[3], argv[4]) != 0;
  UINT error = MsiOpenDatabaseA(argv[1], MSIDBOPEN_READONLY, &database);
  if (error) return failed(argv[1], error);
  if (argc == 3 && strcmp(argv[2], "--all") == 0) {
    failures = each_table(database, NULL);
  } else if (argc == 4 && strcmp(argv[2], "--export") == 0) {
    failures = each_table(database, argv[3]);
  } else {
    for (int i = 2; i < argc; ++i) failures += dump(database, argv[i], "");
  }
  MsiCloseHandle(database);
  return failures != 0;
}
