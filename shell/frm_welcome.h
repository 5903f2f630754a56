#ifndef KITWRIGHT_SHELL_FRM_WELCOME_H_
#define KITWRIGHT_SHELL_FRM_WELCOME_H_

#include "shell/page_contract.h"

namespace kw {

/// The first window, outside the page table: a package, or a settings file alone.
class frmWelcome : public ui::Form {
 public:
  static constexpr const char* kName = "frmWelcome";
  explicit frmWelcome(PageContext& context);

  ui::Image TitleImage;
  ui::Image Logo;
  ui::Image Image3;
  ui::Label Label1;
  ui::Label Label4;
  ui::Line Line1;
  ui::Option ModifyPackage;
  ui::Option GenerateSettings;
  ui::Line Line2;
  ui::Button Help;
  ui::Button Next;
  ui::Button Cancel;

  ui::Layout ContentLayout() override;

 protected:
  void OnLoad() override;
  void OnActivate() override;
  bool OnQueryUnload() override;

 private:
  void OnNext();
  void Leave();

  PageContext& context_;
  /// False once the user has left: the next activation unloads the pages.
  bool PageLoaded = false;
};

}  // namespace kw

#endif  // KITWRIGHT_SHELL_FRM_WELCOME_H_
