#ifndef KITWRIGHT_PACKAGE_RUN_STATE_H_
#define KITWRIGHT_PACKAGE_RUN_STATE_H_

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "base/text.h"
#include "platform/installer.h"

namespace kw {

/// Names of files, in order, duplicates allowed; absent until the first name is added.
struct FileList {
  std::vector<std::string> names;
  /// Those of them that lay in their folder as something to be packed, and are not the run's to delete.
  std::set<std::string, LessNoCase> kept{};
};
using FileListPtr = std::unique_ptr<FileList>;

/// The change flags of the settings pages: work that a change of source would destroy.
struct ChangeFlags {
  bool ConfigChangedOnAccess = false;
  bool ConfigChangedBeaconry = false;
  bool ConfigChangedEmailScan = false;
  bool ConfigChangedUi = false;
  bool ConfigChangedScan = false;
  bool ConfigChangedUpdate = false;
  bool ConfigChangedRegistry = false;
  bool ConfigChangedSiteList = false;
  bool ConfigChangedBulwark = false;

  bool Any() const {
    return ConfigChangedOnAccess || ConfigChangedBeaconry || ConfigChangedEmailScan || ConfigChangedUi ||
           ConfigChangedScan || ConfigChangedUpdate || ConfigChangedRegistry || ConfigChangedSiteList ||
           ConfigChangedBulwark;
  }
};

/// The state that all pages share, one instance a process. Member names are those of the values themselves.
struct RunState {
  // Filled at entry, then fixed.
  std::unique_ptr<platform::Installer> Installer;
  std::unique_ptr<platform::Installer> InstallerSecond;
  bool EnoughMemory = false;
  bool ProductInstalled = false;
  bool HasConsoleFeature = false;
  bool HasEmailScanFeature = false;
  bool HasOnAccessFeature = false;
  bool HasOnDemandFeature = false;
  bool HasAutoUpdateFeature = false;
  bool AnyFeatureInstalled = false;
  bool ProductIs700 = false;
  std::string ProductInstallDir;

  // Mode and source of the settings.
  bool PackageMode = false;
  bool SaveDifferencesOnly = false;
  bool SettingsFromSystem = false;
  bool SettingsFromFile = false;
  std::string ConfigSourceName;
  std::string ConfigAppDataFolder;
  std::string SettingsFileName;
  std::string ProductLocale = "0000";
  ChangeFlags changes;

  // Folders and files of the package at hand.
  std::string TempFolder;
  std::string SourceFolder;
  std::string UserSourceFolder;
  bool SourceWasExtracted = false;
  std::string DestinationFolder;
  bool DestinationInUse = false;
  std::string SourceMsiPath;
  std::string DestinationMsiPath;
  std::string WorkingMsiPath;
  std::string SourceSetupIniPath;
  std::string DestinationSetupIniPath;
  std::string WorkingSetupIniPath;
  std::string CabDataFolder;
  /// True for a package of level 7.0.0.
  bool PackageIs700 = false;
  std::string PackageLocale;
  bool PackageOptimized = false;
  std::shared_ptr<platform::Database> WorkingDatabase;

  // The companion packages.
  std::shared_ptr<platform::Database> BeaconryDatabase;
  std::string BeaconrySourceFolder;
  std::string BeaconrySourceMsiPath;
  std::string BeaconryWorkingMsiPath;
  std::string BeaconryLocale;
  std::string BulwarkLocale = "0000";
  bool BulwarkIncluded = false;

  // What the run copied.
  FileListPtr DestinationFileList;
  FileListPtr BeaconryFileList;
  FileListPtr BulwarkFileList;
  FileListPtr ConsolePackageFiles;
  /// True once this run put the firewall's program below the destination.
  bool BulwarkProgramCopied = false;

  /// The result of the build, told by the last page.
  bool Succeeded = false;
  /// Title of a started tool's window, kept while it runs.
  std::string ToolWindowTitle;
  /// Calls of RunAndWait that have not returned: handlers whose page may be left and unloaded meanwhile.
  int WaitsForTools = 0;
  /// Calls of MakeUniqueId so far; wraps at 16 bits, never restarts.
  unsigned short UniqueIdCounter = 0;
};

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_RUN_STATE_H_
