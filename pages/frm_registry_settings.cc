#include "pages/frm_registry_settings.h"

#include "base/text.h"
#include "package/file_rules.h"
#include "pages/wizard_dialog.h"
#include "settings/branches.h"

namespace kw {
namespace {

constexpr unsigned kRegFileChecks = kCheckCharacters | kCheckLocal | kCheckUnc | kCheckFileExists;

}  // namespace

frmRegistrySettings::frmRegistrySettings(PageContext& context)
    : WizardPage(
          context, kName, "Registry Settings", "Label5",
          "You can create a single .REG file for all of your extra installation settings. Or, if you need to "
          "modify system specific settings, you can create a separate .REG file for each operating system.",
          1017),
      SingleFile(*this, "SingleFile", "&Use one .REG file for all operating systems:"),
      RegFile(*this, "RegFile"),
      Browse(*this, "Browse", "B&rowse..."),
      MultipleFiles(*this, "MultipleFiles", "U&se a separate .REG file for each operating system:"),
      Label2(*this, "Label2", "Windows N&T"),
      RegFileNT(*this, "RegFileNT"),
      BrowseNT(*this, "BrowseNT", "Br&owse..."),
      Label3(*this, "Label3", "Windows &2000"),
      RegFile2000(*this, "RegFile2000"),
      Browse2000(*this, "Browse2000", "Bro&wse..."),
      Label1(*this, "Label1", "Windows &XP"),
      RegFileXP(*this, "RegFileXP"),
      BrowseXP(*this, "BrowseXP", "Brows&e..."),
      slots_(
          {{{&RegFile, &Browse, "ZED_GEN", "Registry file", "REG file (used for all operating systems):", ""},
            {&RegFileNT, &BrowseNT, "ZED_NT", "Windows NT registry file",
             "REG file (used for Windows NT operating systems): ", ""},
            {&RegFile2000, &Browse2000, "ZED_2K", "Windows 2000 registry file",
             "REG file (used for Windows 2000 operating systems): ", ""},
            {&RegFileXP, &BrowseXP, "ZED_XP", "Windows XP registry file",
             "REG file (used for Windows XP operating systems): ", ""}}}) {
  SingleFile.on_click = [this] { EnableSlots(); };
  MultipleFiles.on_click = [this] { EnableSlots(); };
  for (Slot& slot : slots_) {
    slot.browse->on_click = [this, &slot] {
      const std::string chosen = services_.dialogs->OpenFile("Select Registry File to Install",
                                                             "Registry Files (*.reg)|*.reg", "", "");
      if (!chosen.empty()) slot.box->SetText(chosen);
    };
  }
  AddButtons();
}

ui::Layout frmRegistrySettings::PageLayout() {
  using namespace ui;
  return Column({Place(SingleFile), Indent(Row({Place(RegFile, 1), Place(Browse)})), Place(MultipleFiles),
                 Indent(Fields({Place(Label2), Row({Place(RegFileNT, 1), Place(BrowseNT)}), Place(Label3),
                                Row({Place(RegFile2000, 1), Place(Browse2000)}), Place(Label1),
                                Row({Place(RegFileXP, 1), Place(BrowseXP)})})),
                 Space()},
                1);
}

void frmRegistrySettings::LoadPage() {
  SingleFile.SetValue(true);
  EnableSlots();
}

std::string frmRegistrySettings::MarkerOf(const Slot& slot) const {
  return kInPackage + std::string(slot.base_name) + ".REG";
}

std::vector<const frmRegistrySettings::Slot*> frmRegistrySettings::ChosenSlots() const {
  if (SingleFile.Value()) return {&slots_[0]};
  return {&slots_[1], &slots_[2], &slots_[3]};
}

void frmRegistrySettings::EnableSlots() {
  for (Slot& slot : slots_) {
    const bool enabled = SingleFile.Value() == (&slot == &slots_[0]);
    slot.box->EnableWithColor(enabled);
    slot.browse->SetEnabled(enabled);
  }
}

void frmRegistrySettings::ReadConfig() {
  EnsureLoaded();
  SingleFile.SetValue(true);
  for (Slot& slot : slots_) {
    slot.box->SetText("");
    slot.path.clear();
  }
  if (!TakeFromSource(slots_[0], SingleFile)) {
    for (size_t i = 1; i < slots_.size(); ++i) TakeFromSource(slots_[i], MultipleFiles);
  }
  EnableSlots();
}

// Deciphers the slot's file where the settings source has one. The marker stands even when that failed.
bool frmRegistrySettings::TakeFromSource(Slot& slot, ui::Option& option) {
  const std::string base = run_.ConfigAppDataFolder + "\\" + slot.base_name;
  if (!services_.files->FileExists(base + ".CFG")) return false;
  option.SetValue(true);
  if (!DecryptFile(services_, base + ".CFG", base + ".REG")) {
    services_.dialogs->Message(
        "Could not decrypt the configuration registry file.  The file will not be used.  Please specify a "
        "new registry file on the Registry settings page.");
  }
  slot.box->SetText(MarkerOf(slot));
  slot.path = base + ".REG";
  return true;
}

// Takes the slot's text over; False stops on the field.
bool frmRegistrySettings::CheckSlot(Slot& slot) {
  const std::string text = slot.box->Text();
  if (text.empty()) {
    slot.path.clear();
    return true;
  }
  if (text.starts_with(kInPackage)) {
    if (text == MarkerOf(slot)) return true;
    services_.dialogs->Message(
        std::string("This file name cannot be changed because it was previously added to the ") +
        (run_.PackageMode ? "installation" : "configuration") +
        " package.  You may continue with this file as it is or choose a completely new file.");
    slot.box->SetText(MarkerOf(slot));
    return false;
  }
  if (!ValidatePath(services_, slot.label, text, kRegFileChecks)) return false;
  if (!EndsWithNoCase(text, ".reg")) {
    services_.dialogs->Message(
        "The specified file " + text +
        " is not a registry file.  You can only import registry files.  \r\nPlease enter the "
        "path to a valid registry file and try again.");
    return false;
  }
  slot.path = text;
  return true;
}

void frmRegistrySettings::LeavePage(const std::string& name) {
  for (Slot& slot : slots_) {
    if (SingleFile.Value() != (&slot == &slots_[0])) continue;
    if (!CheckSlot(slot)) {
      slot.box->SelectField();
      return;
    }
  }
  navigator_.GoToPage(name);
}

void frmRegistrySettings::AddChoices(ui::ListBox& list) {
  for (const Slot* slot : ChosenSlots()) {
    std::string line = std::string("\t") + slot->review_line;
    if (slot->box->Text().empty()) {
      if (!line.ends_with(' ')) line += ' ';
      line += "None";
    }
    list.Add(line + slot->box->Text());
  }
  list.Add("");
}

}  // namespace kw
