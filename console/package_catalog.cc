#include "console/package_catalog.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>

#include "base/text.h"
#include "package/file_rules.h"
#include "package/staging.h"

namespace kw {
namespace {

using platform::XmlNode;

constexpr const char* kCatalogName = "PkgCatalog.XML";
constexpr const char* kNoTemplate =
    "Could not load PKGCATALOG.XML template file.  You will be unable to add this installation package to "
    "the Stratocon site manager.";

bool EndsWithAny(const std::string& name, std::initializer_list<std::string_view> endings) {
  for (const std::string_view ending : endings) {
    if (EndsWithNoCase(name, ending)) return true;
  }
  return false;
}

class Catalog {
 public:
  Catalog(PageContext& context, const CatalogRequest& request, FileListPtr& files)
      : context_(context),
        services_(context.services),
        disk_(*context.services.files),
        request_(request),
        files_(files),
        templates_(services_.system->ProgramFolder() + "\\" + request.template_folder + "\\"),
        output_(request.output_folder + "\\") {}

  void Write() {
    auto document = services_.xml->CreateDocument();
    if (!document.ok()) {
      services_.dialogs->Message(
          "Unable to load PkgCatalog.XML, you will be unable to add this installation package to the "
          "Stratocon site manager.  Please verify that Internet Explorer 5 or later is installed.");
      return;
    }
    document_ = std::move(*document);
    if (!document_->Load(templates_ + kCatalogName).ok()) {
      services_.dialogs->Message(kNoTemplate);
      return;
    }
    if (FindLangPackage()) {
      if (!PlaceDetectionScript() || !PlaceInstallFile()) return;
      FillFileList();
      SetLanguage();
      // A catalogue that cannot be saved shows as one that cannot be signed.
      document_->Save(output_ + kCatalogName).IgnoreError();
      Sign();
    } else {
      services_.dialogs->Message(kNoTemplate);
    }
    // The plain catalogue is never delivered.
    if (disk_.FileExists(output_ + kCatalogName))
      disk_.DeleteFile(output_ + kCatalogName, true).IgnoreError();
  }

 private:
  bool FindLangPackage() {
    document_node_ = document_->Document();
    std::unique_ptr<XmlNode> node = document_node_->SelectSingleNode("PkgCatalog");
    if (node) node = node->SelectSingleNode("ProductPackage");
    if (node) node = node->SelectSingleNode("LangPackage");
    if (!node) return false;
    lang_package_ = std::move(node);
    file_list_ = lang_package_->SelectSingleNode("FileList");
    if (!file_list_) file_list_ = lang_package_->AppendElement("FileList");
    return true;
  }

  std::string DetectionScriptSource() const {
    if (context_.run.PackageMode) return templates_ + request_.detection_script;
    return services_.system->ProgramFolder() + (context_.run.ProductIs700 ? "\\KTE\\700\\" : "\\KTE\\710\\") +
           request_.detection_script;
  }

  bool PlaceDetectionScript() {
    const std::string source = DetectionScriptSource();
    if (!disk_.FileExists(source)) {
      services_.dialogs->Message(
          "Could not find detection script file.  You will be unable to add this installation package to the "
          "Stratocon site manager.");
      return false;
    }
    CopyOver(services_, source, output_ + request_.detection_script).IgnoreError();
    return true;
  }

  bool PlaceInstallFile() {
    if (request_.install_name.empty()) return true;
    if (disk_.FileExists(templates_ + request_.install_name)) {
      CopyFileToFolder(services_, templates_ + request_.install_name, request_.output_folder, files_);
    }
    if (!disk_.FileExists(output_ + request_.install_name)) {
      services_.dialogs->Message(
          "Could not find install script file.  You will be unable to add this installation package to the "
          "Stratocon site manager.");
      return false;
    }
    auto command = lang_package_->SelectSingleNode("InstallCommand");
    if (!command) command = lang_package_->AppendElement("InstallCommand");
    command->SetText(request_.install_name + request_.command_tail);
    return true;
  }

  void AddFile(const std::string& name) {
    file_list_->AppendElement("FileItem")->AppendElement("Name")->SetText(name);
  }

  void FillFileList() {
    while (file_list_->HasChildNodes()) file_list_->RemoveFirstChild();
    if (context_.run.PackageMode) {
      if (!files_) return;
      for (const std::string& name : files_->names) {
        if (!EndsWithAny(name, {".ovp", ".pkg"})) AddFile(name);
      }
      return;
    }
    AddFile(request_.install_name);
    for (const char* name : {"KTECFG.CAB", "KTECFG_S.CAB", "KTECFG_W.CAB"}) {
      // That of this run is there, whether it can be looked at or not.
      if (EqualsNoCase(name, context_.run.SettingsFileName) || disk_.FileExists(output_ + name))
        AddFile(name);
    }
  }

  // A template without the element is accepted, and gets none.
  void SetLanguage() {
    if (const auto language = lang_package_->SelectSingleNode("LangID"))
      language->SetText(request_.language_id);
  }

  void Sign() {
    EnterProgramFolder(services_);
    const std::string signed_catalog = output_ + "PkgCatalog.z";
    // An old result must not pass for a new one.
    if (disk_.FileExists(signed_catalog)) disk_.DeleteFile(signed_catalog, true).IgnoreError();
    RunAndWait(services_, context_.run, context_.host,
               "\"" + services_.system->ProgramFolder() + "\\StcSign.exe\" \"" + output_ + kCatalogName +
                   "\" .txs /c",
               platform::WindowStyle::kHidden);
    if (disk_.FileExists(signed_catalog)) return;
    services_.dialogs->Message(
        "Could not create PKGCATALOG.Z file. Template file may be corrupted.  You will be unable to add this "
        "installation package to the Stratocon site manager.");
  }

  PageContext& context_;
  platform::Services& services_;
  platform::FileSystem& disk_;
  const CatalogRequest& request_;
  FileListPtr& files_;
  std::string templates_;
  std::string output_;
  std::unique_ptr<platform::XmlDocument> document_;
  std::unique_ptr<XmlNode> document_node_;
  std::unique_ptr<XmlNode> lang_package_;
  std::unique_ptr<XmlNode> file_list_;
};

}  // namespace

void WritePackageCatalog(PageContext& context, const CatalogRequest& request, FileListPtr& files) {
  Catalog(context, request, files).Write();
}

void WriteInstallDescriptor(PageContext& context, FileListPtr& files, const std::string& template_folder,
                            const std::string& output_folder, const std::string& command,
                            const std::string& language) {
  platform::Services& services = context.services;
  const std::string source = services.system->ProgramFolder() + "\\" + template_folder + "\\Install.pkg";
  if (!CopyFileToFolder(services, source, output_folder, files)) {
    services.dialogs->Message(
        "Could not copy INSTALL.PKG template file.  You will be unable to add this installation package to "
        "the Stratocon repository.");
    return;
  }
  const std::string descriptor = output_folder + "\\Install.pkg";
  const auto write = [&](std::string_view section, std::optional<std::string_view> key,
                         std::optional<std::string_view> value) {
    // A value that cannot be written is not reported.
    return WriteIniValue(services, descriptor, section, key, value).ok();
  };
  write("Install", "Language", language);
  write("Install", "Command", command);
  write("Files", std::nullopt, std::nullopt);
  int number = 0;
  for (const std::string& name : files->names) {
    if (EndsWithAny(name, {".ovp", ".txs", ".pkg"})) continue;
    // A name that the system's code page cannot hold leaves no gap either.
    if (write("Files", "File" + std::to_string(number), name)) ++number;
  }
}

void AddPrefixedFileNames(const FileListPtr& source, FileListPtr& target, const std::string& prefix) {
  if (!source) return;
  if (!target) target = std::make_unique<FileList>();
  for (const std::string& name : source->names) target->names.push_back(prefix + name);
}

}  // namespace kw
