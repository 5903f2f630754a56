#include "package/source_package.h"

#include <cstdio>

#include "base/exit_codes.h"
#include "base/text.h"
#include "package/file_rules.h"
#include "package/installer_db.h"

namespace kw {
namespace {

constexpr const char* kDatabase710 = "\\Kte710.msi";
constexpr const char* kDatabase700 = "\\Kte700.msi";
constexpr const char* kSetupIni = "\\Setup.ini";

constexpr const char* kProductUpgradeCode = "{75951FF9-0087-4981-A526-56CB59DA17D9}";
constexpr const char* kOlderProductUpgradeCode = "{0F64050B-7ABB-446C-99CC-CA70A67FFD7D}";
constexpr const char* kFarwatchUpgradeCode = "{50427873-5C9B-11D3-89C6-006008C7D0F2}";

bool BeginsWithDot(const std::string& name) { return name.starts_with('.'); }

}  // namespace

std::string NormalizeFolder(const std::string& typed) {
  const bool removable = (typed.size() > 1 && typed[1] == ':') || CharacterCount(typed) >= 4;
  return removable && typed.ends_with('\\') ? typed.substr(0, typed.size() - 1) : typed;
}

Result<std::vector<platform::FileEntry>> ListFolder(platform::Services& services, const std::string& folder) {
  // "C:" alone would be the current folder of that drive.
  return services.files->List(folder.ends_with(':') ? folder + "\\" : folder);
}

bool HoldsProductDatabase(platform::Services& services, const std::string& folder) {
  return services.files->FileExists(folder + kDatabase710) ||
         services.files->FileExists(folder + kDatabase700);
}

bool IsRepackerExe(platform::Services& services, const std::string& path) {
  const auto version = services.versions->Read(path);
  if (!version.ok() || version->translations.empty()) return false;
  const auto& [language, code_page] = version->translations.front();
  char digits[9];
  std::snprintf(digits, sizeof digits, "%04X%04X", static_cast<unsigned>(language),
                static_cast<unsigned>(code_page));
  const auto table = version->strings.find(digits);
  if (table == version->strings.end()) return false;
  const auto name = table->second.find("OriginalFileName");
  if (name == table->second.end()) return false;
  return StartsWithNoCase(name->second.substr(0, name->second.find('\0')), "Repacker.exe");
}

std::string NewTempPath(platform::Services& services, RunState& run) {
  // A run that was killed leaves its folder; its name comes again where the clock stands still or was put
  // back.
  for (;;) {
    std::string path = services.system->TempFolder() + "\\" + MakeUniqueId(services, run);
    if (!services.files->FolderExists(path) && !services.files->IsLink(path)) return path;
  }
}

Status EnsureTempFolder(platform::Services& services, RunState& run) {
  if (run.TempFolder.empty()) run.TempFolder = NewTempPath(services, run);
  if (services.files->FolderExists(run.TempFolder)) return {};
  return services.files->CreateFolder(run.TempFolder);
}

Result<bool> HoldsVisibleEntries(platform::Services& services, const std::string& folder) {
  KW_ASSIGN_OR_RETURN(const auto entries, ListFolder(services, folder));
  for (const platform::FileEntry& entry : entries) {
    if (!BeginsWithDot(entry.name)) return true;
  }
  return false;
}

bool IsWritableFolder(platform::Services& services, const std::string& folder) {
  const std::string path = folder + "\\write.txt";
  const Result<bool> there = FileIsThere(services, path);
  // A file that cannot be looked at may be the user's.
  if (!there.ok() || *there) return there.ok();
  services.files->WriteFile(path, "").IgnoreError();
  const bool writable = services.files->FileExists(path);
  services.files->DeleteFile(path, false).IgnoreError();
  return writable;
}

void ExtractSource(platform::Services& services, RunState& run, ui::FormHost& host,
                   const std::string& setup_path) {
  run.UserSourceFolder = run.SourceFolder;
  run.SourceFolder = NewTempPath(services, run);
  run.SourceWasExtracted = true;
  RunAndWait(services, run, host, setup_path + " -nos_ne -nos_o\"" + run.SourceFolder + "\"",
             platform::WindowStyle::kHidden);
}

bool DetermineLevel(platform::Services& services, RunState& run) {
  run.PackageIs700 = !services.files->FileExists(run.SourceFolder + kDatabase710);
  const char* name = run.PackageIs700 ? kDatabase700 : kDatabase710;
  if (!services.files->FileExists(run.SourceFolder + name)) return false;
  run.SourceMsiPath = run.SourceFolder + name;
  run.DestinationMsiPath = run.DestinationFolder + name;
  run.WorkingMsiPath = run.TempFolder + name;
  run.SourceSetupIniPath = run.SourceFolder + kSetupIni;
  run.DestinationSetupIniPath = run.DestinationFolder + kSetupIni;
  return true;
}

Status CopyDatabase(platform::Services& services, RunState& run) {
  KW_RETURN_IF_ERROR(services.files->CopyFile(run.SourceMsiPath, run.WorkingMsiPath, false));
  return MakeWritable(services, run.WorkingMsiPath);
}

Status OpenWorkingDatabase(RunState& run) {
  KW_ASSIGN_OR_RETURN(run.WorkingDatabase,
                      run.Installer->OpenDatabase(run.WorkingMsiPath, platform::OpenMode::kDirect));
  return {};
}

Status LowerCaseWorkingFileNames(platform::Services& services, RunState& run) {
  // In direct mode every one of thousands of rows would go to the disk by itself.
  run.WorkingDatabase.reset();
  {
    KW_ASSIGN_OR_RETURN(const std::shared_ptr<platform::Database> database,
                        run.Installer->OpenDatabase(run.WorkingMsiPath, platform::OpenMode::kTransact));
    KW_RETURN_IF_ERROR(InstallerDb(services, run.Installer, database).LowerCaseFileNames());
    KW_RETURN_IF_ERROR(database->Commit());
  }
  return OpenWorkingDatabase(run);
}

Result<std::string> UpgradeCodeRefusal(platform::Services& services, RunState& run) {
  KW_ASSIGN_OR_RETURN(const auto row,
                      InstallerDb::Working(services, run)
                          .QuerySql("select `Value` from `Property` where `Property` = 'UpgradeCode'"));
  const std::string code = row ? row->StringData(1) : std::string();
  if (code == kProductUpgradeCode) return std::string();
  if (code == kOlderProductUpgradeCode)
    return std::string("This version of Kestrane is not supported for use with this version of Kitwright.");
  if (code == kFarwatchUpgradeCode)
    return std::string("This version of Farwatch is not supported for use with this version of Kitwright.");
  return std::string("Only Kestrane Enterprise .MSI files can be customized.");
}

Status PrepareWorkingFiles(platform::Services& services, RunState& run) {
  run.CabDataFolder = run.TempFolder + "\\CabData";
  run.WorkingSetupIniPath = run.TempFolder + kSetupIni;
  KW_RETURN_IF_ERROR(services.files->CreateFolder(run.CabDataFolder));
  KW_RETURN_IF_ERROR(services.files->CopyFile(run.SourceSetupIniPath, run.WorkingSetupIniPath, true));
  return MakeWritable(services, run.WorkingSetupIniPath);
}

Status ExtractCabinets(platform::Services& services, RunState& run, ui::FormHost& host) {
  KW_RETURN_IF_ERROR(run.WorkingDatabase->Export("Cabs", run.TempFolder, "Cabs.idt"));
  const std::string cabinets = run.TempFolder + "\\Cabs";
  if (!services.files->FolderExists(cabinets)) return {};  // the table names no cabinet
  KW_ASSIGN_OR_RETURN(const auto entries, services.files->List(cabinets));
  for (const platform::FileEntry& entry : entries) {
    if (BeginsWithDot(entry.name)) continue;
    const int code = RunAndWait(
        services, run, host, "CabArc X " + cabinets + "\\" + entry.name + " *.* " + run.CabDataFolder + "\\",
        platform::WindowStyle::kHidden);
    // What it says of the cabinet does not matter here. A part of the package must not be taken for the
    // whole: without any file no cabinet can be made later, which is told.
    if (code == kExitMachineFailed) {
      KW_RETURN_IF_ERROR(services.files->DeleteFolder(run.CabDataFolder, true));
      return services.files->CreateFolder(run.CabDataFolder);
    }
    // One that was cut off has said nothing.
    if (WasCutOff(code)) {
      return {kErrorFunctionFailed, "CabArc was ended before it had unpacked the package's files."};
    }
  }
  return {};
}

void BuildConsolePackageFileList(RunState& run) {
  std::vector<std::string> names = {"CUP300.OVP", "CONTACT.TXT", "EXAMPLE.SMS", "Install.pkg",
                                    "PkgCatalog.z"};
  const std::vector<std::string> level =
      run.PackageIs700 ? std::vector<std::string>{"KT700DET.TXS", "KTE700.OVP"}
                       : std::vector<std::string>{"SIGTERMS.TXT", "README.TXT", "KT710DET.TXS",
                                                  "KTE710.OVP",   "TXVCHK.SCV", "PACKING.LST"};
  names.insert(names.end(), level.begin(), level.end());
  run.ConsolePackageFiles = std::make_unique<FileList>(FileList{std::move(names)});
}

}  // namespace kw
