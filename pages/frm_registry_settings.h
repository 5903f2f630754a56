#ifndef KITWRIGHT_PAGES_FRM_REGISTRY_SETTINGS_H_
#define KITWRIGHT_PAGES_FRM_REGISTRY_SETTINGS_H_

#include <array>
#include <string>
#include <vector>

#include "shell/page_contract.h"

namespace kw {

/// Extra registry files that travel with the settings: one for all systems, or one for each.
class frmRegistrySettings : public WizardPage {
 public:
  static constexpr const char* kName = "frmRegistrySettings";

  /// One place for a file.
  struct Slot {
    ui::TextBox* box = nullptr;
    ui::Button* browse = nullptr;
    const char* base_name = "";  ///< of the .REG and .CFG files
    const char* label = "";      ///< in messages
    const char* review_line = "";
    std::string path;  ///< the real .REG file for the build, "" for none
  };

  explicit frmRegistrySettings(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  /// The slots that count under the present option, in their order.
  std::vector<const Slot*> ChosenSlots() const;

  ui::Option SingleFile;
  ui::TextBox RegFile;
  ui::Button Browse;
  ui::Option MultipleFiles;
  ui::Label Label2;
  ui::TextBox RegFileNT;
  ui::Button BrowseNT;
  ui::Label Label3;
  ui::TextBox RegFile2000;
  ui::Button Browse2000;
  ui::Label Label1;
  ui::TextBox RegFileXP;
  ui::Button BrowseXP;

 protected:
  ui::Layout PageLayout() override;
  void LoadPage() override;
  void LeavePage(const std::string& name) override;

 private:
  std::string MarkerOf(const Slot& slot) const;
  void EnableSlots();
  bool TakeFromSource(Slot& slot, ui::Option& option);
  bool CheckSlot(Slot& slot);

  std::array<Slot, 4> slots_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_REGISTRY_SETTINGS_H_
