#ifndef KITWRIGHT_PACKAGE_SOURCE_PACKAGE_H_
#define KITWRIGHT_PACKAGE_SOURCE_PACKAGE_H_

#include <functional>
#include <string>
#include <vector>

#include "package/run_state.h"
#include "platform/services.h"
#include "ui/form_host.h"

namespace kw {

// The steps by which a source package becomes the working copy of a run. None of them shows a message or asks
// a question; the page that takes them does.

/// A folder as typed, without its trailing "\" where the second character is ":" or the text has at least
/// four characters: "C:\" gives "C:", to which names with their leading "\" are appended.
std::string NormalizeFolder(const std::string& typed);
/// The entries of a folder that may be a bare drive, "C:".
Result<std::vector<platform::FileEntry>> ListFolder(platform::Services& services, const std::string& folder);

/// True if `folder` holds a product database of either level.
bool HoldsProductDatabase(platform::Services& services, const std::string& folder);
/// True if the program's version information names the self-extractor's original file. All failures give
/// False.
bool IsRepackerExe(platform::Services& services, const std::string& path);
/// Makes a new path below the system's temporary folder; nothing is created.
std::string NewTempPath(platform::Services& services, RunState& run);
/// Makes sure that the run has a temp folder.
Status EnsureTempFolder(platform::Services& services, RunState& run);
/// True if the folder holds an entry whose name does not begin with ".".
Result<bool> HoldsVisibleEntries(platform::Services& services, const std::string& folder);
/// Tries to write a file "write.txt" into the folder and removes it; one that is already there is proof
/// enough.
bool IsWritableFolder(platform::Services& services, const std::string& folder);
/// Has the self-extractor unpack itself into a new temporary folder, which becomes the source.
void ExtractSource(platform::Services& services, RunState& run, ui::FormHost& host,
                   const std::string& setup_path);
/// Finds the level by the database's name (7.1.0 first) and sets the three paths of the database. False when
/// the source holds neither.
bool DetermineLevel(platform::Services& services, RunState& run);
/// Copies the source's database into the temp folder and makes the copy writable.
Status CopyDatabase(platform::Services& services, RunState& run);
/// Opens the working copy in direct mode as WorkingDatabase.
Status OpenWorkingDatabase(RunState& run);
/// Puts the names of all files of the open working copy into lower case, in one commit.
Status LowerCaseWorkingFileNames(platform::Services& services, RunState& run);
/// What the property "UpgradeCode" says of the package: "" for one that may be customised, otherwise the
/// words of the refusal.
Result<std::string> UpgradeCodeRefusal(platform::Services& services, RunState& run);
/// Creates CabDataFolder and the writable working copy of Setup.ini.
Status PrepareWorkingFiles(platform::Services& services, RunState& run);
/// Exports the package's cabinets and unpacks each into CabDataFolder with the cabinet tool, whose exit codes
/// are not looked at.
Status ExtractCabinets(platform::Services& services, RunState& run, ui::FormHost& host);
/// Fills ConsolePackageFiles with the names of the side files that a console package knows, by level.
void BuildConsolePackageFileList(RunState& run);

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_SOURCE_PACKAGE_H_
