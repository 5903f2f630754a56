#ifndef KITWRIGHT_PACKAGE_FILE_RULES_H_
#define KITWRIGHT_PACKAGE_FILE_RULES_H_

#include <optional>
#include <string>
#include <string_view>

#include "package/run_state.h"
#include "platform/services.h"
#include "ui/form_host.h"

namespace kw {

/// What ValidatePath checks, as bits of its in-out argument.
enum PathCheck : unsigned {
  kCheckCharacters = 1,
  kCheckLocal = 2,
  kCheckUnc = 4,
  kCheckFileExists = 8,
  kCheckFolderExists = 16,
  kCheckFileNotEmpty = 32,
  kCheckNotRoot = 64,
};

bool HasForbiddenCharacter(std::string_view path);
bool IsLocalPath(std::string_view path);
bool IsUncPath(std::string_view path);

/// Checks `path` by the bits of `checks`. They come back as those that hold: characters, form and root in any
/// case, file and folder only where they were asked for and the tests before them passed. The first failure
/// is told in a plain box that begins with `label`, unless `silent`.
bool ValidatePath(platform::Services& services, std::string_view label, const std::string& path,
                  unsigned& checks, bool silent);
/// The same with fixed checks and a box.
bool ValidatePath(platform::Services& services, std::string_view label, const std::string& path,
                  unsigned checks);

/// Whether there is a file; an error where the system cannot tell, so that a file which cannot be looked at
/// is not taken for one that is missing.
Result<bool> FileIsThere(platform::Services& services, const std::string& path);

/// The platform's folder dialog; "" when cancelled.
std::string BrowseForFolder(platform::Services& services, const std::string& title,
                            const std::string& start_folder);
/// Creates every missing folder of the path, ignoring all errors; the caller looks whether it is there.
void MakeFolderPath(platform::Services& services, const std::string& path);
/// Makes a folder of the run's own below its temp folder or the destination; one that is there is kept. A
/// link in its place is removed, so that nothing is written where it points.
Status MakeOwnFolder(platform::Services& services, const std::string& path);
/// Clears the read-only attribute of a file that has it; a missing file is none.
Status MakeWritable(platform::Services& services, const std::string& path);
/// Copies over the file `to`, also when that is read-only; the copy takes the attribute of `from`. A link
/// that has the name is replaced.
Status CopyOver(platform::Services& services, const std::string& from, const std::string& to);
/// The same, but the copy can be written to whatever `from` is.
Status CopyWritable(platform::Services& services, const std::string& from, const std::string& to);
/// True for two spellings of one file, as far as their folders and names tell.
bool IsSameFile(platform::Services& services, const std::string& one, const std::string& two);
/// Copies a file into a folder, asking Retry or Cancel on failures, and adds its upper-cased name to `list`.
/// A link that has the name is replaced. False when the user gave up.
bool CopyFileToFolder(platform::Services& services, const std::string& path, const std::string& folder,
                      FileListPtr& list);

/// A profile value of at most 254 characters.
std::string ReadIniValue(platform::Services& services, const std::string& ini_path, std::string_view section,
                         std::string_view key, std::string_view fallback);
/// Writes a profile value, its carriage returns and line feeds turned into blanks; no value deletes the key,
/// no key the section.
Status WriteIniValue(platform::Services& services, const std::string& ini_path, std::string_view section,
                     std::optional<std::string_view> key, std::optional<std::string_view> value);
/// A REG_SZ value of at most 512 bytes, up to its first NUL; "" on any failure.
std::string ReadRegistryString(platform::Services& services, platform::Hive hive, std::string_view key_path,
                               std::string_view value_name);

/// Starts a command line and waits for its end while window events go on; the exit code, or -1 without a word
/// when it cannot be started: each caller has its own test of success and its own message. When the program
/// is ended meanwhile, what the other one adds to the staging branch and the temp folder is taken away behind
/// it, and the result is 0, for nobody is there to be told.
int RunAndWait(platform::Services& services, RunState& run, ui::FormHost& host,
               const std::string& command_line, platform::WindowStyle style);

/// True for the result of RunAndWait when the program did not end by itself: a signal or an exception ended
/// it.
inline bool WasCutOff(int exit_code) { return exit_code > 128 || exit_code < -1; }

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_FILE_RULES_H_
