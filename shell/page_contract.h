#ifndef KITWRIGHT_SHELL_PAGE_CONTRACT_H_
#define KITWRIGHT_SHELL_PAGE_CONTRACT_H_

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "package/run_state.h"
#include "platform/services.h"
#include "ui/form.h"

namespace kw {

class WizardPage;

/// The page table's operations, as pages see them. Pages are addressed by their captions, compared exactly; a
/// caption that the present list does not hold is passed over.
class Navigator {
 public:
  virtual ~Navigator() = default;
  virtual void BuildPackagePageList() = 0;
  virtual void BuildSettingsPageList() = 0;
  /// Derives Disabled of every record; False disables all.
  virtual void RecomputeDisabled(bool enable) = 0;
  virtual void RecomputeBlocked() = 0;
  virtual void SetPageConfigured(std::string_view caption, bool value) = 0;
  virtual void SetPageNeverConfigured(std::string_view caption, bool value) = 0;
  virtual void ClearAllConfigured() = 0;
  virtual bool PageIsRequired(std::string_view caption) = 0;
  virtual bool PageIsConfigured(std::string_view caption) = 0;
  virtual void SetPageFeatureOff(std::string_view caption, bool value) = 0;
  virtual void SetScannerPagesDisabled(bool value) = 0;
  virtual void SetPageNoSettings(std::string_view caption, bool value) = 0;
  virtual void SetConfigurationPagesEnabled(bool enabled) = 0;
  /// Caption of the next or previous page that may be entered; a message and "" when there is none.
  virtual std::string NextPageName() = 0;
  virtual std::string PreviousPageName() = 0;
  /// True: stay where you are (a message has told why, or the page is the current one).
  virtual bool IsPageBlocked(std::string_view caption) = 0;
  /// The one operation that changes page.
  virtual void GoToPage(std::string_view caption) = 0;
  virtual void FillPageTree(ui::Tree& tree) = 0;
  virtual void ActivateCurrentPage() = 0;
  /// The page on screen, below its dialogs; null while there is none.
  virtual WizardPage* ShownPage() = 0;
  virtual void LoadPageChoices(ui::ListBox& list) = 0;
  /// Unloads every page on a return to the welcome page.
  virtual void ResetPages() = 0;
  /// True while ResetPages unloads them.
  virtual bool UnloadingPages() const = 0;
  /// Brings every page but the one on screen back to its freshly loaded state and clears FeatureOff, so that
  /// a second opening of a package in one run doubles nothing.
  virtual void ReloadPages() = 0;

  /// The form of that name ("frmFeatures", "frmWelcome", "frmStatus"), made on first mention and kept until
  /// it is unloaded. Made, but not loaded: use Get or Page to call it. The name must be one of this program.
  virtual ui::Form& FormByName(std::string_view name) = 0;

  /// The form as its own class, by the class's kName, loaded.
  template <typename T>
  T& Get() {
    T& form = dynamic_cast<T&>(FormByName(T::kName));
    form.EnsureLoaded();
    return form;
  }
  /// The page of that name, loaded, through the contract alone.
  WizardPage& Page(std::string_view name);
};

/// What pages and the build ask of other folders. The composition fills it in; an operation that is not set
/// is left out of the sequences, and counts as a success.
struct WizardOperations {
  /// Packs the product settings into the package or the settings file; False stops the build.
  std::function<bool()> AddProductSettings;
  /// Rebuilds the cabinets and the tables that list them; False stops the build.
  std::function<bool()> CreateCabFile;
  /// Reads the settings that an opened package carries, and sets the source page of the settings by them.
  std::function<void()> OpenPackageSettings;
  /// Reads the agent that an opened package carries.
  std::function<void()> ReadPackageAgent;
  /// Copies the engine's text file beside the finished package.
  std::function<void()> CopySigTermsTxt;
  std::function<void()> CreateConsolePackage;
  std::function<void()> CreateOptimizedConsolePackage;
  std::function<void()> CreateSettingsConsolePackage;
};

/// What every page is given; outlives all pages.
struct PageContext {
  platform::Services& services;
  RunState& run;
  ui::FormHost& host;
  Navigator& navigator;
  WizardOperations operations{};
};

/// Maps an installer feature key to the caption of the page behind it, "" when there is none.
std::string FeatureToPageName(std::string_view feature_key, bool with_shell_extensions);

/// Busy state: one saved pointer serves the whole program, it does not nest.
void BeginBusy(ui::Form& page);
void EndBusy(ui::Form& page);
bool IsBusy(const ui::Form& page);

/// The small window that tells what a long step does.
class frmStatus : public ui::Form {
 public:
  static constexpr const char* kName = "frmStatus";
  explicit frmStatus(PageContext& context);
  ui::Label lblStatus;
  /// The idiom at every long step: caption, show, refresh both.
  void ShowText(const std::string& text, ui::Form& page);
  /// Hides the window; a busy page stays busy.
  void HideWhileWaiting(ui::Form& page);
  ui::Layout ContentLayout() override;

 protected:
  void OnLoad() override;
};

/// Asks "Any changes you have made will be discarded."; on OK undoes the destination, cleans up and gives
/// True.
bool ConfirmCancel(PageContext& context);
/// Opens ZED.chm at a context number; a failure is told in a plain box.
void ShowHelp(PageContext& context, int context_id);
/// Removes the maximise command and applies the locale's font; start of the Load of every page and dialog.
void InitializePage(PageContext& context, ui::Form& page);

/// Tells a failure in one plain box with the error's sentence. True when there was none.
bool CheckOrReport(platform::Services& services, const Status& status);

/// A page with a payload for the build.
class PayloadPage {
 public:
  virtual ~PayloadPage() = default;
  /// Applies the page's payload to the working package; True on success.
  virtual bool SaveConfig() = 0;
};

/// A page whose settings the product's tool writes out when the page was not configured.
class SettingsPage {
 public:
  virtual ~SettingsPage() = default;
  virtual void TransferSettings() = 0;
};

/// One page of the page table: its common controls and the handlers that are the same everywhere.
///
/// A derived page sets its texts in the constructor, adds its controls as members, and overrides what
/// differs. Its `LeavePage` validates and stores, then calls GoToPage; on a failure it shows the message,
/// moves the focus and returns.
class WizardPage : public ui::Form {
 public:
  /// `title` is the text of the label `Title`; `description` that of the line below it, a label named
  /// `description_name` ("Label4", "Label1", ...). `next_name` is the name of the Next button.
  WizardPage(PageContext& context, std::string name, std::string title, std::string description_name,
             std::string description, int help_id, std::string next_name = "Next");

  ui::Image TitleImage;
  ui::Image Logo;
  ui::Label Title;
  ui::Label Description;
  ui::Line Line1;
  ui::Tree TreeView1;

  /// Initialises the page's state from the working package. Runs once for each opened package.
  virtual void ReadConfig() {}
  /// Adds the page's lines to the review list; each begins with a tab, the last is "".
  virtual void AddChoices(ui::ListBox& list) = 0;

  int HelpId() const { return help_id_; }
  /// The whole page: title band, tree, PageLayout, buttons.
  ui::Layout ContentLayout() final;

  /// Shows the welcome page in place of this one, without any question.
  void BackToWelcome();

  // The buttons stand behind the page's own controls in the Tab order; AddButtons makes them.
  std::unique_ptr<ui::Line> Line2;
  std::unique_ptr<ui::Button> Help;
  std::unique_ptr<ui::Button> Back;
  std::unique_ptr<ui::Button> Next;   ///< null on the review page
  std::unique_ptr<ui::Button> Finsh;  ///< null on the review page
  std::unique_ptr<ui::Button> Save;   ///< the review page's, null elsewhere
  std::unique_ptr<ui::Button> Cancel;

 protected:
  /// The page's own part, between the tree and the buttons.
  virtual ui::Layout PageLayout() = 0;
  /// Validates, stores, goes to the page `name`.
  virtual void LeavePage(const std::string& name);
  /// What the page adds to Load and to Activate (visible pages only, behind FillPageTree).
  virtual void LoadPage() {}
  virtual void ActivatePage() {}
  /// The handlers that some pages replace.
  virtual void OnNext();
  virtual void OnBack();
  virtual void OnFinish();
  virtual void OnCancel();

  /// The general path for errors: a failure is told in one plain box, and the handler that calls this
  /// returns. True when all is well.
  bool Check(const Status& status) { return CheckOrReport(services_, status); }

  /// Makes the buttons; call it last in a derived constructor. `review` gives Save in place of Next and
  /// Finsh.
  void AddButtons(bool review = false);

  void OnLoad() override;
  void OnActivate() override;
  bool OnQueryUnload() override;

  PageContext& context_;
  Navigator& navigator_;
  platform::Services& services_;
  RunState& run_;
  bool RightButtonDown = false;

 private:
  void OnNodeClick(int index);

  int help_id_;
  std::string next_name_;
};

}  // namespace kw

#endif  // KITWRIGHT_SHELL_PAGE_CONTRACT_H_
