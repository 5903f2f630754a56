#ifndef KITWRIGHT_PAGES_FRM_ADD_PROGRAM_H_
#define KITWRIGHT_PAGES_FRM_ADD_PROGRAM_H_

#include <string>

#include "pages/wizard_dialog.h"

namespace kw {

/// Adds or edits one program of frmPrograms.
class frmAddProgram : public WizardDialog {
 public:
  static constexpr const char* kName = "frmAddProgram";
  explicit frmAddProgram(PageContext& context);

  /// Set by the opener: the dialog adds a row; the edited row came from the package.
  bool AddingNew = false;
  bool InPackage = false;

  ui::Label ExeFileNameLabel;
  ui::TextBox ExeFileName;
  ui::Button Browse;
  ui::Label ParametersLabel;
  ui::TextBox Parameters;
  ui::Button OK;
  ui::Button Cancel;
  ui::Button Help;

  ui::Layout ContentLayout() override;

 private:
  void OnOk();
  bool ProgramIsValid();
  bool DuplicateIsWanted();
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_ADD_PROGRAM_H_
