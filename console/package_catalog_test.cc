#include "console/package_catalog.h"

#include "console/console_test_support.h"

namespace kw {
namespace {

using testing::Answer;
using testing::ConsoleFixture;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::FakeCommand;
using testing::FileOperation;
using ::testing::IsEmpty;
using ::testing::Not;

const std::string kNoTemplate =
    "message Could not load PKGCATALOG.XML template file.  You will be unable to add this installation "
    "package to the Stratocon site manager.";
const std::string kNoScript =
    "message Could not find detection script file.  You will be unable to add this installation package to "
    "the Stratocon site manager.";
const std::string kNoInstallFile =
    "message Could not find install script file.  You will be unable to add this installation package to the "
    "Stratocon site manager.";
const std::string kNotSigned =
    "message Could not create PKGCATALOG.Z file. Template file may be corrupted.  You will be unable to add "
    "this installation package to the Stratocon site manager.";

struct PackageCatalogTest : ConsoleFixture, ::testing::Test {
  std::vector<std::string> Write() {
    WritePackageCatalog(Context(), request, files);
    return Take();
  }
  void UseTemplate(const std::string& xml) {
    machine.files.AddFile(Template("KTE\\710", "PkgCatalog.XML"), xml);
  }
  CatalogRequest request = {"KT710Det.TxS", "SETUP.EXE", ", /q", "KTE\\710", "C:\\Out", "0407"};
  FileListPtr files = std::make_unique<FileList>(FileList{{"KTE710.MSI", "SETUP.EXE"}});
};

TEST_F(PackageCatalogTest, TheTemplatesVariablePartsAreFilledAndAllElsePassesThrough) {
  Write();
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0407", {"KTE710.MSI", "SETUP.EXE"}, "SETUP.EXE, /q"));
  EXPECT_EQ(machine.files.Content("C:\\Out\\KT710Det.TxS"), "script KTE\\710\\KT710Det.TxS");
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\PkgCatalog.XML"));
  EXPECT_THAT(files->names, ElementsAre("KTE710.MSI", "SETUP.EXE"));
}

TEST_F(PackageCatalogTest, TheSigningToolRunsHiddenInTheProgramsFolder) {
  ASSERT_TRUE(machine.files.SetCurrentFolder("C:\\Temp").ok());
  EXPECT_THAT(Write(),
              ElementsAre("run[hidden] \"C:\\Kitwright\\StcSign.exe\" \"C:\\Out\\PkgCatalog.XML\" .txs /c "
                          "-> 0"));
  EXPECT_EQ(machine.processes.commands.back().current_folder, "C:\\Kitwright");
}

TEST_F(PackageCatalogTest, ATemplateThatIsMissingOrNoXmlIsToldAndTheOldCatalogueStays) {
  machine.files.AddFile("C:\\Out\\PkgCatalog.z", "old");
  UseTemplate("<PkgCatalog>");
  EXPECT_THAT(Write(), ElementsAre(kNoTemplate));
  ASSERT_TRUE(machine.files.DeleteFile(Template("KTE\\710", "PkgCatalog.XML"), true).ok());
  EXPECT_THAT(Write(), ElementsAre(kNoTemplate));
  EXPECT_EQ(Signed("C:\\Out"), "old");
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\KT710Det.TxS"));
}

TEST_F(PackageCatalogTest, ATemplateWithoutOneOfItsThreeElementsIsRefused) {
  for (const char* xml : {"<Catalog><ProductPackage><LangPackage/></ProductPackage></Catalog>",
                          "<PkgCatalog><Product><LangPackage/></Product></PkgCatalog>",
                          "<PkgCatalog><ProductPackage><Lang/></ProductPackage></PkgCatalog>"}) {
    UseTemplate(xml);
    machine.files.AddFile("C:\\Out\\PkgCatalog.XML", "left over");
    EXPECT_THAT(Write(), ElementsAre(kNoTemplate));
    EXPECT_FALSE(machine.files.FileExists("C:\\Out\\PkgCatalog.XML"));
    EXPECT_FALSE(machine.files.FileExists("C:\\Out\\PkgCatalog.z"));
  }
}

TEST_F(PackageCatalogTest, AMissingFileListComesLastAndAMissingCommandBehindIt) {
  UseTemplate(
      "<PkgCatalog><ProductPackage><LangPackage><LangID/><Notes/></LangPackage></ProductPackage>"
      "</PkgCatalog>");
  Write();
  EXPECT_EQ(Signed("C:\\Out"),
            "<PkgCatalog><ProductPackage><LangPackage><LangID>0407</LangID><Notes/>" +
                Items({"KTE710.MSI", "SETUP.EXE"}) +
                "<InstallCommand>SETUP.EXE, /q</InstallCommand></LangPackage></ProductPackage></PkgCatalog>");
}

TEST_F(PackageCatalogTest, ATemplateWithoutALanguageIsAcceptedAndGetsNone) {
  UseTemplate(
      "<PkgCatalog><ProductPackage><LangPackage><FileList/><InstallCommand/></LangPackage>"
      "</ProductPackage></PkgCatalog>");
  EXPECT_THAT(Write(), Not(Contains(kNoTemplate)));
  EXPECT_EQ(Signed("C:\\Out"), "<PkgCatalog><ProductPackage><LangPackage>" +
                                   Items({"KTE710.MSI", "SETUP.EXE"}) +
                                   "<InstallCommand>SETUP.EXE, /q</InstallCommand></LangPackage>"
                                   "</ProductPackage></PkgCatalog>");
}

TEST_F(PackageCatalogTest, OnlyTheFirstElementOfANameIsFilled) {
  UseTemplate(
      "<PkgCatalog><ProductPackage><LangPackage><LangID>1</LangID><LangID>2</LangID><FileList/>"
      "<InstallCommand/></LangPackage><LangPackage><LangID>3</LangID></LangPackage></ProductPackage>"
      "<ProductPackage/></PkgCatalog>");
  Write();
  EXPECT_THAT(Signed("C:\\Out"), ::testing::HasSubstr("<LangID>0407</LangID><LangID>2</LangID>"));
  EXPECT_THAT(Signed("C:\\Out"), ::testing::HasSubstr("<LangPackage><LangID>3</LangID></LangPackage>"));
}

TEST_F(PackageCatalogTest, PlugInsAndDescriptorsAreLeftOutByTheirEndAndScriptsStay) {
  files = std::make_unique<FileList>(FileList{{"A.OVP", "b.Ovp", "INSTALL.PKG", "INSTALL.PKG.TXT", "x.ovp.y",
                                               "DETECT.TXS", "BCN\\INSTALL.pkg", "two.pkg.pkg", "R&D <1>"}});
  Write();
  EXPECT_EQ(
      Signed("C:\\Out"),
      Catalog("0407", {"INSTALL.PKG.TXT", "x.ovp.y", "DETECT.TXS", "R&amp;D &lt;1&gt;"}, "SETUP.EXE, /q"));
}

TEST_F(PackageCatalogTest, AnEmptyOrAbsentListGivesAnEmptyFileList) {
  files->names.clear();
  Write();
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0407", {}, "SETUP.EXE, /q"));
  files.reset();
  Write();
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0407", {}, "SETUP.EXE, /q"));
}

TEST_F(PackageCatalogTest, WithoutAnInstallNameTheTemplatesCommandStays) {
  request.install_name = request.command_tail = "";
  Write();
  EXPECT_EQ(Signed("C:\\Out"), Catalog("0407", {"KTE710.MSI", "SETUP.EXE"}, "none"));
}

TEST_F(PackageCatalogTest, AMissingDetectionScriptIsToldAndNothingIsWritten) {
  ASSERT_TRUE(machine.files.DeleteFile(Template("KTE\\710", "KT710Det.TxS"), true).ok());
  machine.files.AddFile("C:\\Out\\PkgCatalog.z", "old");
  EXPECT_THAT(Write(), ElementsAre(kNoScript));
  EXPECT_EQ(Signed("C:\\Out"), "old");
}

TEST_F(PackageCatalogTest, AnOldDetectionScriptIsOverwrittenEvenAReadOnlyOne) {
  machine.files.AddFile("C:\\Out\\KT710Det.TxS", "old", true);
  Write();
  EXPECT_EQ(machine.files.Content("C:\\Out\\KT710Det.TxS"), "script KTE\\710\\KT710Det.TxS");
}

TEST_F(PackageCatalogTest, AMissingInstallFileIsTold) {
  ASSERT_TRUE(machine.files.DeleteFile("C:\\Out\\SETUP.EXE", true).ok());
  EXPECT_THAT(Write(), ElementsAre(kNoInstallFile));
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\PkgCatalog.z"));
}

TEST_F(PackageCatalogTest, AnInstallFileOfTheTemplateFolderIsCopiedAndListed) {
  machine.files.AddFile(Template("KTE\\710", "SETUP.EXE"), "setup of the template");
  Write();
  EXPECT_EQ(machine.files.Content("C:\\Out\\SETUP.EXE"), "setup of the template");
  EXPECT_THAT(files->names, ElementsAre("KTE710.MSI", "SETUP.EXE", "SETUP.EXE"));
}

TEST_F(PackageCatalogTest, ASigningThatFailsLeavesNeitherAnOldCatalogueNorThePlainOne) {
  machine.processes.On("\"C:\\Kitwright\\StcSign.exe\"", 1);
  machine.files.AddFile("C:\\Out\\PkgCatalog.z", "old");
  EXPECT_THAT(Write(), ElementsAre(::testing::StartsWith("run[hidden]"), kNotSigned));
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\PkgCatalog.z"));
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\PkgCatalog.XML"));
}

TEST_F(PackageCatalogTest, AToolThatDoesNotStartOrACatalogueThatCannotBeSavedShowsAsNotSigned) {
  machine.processes.On("\"C:\\Kitwright\\StcSign.exe\"",
                       platform::testing::FakeProcesses::Script{0, 0, kErrorFileNotFound, {}, {}});
  EXPECT_THAT(Write(), Contains(kNotSigned));
  machine.processes.On("\"C:\\Kitwright\\StcSign.exe\"", 1);
  machine.files.FailAlways(FileOperation::kWriteFile, "C:\\Out\\PkgCatalog.XML", kErrorDiskFull);
  EXPECT_THAT(Write(), Contains(kNotSigned));
}

TEST_F(PackageCatalogTest, TheToolsExitCodeDoesNotCount) {
  machine.processes.On(
      "\"C:\\Kitwright\\StcSign.exe\"",
      platform::testing::FakeProcesses::Script{
          7, 0, 0, [this](const FakeCommand&) { machine.files.AddFile("C:\\Out\\PkgCatalog.z", "z"); }, {}});
  EXPECT_THAT(Write(), Not(Contains(kNotSigned)));
}

struct NoXml : platform::XmlFactory {
  Result<std::unique_ptr<platform::XmlDocument>> CreateDocument() override {
    return Error{kErrorInvalidData, "no XML here"};
  }
};

TEST_F(PackageCatalogTest, AMachineWithoutXmlIsTold) {
  NoXml none;
  machine.services.xml = &none;
  EXPECT_THAT(Write(), ElementsAre("message Unable to load PkgCatalog.XML, you will be unable to add this "
                                   "installation package to the Stratocon site manager.  Please verify that "
                                   "Internet Explorer 5 or later is installed."));
}

struct InstallDescriptorTest : ConsoleFixture, ::testing::Test {
  std::vector<std::string> Write(const std::string& command = "setup /Q",
                                 const std::string& language = "0407") {
    WriteInstallDescriptor(Context(), files, "KTE\\710", "C:\\Out", command, language);
    return Take();
  }
  std::string Written() { return machine.files.Content("C:\\Out\\Install.pkg"); }
  FileListPtr files = std::make_unique<FileList>(FileList{{"KTE710.MSI", "SETUP.EXE"}});
};

TEST_F(InstallDescriptorTest, OtherSectionsCommentsAndBlankLinesStay) {
  EXPECT_THAT(Write(), IsEmpty());
  EXPECT_EQ(Written(), Descriptor("0407", "setup /Q", {"KTE710.MSI", "SETUP.EXE"}));
  EXPECT_FALSE(machine.files.IsReadOnly("C:\\Out\\Install.pkg"));
  EXPECT_THAT(files->names, ElementsAre("KTE710.MSI", "SETUP.EXE", "INSTALL.PKG"));
}

TEST_F(InstallDescriptorTest, LeftOutFilesLeaveNoGapsInTheNumbers) {
  files = std::make_unique<FileList>(
      FileList{{"A.OVP", "ONE.EXE", "detect.TxS", "INSTALL.PKG", "TWO.PKG.TXT", "BCN\\THREE.msi"}});
  Write();
  EXPECT_EQ(Written(), Descriptor("0407", "setup /Q", {"ONE.EXE", "TWO.PKG.TXT", "BCN\\THREE.msi"}));
}

TEST_F(InstallDescriptorTest, ANameThatTheCodePageCannotHoldLeavesNoGapEither) {
  files = std::make_unique<FileList>(FileList{{"ONE.EXE", "\u4e2d.TXT", "TWO.EXE"}});
  EXPECT_THAT(Write(), IsEmpty());
  EXPECT_EQ(Written(), Descriptor("0407", "setup /Q", {"ONE.EXE", "TWO.EXE"}));
}

TEST_F(InstallDescriptorTest, WithoutFilesNoEntryOfTheTemplateSurvives) {
  files.reset();
  Write("Bulwark.EXE", "0000");
  EXPECT_EQ(Written(), Descriptor("0000", "Bulwark.EXE", {}));
  EXPECT_THAT(files->names, ElementsAre("INSTALL.PKG"));
}

TEST_F(InstallDescriptorTest, ATemplateThatCannotBeCopiedIsToldAfterItsQuestion) {
  machine.files.FailAlways(FileOperation::kCopyFile, "C:\\Out\\Install.pkg", kErrorDiskFull);
  machine.dialogs.answers = {Answer::kRetry, Answer::kCancel};
  const auto lines = Write();
  EXPECT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines.back(),
            "message Could not copy INSTALL.PKG template file.  You will be unable to add this "
            "installation package to the Stratocon repository.");
  EXPECT_THAT(files->names, ElementsAre("KTE710.MSI", "SETUP.EXE"));
}

TEST_F(InstallDescriptorTest, AMissingTemplateIsToldToo) {
  ASSERT_TRUE(machine.files.DeleteFile(Template("KTE\\710", "Install.pkg"), true).ok());
  machine.dialogs.answers = {Answer::kCancel};
  EXPECT_THAT(Write(), ::testing::SizeIs(2));
  EXPECT_FALSE(machine.files.FileExists("C:\\Out\\Install.pkg"));
}

TEST_F(InstallDescriptorTest, AValueThatCannotBeWrittenIsPassedOver) {
  machine.files.FailAlways(FileOperation::kWriteFile, "C:\\Out\\Install.pkg", kErrorDiskFull);
  EXPECT_THAT(Write(), IsEmpty());
}

TEST(PrefixedFileNames, NamesAreAppendedInTheirOrderBehindThePrefix) {
  const FileListPtr source = std::make_unique<FileList>(FileList{{"B", "A", "B"}});
  FileListPtr target;
  AddPrefixedFileNames(source, target, "");
  AddPrefixedFileNames(source, target, "BCN\\");
  AddPrefixedFileNames(nullptr, target, "BWK\\");
  EXPECT_THAT(target->names, ElementsAre("B", "A", "B", "BCN\\B", "BCN\\A", "BCN\\B"));
}

}  // namespace
}  // namespace kw
