#ifndef KITWRIGHT_SHELL_PACKAGE_TEST_SUPPORT_H_
#define KITWRIGHT_SHELL_PACKAGE_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/testing/fake_machine.h"

namespace kw::testing {

/// Writes packages of the product into a machine's files: a database with the tables that the wizard touches,
/// and its side files.
class PackageWriter {
 public:
  explicit PackageWriter(platform::testing::FakeMachine& machine) : machine_(machine) {}

  /// Properties of the next package; an empty value leaves the row out.
  std::map<std::string, std::string> properties = {{"UpgradeCode", "{75951FF9-0087-4981-A526-56CB59DA17D9}"},
                                                   {"txlocaleid", "0409"},
                                                   {"INSTALLLEVEL", "100"},
                                                   {"ProductVersion", "7.1.0"}};

  /// The database at `path`, with two files in one cabinet.
  void WriteDatabase(const std::string& path) {
    auto installer = machine_.services.create_installer();
    ASSERT_TRUE(installer.ok());
    machine_.files.AddFile(path, "");  // with its folder
    auto opened = (*installer)->OpenDatabase(path, platform::OpenMode::kCreate);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    database_ = *opened;
    Run("CREATE TABLE `Property` (`Property` CHAR(72) NOT NULL, `Value` CHAR(0) NOT NULL LOCALIZABLE PRIMARY "
        "KEY `Property`)");
    Run("CREATE TABLE `Feature` (`Feature` CHAR(38) NOT NULL, `Feature_Parent` CHAR(38), `Title` CHAR(64) "
        "LOCALIZABLE, `Description` CHAR(255) LOCALIZABLE, `Display` SHORT, `Level` SHORT NOT NULL, "
        "`Directory_` CHAR(72), `Attributes` SHORT NOT NULL PRIMARY KEY `Feature`)");
    Run("CREATE TABLE `Directory` (`Directory` CHAR(72) NOT NULL, `Directory_Parent` CHAR(72), `DefaultDir` "
        "CHAR(255) NOT NULL LOCALIZABLE PRIMARY KEY `Directory`)");
    Run("CREATE TABLE `Component` (`Component` CHAR(72) NOT NULL, `ComponentId` CHAR(38), `Directory_` "
        "CHAR(72) NOT NULL, `Attributes` SHORT NOT NULL, `Condition` CHAR(255), `KeyPath` CHAR(72) PRIMARY "
        "KEY `Component`)");
    Run("CREATE TABLE `FeatureComponents` (`Feature_` CHAR(38) NOT NULL, `Component_` CHAR(72) NOT NULL "
        "PRIMARY KEY `Feature_`, `Component_`)");
    Run("CREATE TABLE `File` (`File` CHAR(72) NOT NULL, `Component_` CHAR(72) NOT NULL, `FileName` CHAR(255) "
        "NOT NULL LOCALIZABLE, `FileSize` LONG NOT NULL, `Version` CHAR(72), `Language` CHAR(20), "
        "`Attributes` SHORT, `Sequence` SHORT NOT NULL PRIMARY KEY `File`)");
    Run("CREATE TABLE `Media` (`DiskId` SHORT NOT NULL, `LastSequence` SHORT NOT NULL, `DiskPrompt` CHAR(64) "
        "LOCALIZABLE, `Cabinet` CHAR(255), `VolumeLabel` CHAR(32), `Source` CHAR(72) PRIMARY KEY `DiskId`)");
    Run("CREATE TABLE `Binary` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL PRIMARY KEY `Name`)");
    Run("CREATE TABLE `Cabs` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL PRIMARY KEY `Name`)");
    Run("CREATE TABLE `CustomAction` (`Action` CHAR(72) NOT NULL, `Type` SHORT NOT NULL, `Source` CHAR(72), "
        "`Target` CHAR(255) PRIMARY KEY `Action`)");
    Run("CREATE TABLE `InstallExecuteSequence` (`Action` CHAR(72) NOT NULL, `Condition` CHAR(255), "
        "`Sequence` SHORT PRIMARY KEY `Action`)");
    for (const auto& [name, value] : properties) {
      if (!value.empty())
        Run("INSERT INTO `Property` (`Property`, `Value`) VALUES ('" + name + "', '" + value + "')");
    }
    Run("INSERT INTO `Feature` (`Feature`, `Title`, `Display`, `Level`, `Attributes`) VALUES ('Console', "
        "'Console', 1, 1, 0)");
    Run("INSERT INTO `Directory` (`Directory`, `DefaultDir`) VALUES ('TARGETDIR', 'SourceDir')");
    Run("INSERT INTO `Directory` (`Directory`, `Directory_Parent`, `DefaultDir`) VALUES ('INSTALLDIR', "
        "'TARGETDIR', 'Kestrane')");
    Run("INSERT INTO `Component` (`Component`, `Directory_`, `Attributes`, `KeyPath`) VALUES ('Main', "
        "'INSTALLDIR', 0, 'main.exe')");
    Run("INSERT INTO `FeatureComponents` (`Feature_`, `Component_`) VALUES ('Console', 'Main')");
    AddFileRow("main.exe", "Main.EXE", 1);
    AddFileRow("help.chm", "HELP~1.CHM|Help File.CHM", 2);
    Run("INSERT INTO `Media` (`DiskId`, `LastSequence`, `Cabinet`) VALUES (1, 2, '#Cabs.Cab1.CAB')");
    machine_.files.AddFile("C:\\Temp\\cab.tmp", "the cabinet");
    auto record = (*installer)->CreateRecord(1);
    ASSERT_TRUE(record->SetStream(1, "C:\\Temp\\cab.tmp").ok());
    Run("INSERT INTO `Cabs` (`Name`, `Data`) VALUES ('Cab1.CAB', ?)", record.get());
    record.reset();
    Run("INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('InstallFinalize', 6600)");
    Run("INSERT INTO `InstallExecuteSequence` (`Action`, `Sequence`) VALUES ('InstallInitialize', 1500)");
    auto summary = database_->SummaryInformation(4);
    ASSERT_TRUE(summary.ok());
    ASSERT_TRUE((*summary)->SetTextProperty(7, "Intel;1033").ok());
    ASSERT_TRUE((*summary)->SetTextProperty(9, "{11111111-2222-3333-4444-555555555555}").ok());
    ASSERT_TRUE((*summary)->SetIntegerProperty(15, 2).ok());
    ASSERT_TRUE((*summary)->Persist().ok());
    summary = Error{kErrorInvalidHandle, ""};
    ASSERT_TRUE(database_->Commit().ok());
    database_.reset();
    ASSERT_TRUE(machine_.files.DeleteFile("C:\\Temp\\cab.tmp", true).ok());
  }

  /// A whole package of level 7.1.0 (or 7.0.0) in `folder`.
  void WritePackage(const std::string& folder, bool level_700 = false) {
    WriteDatabase(folder + (level_700 ? "\\Kte700.msi" : "\\Kte710.msi"));
    machine_.files.AddFile(folder + "\\Setup.ini", "[Startup]\r\nProduct=Kestrane\r\n");
    for (const char* name : {"SETUP.EXE", "Readme.txt", "CONTACT.TXT", "Install.pkg", "PkgCatalog.z",
                             "KT710DET.TXS", "Install.pkg.bak", "INSTMSIW.EXE"})
      machine_.files.AddFile(folder + "\\" + name, name);
  }

 private:
  void AddFileRow(const std::string& key, const std::string& name, int sequence) {
    Run("INSERT INTO `File` (`File`, `Component_`, `FileName`, `FileSize`, `Attributes`, `Sequence`) VALUES "
        "('" +
        key + "', 'Main', '" + name + "', 3, 512, " + std::to_string(sequence) + ")");
  }
  void Run(const std::string& sql, const platform::Record* record = nullptr) {
    auto view = database_->OpenView(sql);
    ASSERT_TRUE(view.ok()) << view.status().message();
    const Status done = (*view)->Execute(record);
    ASSERT_TRUE(done.ok()) << done.message();
    (*view)->Close();
  }

  platform::testing::FakeMachine& machine_;
  std::shared_ptr<platform::Database> database_;
};

}  // namespace kw::testing

#endif  // KITWRIGHT_SHELL_PACKAGE_TEST_SUPPORT_H_
