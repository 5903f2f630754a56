#ifndef KITWRIGHT_SHELL_FRM_FINISH_H_
#define KITWRIGHT_SHELL_FRM_FINISH_H_

#include "shell/page_contract.h"

namespace kw {

/// The last window: tells the outcome of the build. There is no way back from it, and everything is cleaned
/// up before it shows.
class frmFinish : public ui::Form {
 public:
  static constexpr const char* kName = "frmFinish";
  explicit frmFinish(PageContext& context);

  ui::Image TitleImage;
  ui::Image Logo;
  ui::Label Title;
  ui::Label Label4;
  ui::Line Line1;
  ui::Tree TreeView1;
  ui::Label lblFinalMessage;
  ui::Label lblFinalDirectory;
  ui::Label lblBCNFinalMessage;
  ui::Label lblBCNFinalDirectory;
  ui::Label lblBWKFinalMessage;
  ui::Label lblBWKFinalDirectory;
  ui::Label lblHint;
  ui::Line Line2;
  ui::Button cmdHelp;
  ui::Button Exit;

  ui::Layout ContentLayout() override;

 protected:
  void OnLoad() override;
  void OnActivate() override;
  bool OnQueryUnload() override;

 private:
  void TellPackage();
  void TellSettingsFile();
  void HideCompanions();

  PageContext& context_;
};

}  // namespace kw

#endif  // KITWRIGHT_SHELL_FRM_FINISH_H_
