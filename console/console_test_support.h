#ifndef KITWRIGHT_CONSOLE_CONSOLE_TEST_SUPPORT_H_
#define KITWRIGHT_CONSOLE_CONSOLE_TEST_SUPPORT_H_

#include <string>
#include <vector>

#include "pages/open_package_test_support.h"

namespace kw::testing {

/// An open package, templates beside the program, and a signing tool that leaves the catalogue's bytes behind
/// the word "signed:".
struct ConsoleFixture : OpenPackageFixture {
  ConsoleFixture() {
    for (const char* folder : {"KTE\\700", "KTE\\710", "BCN", "BWK", "ZED\\700", "ZED\\710"})
      machine.files.AddFile(Template(folder, "PkgCatalog.XML"), TemplateCatalog(""));
    for (const char* folder : {"KTE\\700", "KTE\\710", "BWK"})
      machine.files.AddFile(Template(folder, "Install.pkg"), kTemplateDescriptor, true);
    for (const char* path :
         {"KTE\\700\\KT700Det.TxS", "KTE\\710\\KT710Det.TxS", "BCN\\BC470Det.TxS", "BWK\\BulwarkDet.TxS",
          "BWK\\BULWARK80.OVP", "ZED\\700\\ZEDInstall.txs", "ZED\\710\\ZEDInstall.txs"})
      machine.files.AddFile(Template("", path), std::string("script ") + path);
    machine.processes.On("\"C:\\Kitwright\\StcSign.exe\"", [this](const FakeCommand& command) {
      // "...StcSign.exe" "CATALOGUE" .txs /c
      const size_t start = command.command_line.find("\" \"") + 3;
      const std::string catalog =
          command.command_line.substr(start, command.command_line.find('"', start) - start);
      machine.files.AddFile(catalog.substr(0, catalog.rfind('\\')) + "\\PkgCatalog.z",
                            "signed:" + machine.files.Content(catalog));
    });
    run.DestinationFileList = std::make_unique<FileList>(FileList{{"KTE710.MSI", "SETUP.INI", "SETUP.EXE"}});
    machine.files.AddFile("C:\\Out\\SETUP.EXE", "setup");
  }
  static std::string Template(const std::string& folder, const std::string& name) {
    return "C:\\Kitwright\\" + folder + (folder.empty() ? "" : "\\") + name;
  }
  /// The template's catalogue with its language package's variable parts as given; "" for those of the
  /// template.
  static std::string TemplateCatalog(const std::string& variable) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?console format=\"2\"?>\n<!-- kept -->\n"
           "<PkgCatalog Version=\"1.0\">\n  <ProductPackage ID=\"A &amp; B\">\n    <Platform "
           "Name=\"W2KW\"/>\n"
           "    <LangPackage Type=\"Install\">\n      " +
           (variable.empty()
                ? "<LangID>0000</LangID>\n      <FileList><FileItem Size=\"1\"><Name>OLD.TXT</Name>"
                  "</FileItem></FileList>\n      <InstallCommand When=\"always\">none"
                  "</InstallCommand>"
                : variable) +
           "\n      <Notes xml:space=\"preserve\">  two  </Notes><!-- and this -->\n    </LangPackage>\n"
           "  </ProductPackage>\n</PkgCatalog>\n";
  }
  static std::string Items(const std::vector<std::string>& names) {
    std::string items;
    for (const std::string& name : names) items += "<FileItem><Name>" + name + "</Name></FileItem>";
    return items.empty() ? "<FileList/>" : "<FileList>" + items + "</FileList>";
  }
  /// What the tool signed in a folder; "(no such file)" when nothing was.
  std::string Signed(const std::string& folder) {
    const std::string bytes = machine.files.Content(folder + "\\PkgCatalog.z");
    return bytes.starts_with("signed:") ? bytes.substr(7) : bytes;
  }
  /// A signed catalogue of the template with these parts.
  static std::string Catalog(const std::string& language, const std::vector<std::string>& names,
                             const std::string& command) {
    return TemplateCatalog("<LangID>" + language + "</LangID>\n      " + Items(names) +
                           "\n      <InstallCommand When=\"always\">" + command + "</InstallCommand>");
  }
  static std::string Descriptor(const std::string& language, const std::string& command,
                                const std::vector<std::string>& names) {
    std::string text = "; kept\r\n[Package]\r\nName=K\r\n\r\n[Install]\r\nLanguage=" + language +
                       "\r\nTimeout=1800\r\nCommand=" + command + "\r\n\r\n[Uninstall]\r\nCommand=x\r\n";
    if (!names.empty()) text += "[Files]\r\n";
    for (size_t i = 0; i < names.size(); ++i) text += "File" + std::to_string(i) + "=" + names[i] + "\r\n";
    return text;
  }
  PageContext& Context() { return app.Context(); }

  static constexpr const char* kTemplateDescriptor =
      "; "
      "kept\r\n[Package]\r\nName=K\r\n\r\n[Install]\r\nLanguage=0000\r\nTimeout=1800\r\nCommand=none\r\n\r\n"
      "[Files]\r\nFile0=OLD.TXT\r\nFile1=OLD.DAT\r\n[Uninstall]\r\nCommand=x\r\n";
};

}  // namespace kw::testing

#endif  // KITWRIGHT_CONSOLE_CONSOLE_TEST_SUPPORT_H_
