// Lays out whole sample machines with the program itself, and asks independent tools what is in them.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include "base/machine_config.h"
#include "base/storage.h"
#include "base/text.h"
#include "sample/package/description.h"

namespace kw::sample {
namespace {

namespace fs = std::filesystem;

/// Runs a command of the shell; its exit status and what it printed.
struct Ran {
  int status = -1;
  std::string output;
};

Ran Shell(const std::string& command) {
  Ran ran;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return ran;
  char buffer[4096];
  for (size_t got; (got = fread(buffer, 1, sizeof(buffer), pipe)) > 0;) ran.output.append(buffer, got);
  ran.status = pclose(pipe);
  return ran;
}

std::string Content(const fs::path& path) {
  return ReadWholeFile(SystemStorage(), path.string()).value_or("(missing)");
}

/// Both machines, laid out once for all tests.
class SampleMachineTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::string pattern = (fs::temp_directory_path() / "kw-sample-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
    Expect("710", "first");
    Expect("710", "second");
    Expect("700", "old");
  }
  static void TearDownTestSuite() { Shell("chmod -R u+w " + folder_ + "; rm -rf " + folder_); }

  static Ran LayOut(const std::string& arguments) {
    return Shell(std::string("KITWRIGHT_BUILD_DIR=" KITWRIGHT_BINARY_DIR " " KITWRIGHT_SOURCE_DIR
                             "/tools/make-sample-machine ") +
                 arguments);
  }
  static void Expect(const std::string& level, const std::string& name) {
    const Ran ran = LayOut("--level " + level + " " + folder_ + "/" + name);
    ASSERT_EQ(ran.status, 0) << ran.output;
  }
  static fs::path OnC(const std::string& path, const std::string& machine = "first") {
    return fs::path(folder_) / machine / "drive_c" / path;
  }
  /// Rows of a table, sorted, as the package tools print them.
  static std::string Table(const fs::path& msi, const std::string& table) {
    return Shell("msiinfo export '" + msi.string() + "' " + table + " | sort").output;
  }

  static std::string folder_;
};

std::string SampleMachineTest::folder_;

TEST_F(SampleMachineTest, HoldsEveryPathThatIsPromised) {
  for (const char* path : {"Program Files/Orvantic/Kestrane Enterprise/OasCfg32",
                           "Program Files/Orvantic/Kestrane Enterprise/OdsCfg32",
                           "Program Files/Orvantic/Kestrane Enterprise/TxDesk",
                           "Program Files/Orvantic/Kestrane Enterprise/TxFetch",
                           "Program Files/Orvantic/Kestrane Enterprise/TxMailScan.so",
                           "Program Files/Orvantic/Kestrane Enterprise/TxPanelLib.so",
                           "Program Files/Orvantic/Kestrane Enterprise/TxHelpLib.so",
                           "Packages/Kestrane/Kte710.msi",
                           "Packages/Kestrane/Setup.ini",
                           "Packages/Kestrane/SETUP.EXE",
                           "Packages/Kestrane/CUP300.OVP",
                           "Packages/Kestrane/CONTACT.TXT",
                           "Packages/Kestrane/EXAMPLE.SMS",
                           "Packages/Kestrane/Install.pkg",
                           "Packages/Kestrane/Install.pkg.bak",
                           "Packages/Kestrane/PkgCatalog.z",
                           "Packages/Kestrane/SIGTERMS.TXT",
                           "Packages/Kestrane/README.TXT",
                           "Packages/Kestrane/KT710DET.TXS",
                           "Packages/Kestrane/KTE710.OVP",
                           "Packages/Kestrane/TXVCHK.SCV",
                           "Packages/Kestrane/PACKING.LST",
                           "Packages/Other/Kte700.msi",
                           "Packages/Kestrane SFX/SETUP.EXE",
                           "Packages/Variants/Both/Kte700.msi",
                           "Packages/Variants/Both/Kte710.msi",
                           "Packages/Variants/NoIni/Kte710.msi",
                           "Packages/Variants/German/Kte710.msi",
                           "Packages/Variants/Old/Kte710.msi",
                           "Packages/Variants/Farwatch/Kte710.msi",
                           "Packages/Variants/Foreign/Kte710.msi",
                           "Packages/Variants/ForeignSetup/SETUP.EXE",
                           "Packages/Variants/ReadOnly/Kte710.msi",
                           "Packages/Variants/Patched/Setup.ini",
                           "Packages/Variants/TwoCabs/Kte710.msi",
                           "Packages/Variants/BeaconryOther/BCN470.msi",
                           "Packages/Variants/BeaconryDamaged/BCN470.msi",
                           "Packages/Beaconry/BCN470.msi",
                           "Packages/Beaconry/PkgCatalog.z",
                           "Packages/Beaconry/BCN470.OVP",
                           "Packages/Bulwark/Bulwark8.exe",
                           "Packages/Bulwark/BulwarkPref8.exe",
                           "Packages/Bulwark/BulwarkBare.exe",
                           "Packages/Bulwark/BulwarkSet.exe",
                           "Payloads/dat.zip",
                           "Payloads/dat-one-slash.zip",
                           "Payloads/dat-no-version.zip",
                           "Payloads/engine.zip",
                           "Payloads/engine-no-version.zip",
                           "Payloads/bad.zip",
                           "Payloads/HOTFIX1.MSP",
                           "Payloads/HOTFIX2.MSP",
                           "Payloads/SiteList.xml",
                           "Payloads/AgentPkg.exe",
                           "Payloads/tool.exe",
                           "Payloads/readme.txt",
                           "Payloads/extra.reg",
                           "Payloads/nt.reg",
                           "Payloads/w2k.reg",
                           "Payloads/XP.REG",
                           "Payloads/notes.txt"}) {
    EXPECT_TRUE(fs::is_regular_file(OnC(path))) << path;
  }
  EXPECT_FALSE(fs::exists(OnC("Packages/Variants/NoIni/Setup.ini")));
  EXPECT_FALSE(fs::exists(OnC("Packages/Variants/ForeignSetup/Kte710.msi")));
  EXPECT_EQ(std::distance(fs::directory_iterator(OnC("Packages/Kestrane SFX")), fs::directory_iterator()), 1);
}

TEST_F(SampleMachineTest, TheOldLevelHasItsFilesLoose) {
  for (const char* name : {"Kte700.msi", "KT700DET.TXS", "KTE700.OVP", "SIGS.DAT", "LABELS.DAT", "REPAIR.DAT",
                           "TXENG32.DLL", "TEXTS.DAT", "ENGINE.DAT", "SIGTERMS.TXT"}) {
    EXPECT_TRUE(fs::exists(OnC(std::string("Packages/Kestrane/") + name, "old"))) << name;
  }
  const std::string setup = Content(OnC("Packages/Kestrane/Setup.ini", "old"));
  EXPECT_EQ(IniValue(setup, "Dat", "DATVersion"), "4.0.4155");
  EXPECT_EQ(IniValue(setup, "Engine", "EngineVersion"), "4.1.500");
  EXPECT_TRUE(fs::exists(OnC("Packages/Other/Kte710.msi", "old")));
}

TEST_F(SampleMachineTest, IsTheSameEachTimeButForDates) {
  size_t compared = 0;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(folder_) / "first")) {
    if (!entry.is_regular_file()) continue;
    const fs::path twin =
        fs::path(folder_) / "second" / fs::relative(entry.path(), fs::path(folder_) / "first");
    ++compared;
    // Databases and archives carry dates; what they hold is compared below.
    const std::string kind = ToLower(entry.path().extension().string());
    if (kind == ".msi" || kind == ".msp" || kind == ".zip" || entry.path().filename() == "SETUP.EXE") {
      EXPECT_TRUE(fs::exists(twin)) << twin;
    } else {
      EXPECT_EQ(Content(entry.path()), Content(twin)) << twin;
    }
  }
  EXPECT_GT(compared, 300u);
  for (const char* table :
       {"Feature", "Property", "File", "Component", "FeatureComponents", "Directory", "Media", "Cabs",
        "CustomAction", "InstallExecuteSequence", "Registry", "Binary"}) {
    EXPECT_EQ(Table(OnC("Packages/Kestrane/Kte710.msi"), table),
              Table(OnC("Packages/Kestrane/Kte710.msi", "second"), table));
  }
}

TEST_F(SampleMachineTest, IndependentToolsReadEveryDatabaseAndCabinet) {
  size_t databases = 0;
  for (const auto& entry : fs::recursive_directory_iterator(OnC("Packages"))) {
    if (entry.path().extension() != ".msi" || entry.path().parent_path().filename() == "BeaconryDamaged")
      continue;
    ++databases;
    EXPECT_EQ(Shell("msiinfo tables '" + entry.path().string() + "'").status, 0) << entry.path();
  }
  EXPECT_EQ(databases, 14u);
  const std::string cabinet = folder_ + "/Cab1.CAB";
  for (const char* stream : {"Cabs.Cab1.CAB", "Cabs.Cab2.CAB"}) {
    ASSERT_EQ(Shell("msiinfo extract '" + OnC("Packages/Variants/TwoCabs/Kte710.msi").string() + "' " +
                    stream + " > " + cabinet)
                  .status,
              0);
    EXPECT_EQ(Shell("cabextract -q -t " + cabinet).status, 0) << stream;
  }
  EXPECT_EQ(Shell("cabextract -q -t '" + OnC("Packages/Kestrane SFX/SETUP.EXE").string() + "'").status, 0);
}

TEST_F(SampleMachineTest, ThePackageHasWhatTheWizardWorksOn) {
  const fs::path msi = OnC("Packages/Kestrane/Kte710.msi");
  const std::string properties = Table(msi, "Property");
  for (const char* row :
       {"txlocaleid\t0409", "INSTALLLEVEL\t100", "UpgradeCode\t{75951FF9-0087-4981-A526-56CB59DA17D9}",
        "DATVERSION\t4.0.4155", "DATDATE\t11/07/2001", "ENGINEVERSION\t4.1.500"}) {
    EXPECT_NE(properties.find(row), std::string::npos) << row;
  }
  const std::string files = Table(msi, "File");
  for (const char* key :
       {"SIGS.DAT", "LABELS.DAT", "REPAIR.DAT", "TXENG32.DLL", "TEXTS.DAT", "ENGINE.DAT", "SIGTERMS.TXT"}) {
    EXPECT_NE(files.find(std::string(key) + "\t"), std::string::npos) << key;
  }
  EXPECT_NE(files.find("\tReadMe.TXT\t"), std::string::npos);
  EXPECT_NE(Table(msi, "Binary").find("Callagentpkg"), std::string::npos);
  EXPECT_NE(Table(msi, "Media").find("#Cabs.Cab1.CAB"), std::string::npos);
  const std::string folders = Table(msi, "Directory");
  for (const char* key : {"DesktopFolder", "WindowsFolder", "SystemFolder", "StartupFolder",
                          "ProgramFilesFolder", "CommonFilesFolder", "StartMenuFolder", "ProgramMenuFolder",
                          "SendToFolder", "FavoritesFolder", "FontsFolder", "PersonalFolder", "TempFolder"}) {
    EXPECT_NE(folders.find(std::string(key) + "\tTARGETDIR\t"), std::string::npos) << key;
  }
  EXPECT_NE(folders.find("KESTRA~1|Kestrane Enterprise"), std::string::npos);
  // The programs of the wizard go into the numbers below the end of the installation.
  std::map<int, std::string> actions;
  const std::string sequence = Table(msi, "InstallExecuteSequence");
  for (const std::string& line : Split(sequence, '\n')) {
    const std::vector<std::string> cells = Split(line, '\t');
    if (cells.size() == 3) actions[static_cast<int>(LeadingInteger(cells[2]))] = cells[0];
  }
  int end = 0;
  for (const auto& [number, action] : actions) {
    if (action == "InstallFinalize") end = number;
  }
  ASSERT_NE(end, 0);
  for (int number = end - 130; number < end; ++number) EXPECT_EQ(actions.count(number), 0u) << number;
}

TEST_F(SampleMachineTest, TheVariantsDifferInWhatTheyAreNamedFor) {
  const auto property = [](const std::string& variant, const std::string& row) {
    return Table(OnC("Packages/Variants/" + variant + "/Kte710.msi"), "Property").find(row) !=
           std::string::npos;
  };
  EXPECT_TRUE(property("German", "txlocaleid\t0407"));
  EXPECT_TRUE(property("Old", "UpgradeCode\t{0F64050B-7ABB-446C-99CC-CA70A67FFD7D}"));
  EXPECT_TRUE(property("Farwatch", "UpgradeCode\t{50427873-5C9B-11D3-89C6-006008C7D0F2}"));
  EXPECT_FALSE(property("Foreign", kUpgradeCode));
  EXPECT_EQ(fs::status(OnC("Packages/Variants/ReadOnly/Kte710.msi")).permissions() & fs::perms::owner_write,
            fs::perms::none);
  const std::string patched = Content(OnC("Packages/Variants/Patched/Setup.ini"));
  EXPECT_EQ(IniValue(patched, "Startup", "PatchFile0"), "HOTFIX1.MSP");
  EXPECT_FALSE(fs::exists(OnC("Packages/Variants/Patched/" + IniValue(patched, "Startup", "PatchFile1"))));
  EXPECT_EQ(IniValue(patched, "Startup", "PatchFile2"), "");
  EXPECT_NE(IniValue(patched, "Startup", "PatchFile3"), "");
  EXPECT_NE(Table(OnC("Packages/Variants/TwoCabs/Kte710.msi"), "File").find("\t8192\t131"),
            std::string::npos);
  EXPECT_NE(
      Shell("msiinfo tables '" + OnC("Packages/Variants/BeaconryDamaged/BCN470.msi").string() + "'").status,
      0);
}

TEST_F(SampleMachineTest, RefusesFoldersWithOtherThingsAndUnknownLevels) {
  fs::create_directories(folder_ + "/mine");
  Shell("echo x > " + folder_ + "/mine/file.txt");
  EXPECT_NE(LayOut(folder_ + "/mine").status, 0);
  EXPECT_EQ(Content(folder_ + "/mine/file.txt"), "x\n");
  EXPECT_NE(LayOut("--level 720 " + folder_ + "/new").status, 0);
  EXPECT_FALSE(fs::exists(folder_ + "/new"));
}

TEST_F(SampleMachineTest, AnInstallerPutsTheInstalledProductInPlace) {
  if (Shell("command -v wine").status != 0) GTEST_SKIP() << "wine is not installed";
  const std::string prefix = folder_ + "/prefix";
  const std::string wine =
      "env -u DISPLAY -u WAYLAND_DISPLAY WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=d;mshtml=d' WINEPREFIX=" +
      prefix + " ";
  const auto install = [&](const std::string& path) {
    return Shell(wine + "timeout 120 wine msiexec /i 'Z:" + ReplaceAll(OnC(path).string(), "/", "\\") +
                 "' /qn")
        .status;
  };
  EXPECT_EQ(install("Packages/Kestrane/Kte710.msi"), 0);
  const std::string product = "Program Files/Orvantic/Kestrane Enterprise";
  size_t installed = 0;
  for (const auto& entry : fs::recursive_directory_iterator(prefix + "/drive_c/" + product)) {
    if (!entry.is_regular_file()) continue;
    ++installed;
    EXPECT_EQ(Content(entry.path()),
              Content(OnC(product) / fs::relative(entry.path(), prefix + "/drive_c/" + product)));
  }
  EXPECT_GT(installed, 90u);
  const std::string setup = OnC("Packages/Kestrane SFX/SETUP.EXE").string();
  EXPECT_EQ(Shell(wine + "timeout 60 wine '" + setup + "' -nos_ne '-nos_oC:\\out folder'").status, 0);
  EXPECT_EQ(
      Shell("diff -r '" + prefix + "/drive_c/out folder' '" + OnC("Packages/Kestrane").string() + "'").output,
      "");
  Shell(wine + "wineserver -k");
}

}  // namespace
}  // namespace kw::sample
