#ifndef KITWRIGHT_PAGES_FRM_SOURCE_AND_DESTINATION_H_
#define KITWRIGHT_PAGES_FRM_SOURCE_AND_DESTINATION_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// The first page of package mode, and the only place where a package enters the program. Leaving it checks
/// both folders, makes and opens the working copy, and initialises every page from it.
class frmSourceAndDestination : public WizardPage {
 public:
  static constexpr const char* kName = "frmSourceAndDestination";
  explicit frmSourceAndDestination(PageContext& context);

  ui::Label Label2;
  ui::TextBox SourceDir;
  ui::Button SourceBrowse;
  ui::Label Label3;
  ui::TextBox DestinationDir;
  ui::Button DestinationBrowse;
  ui::CheckBox Optimize;

  void AddChoices(ui::ListBox& list) override;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void OnActivate() override;
  void LeavePage(const std::string& name) override;
  void OnBack() override;
  void OnCancel() override;
  bool OnQueryUnload() override;

 private:
  // The stages of LeavePage. Each gives False after it brought the page back to the user.
  bool CheckFolders(std::string& setup_path);
  bool PrepareDestination();
  bool FindPackage(const std::string& setup_path);
  bool OpenPackage();
  bool CheckPackage();
  bool UnpackPackage();
  void InitializePages();

  /// Ends the attempt on this page with a message and the focus in `field`.
  bool Stop(ui::TextBox& field, const std::string& message);
  /// The same where the box was shown already.
  bool Stay(ui::TextBox& field);
  /// Removes what this attempt made.
  void Discard();
  /// A failure that no rule provides for: told, the attempt discarded.
  bool Fail(const Status& status);
  bool Confirm(const std::string& question);

  /// Guards against a second click while the first is being served.
  bool Leaving = false;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_SOURCE_AND_DESTINATION_H_
