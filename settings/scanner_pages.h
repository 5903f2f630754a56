#ifndef KITWRIGHT_SETTINGS_SCANNER_PAGES_H_
#define KITWRIGHT_SETTINGS_SCANNER_PAGES_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// A nearly bare page with one button that starts the product's own dialog box. It knows afterwards only
/// whether the user changed something; the settings travel through the staging branch.
class ScannerPage : public WizardPage, public SettingsPage {
 public:
  void AddChoices(ui::ListBox& list) override;

  ui::Button ConfigureSettings;

 protected:
  /// `flag` is the page's change flag; the two lines are its review lines.
  ScannerPage(PageContext& context, std::string name, std::string title, std::string text, std::string button,
              int help_id, bool& flag, std::string line_set, std::string line_clear);

  ui::Layout PageLayout() override;
  /// What the button does; not entered twice.
  virtual void Configure() = 0;
  int RunTool(const std::string& command, bool already_configured);

  bool& flag_;

 private:
  std::string line_set_;
  std::string line_clear_;
  bool InSettingsTool = false;
};

class frmOnAccessMonitor : public ScannerPage {
 public:
  static constexpr const char* kName = "frmOnAccessMonitor";
  explicit frmOnAccessMonitor(PageContext& context);
  void TransferSettings() override;

 protected:
  void Configure() override;
};

class frmEmailScan : public ScannerPage {
 public:
  static constexpr const char* kName = "frmEmailScan";
  explicit frmEmailScan(PageContext& context);
  void TransferSettings() override;

 protected:
  void Configure() override;
};

class frmBeaconryClient : public ScannerPage {
 public:
  static constexpr const char* kName = "frmBeaconryClient";
  explicit frmBeaconryClient(PageContext& context);
  void TransferSettings() override;

 protected:
  void Configure() override;
};

class frmUIOptions : public ScannerPage {
 public:
  static constexpr const char* kName = "frmUIOptions";
  explicit frmUIOptions(PageContext& context);
  void TransferSettings() override;
  void Initialize() {}

 protected:
  void Configure() override;
};

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_SCANNER_PAGES_H_
