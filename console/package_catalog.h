#ifndef KITWRIGHT_CONSOLE_PACKAGE_CATALOG_H_
#define KITWRIGHT_CONSOLE_PACKAGE_CATALOG_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// What one catalogue is written from and for.
struct CatalogRequest {
  std::string detection_script;
  std::string install_name;  ///< "" where the template's install command stays
  std::string command_tail;
  std::string template_folder;  ///< relative to the program's folder
  std::string output_folder;    ///< absolute
  std::string language_id;
};

/// Fills the template's catalogue and has the console's tool sign and compress it into PkgCatalog.z. Failures
/// are told and passed over. `files` may be absent, and gains the install file where the template brings one.
void WritePackageCatalog(PageContext& context, const CatalogRequest& request, FileListPtr& files);

/// Fills the template's Install.pkg with the language, the command and the list of files. `files` gains
/// "INSTALL.PKG".
void WriteInstallDescriptor(PageContext& context, FileListPtr& files, const std::string& template_folder,
                            const std::string& output_folder, const std::string& command,
                            const std::string& language);

/// Appends each entry of `source` behind `prefix` to `target`.
void AddPrefixedFileNames(const FileListPtr& source, FileListPtr& target, const std::string& prefix);

}  // namespace kw

#endif  // KITWRIGHT_CONSOLE_PACKAGE_CATALOG_H_
