#include "package/clean_up.h"

#include <string>

namespace kw {
namespace {

constexpr const char* kCouldNotRemove =
    "Could not remove temporary files or folders. This may be because you have the files or folders open in "
    "another program.";

/// Name under which the firewall's program lies in the destination. It is in no list, since the console
/// package must not name it.
constexpr const char* kBulwarkProgram = "Bulwark.EXE";

void TellUnless(platform::Services& services, const Status& removed) {
  if (!removed.ok()) services.dialogs->Message(kCouldNotRemove);
}

bool IsEmptyFolder(platform::Services& services, const std::string& folder) {
  if (!services.files->FolderExists(folder)) return false;
  const auto entries = services.files->List(folder);
  return entries.ok() && entries->empty();
}

void DeleteListed(platform::Services& services, const FileListPtr& list, const std::string& folder) {
  if (!list) return;
  for (const std::string& name : list->names) {
    if (!list->kept.contains(name)) services.files->DeleteFile(folder + "\\" + name, true).IgnoreError();
  }
}

void DeleteFolderIfEmpty(platform::Services& services, const std::string& folder) {
  if (IsEmptyFolder(services, folder)) services.files->DeleteFolder(folder, true).IgnoreError();
}

}  // namespace

void CleanUpRun(platform::Services& services, RunState& run) {
  ClearStagingBranches(services, run);
  run.DestinationFileList.reset();
  run.BeaconryFileList.reset();
  run.BulwarkFileList.reset();
  run.BulwarkProgramCopied = false;
  run.WorkingDatabase.reset();
  run.BeaconryDatabase.reset();
  run.ConsolePackageFiles.reset();
  if (!run.WorkingMsiPath.empty()) {
    const Status deleted = services.files->DeleteFile(run.WorkingMsiPath, false);
    run.WorkingMsiPath.clear();
    TellUnless(services, deleted);
  }
  if (!run.TempFolder.empty()) {
    const Status deleted = services.files->DeleteFolder(run.TempFolder, true);
    if (deleted.number() != kErrorPathNotFound) TellUnless(services, deleted);
    if (deleted.ok()) run.TempFolder.clear();
  }
  RemoveExtractedSource(services, run);
}

void RemoveExtractedSource(platform::Services& services, RunState& run) {
  if (!run.SourceWasExtracted) return;
  const Status deleted = services.files->DeleteFolder(run.SourceFolder, true);
  run.SourceFolder = run.UserSourceFolder;
  run.SourceWasExtracted = false;
  TellUnless(services, deleted);
}

void UndoDestination(platform::Services& services, RunState& run) {
  const std::string beaconry = run.DestinationFolder + "\\BCN";
  const std::string bulwark = run.DestinationFolder + "\\BWK";
  if (run.BeaconryFileList) {
    DeleteListed(services, run.BeaconryFileList, beaconry);
    DeleteFolderIfEmpty(services, beaconry);
  }
  if (run.BulwarkFileList || run.BulwarkProgramCopied) {
    DeleteListed(services, run.BulwarkFileList, bulwark);
    if (run.BulwarkProgramCopied)
      services.files->DeleteFile(bulwark + "\\" + kBulwarkProgram, true).IgnoreError();
    DeleteFolderIfEmpty(services, bulwark);
  }
  if (run.DestinationFileList) {
    DeleteListed(services, run.DestinationFileList, run.DestinationFolder);
    const std::string catalogue = run.DestinationFolder + "\\PkgCatalog.z";
    if (services.files->FileExists(catalogue)) services.files->DeleteFile(catalogue, false).IgnoreError();
  }
  if (run.DestinationInUse) DeleteFolderIfEmpty(services, run.DestinationFolder);
}

void DiscardDestination(platform::Services& services, RunState& run) {
  if (!run.DestinationInUse || !services.files->FolderExists(run.DestinationFolder)) return;
  UndoDestination(services, run);
  run.DestinationInUse = false;
}

}  // namespace kw
