#ifndef KITWRIGHT_PAGES_FRM_ADDITIONAL_FILE_H_
#define KITWRIGHT_PAGES_FRM_ADDITIONAL_FILE_H_

#include <string>
#include <vector>

#include "package/installer_db.h"
#include "pages/wizard_dialog.h"

namespace kw {

/// Adds or edits one file of frmAdditionalFiles; its OK writes the file's rows at once.
class frmAdditionalFile : public WizardDialog {
 public:
  static constexpr const char* kName = "frmAdditionalFile";
  explicit frmAdditionalFile(PageContext& context);

  /// Set by the opener.
  std::string FileKey;
  bool AddingNew = false;
  bool InPackage = false;

  /// List position of an external name, 0 when it is not in the list.
  int GetDestinationFolderIndex(const std::string& external_name) const;
  /// External name for an internal one, "" when it is not in the list.
  std::string GetDestinationFolderExternalName(const std::string& internal_name) const;

  ui::Label SourceFileLabel;
  ui::TextBox SourceFile;
  ui::Button Browse;
  ui::Label DestinationFolderLabel;
  ui::ComboBox DestinationFolder;
  ui::Label SubFoldersLabel;
  ui::TextBox SubFolders;
  ui::Button cmdOK;
  ui::Button cmdCancel;
  ui::Button Help;

  ui::Layout ContentLayout() override;

 protected:
  bool OnQueryUnload() override;

 private:
  struct File {
    std::string name;
    int size = 0;
  };

  void AddDestinationFolder(const std::string& external_name, const std::string& internal_name);
  static std::string TakeFirstPathPart(std::string& path);
  void ClearFields();
  void OnOk();
  bool InputIsValid();
  bool IsDuplicate() const;
  Result<File> LookUpFile();
  Status WriteRows(const File& file);
  Result<std::string> WriteDirectories();
  /// A new row of the table Directory; gives its key.
  Result<std::string> AddDirectory(const std::string& parent, const std::string& default_dir);
  void FillGridRow();

  std::vector<std::string> internal_names_;
  InstallerDb db_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_ADDITIONAL_FILE_H_
