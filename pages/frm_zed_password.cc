#include "pages/frm_zed_password.h"

#include "package/staging.h"
#include "settings/branches.h"

namespace kw {
namespace {

constexpr const char* kPresentPassword = "CAP";
constexpr const char* kNewPassword = "NCAP";

}  // namespace

frmZEDPassword::frmZEDPassword(PageContext& context)
    : WizardPage(context, kName, "Kitwright Password", "Label2", "Specify the configuration password.", 1021),
      Label3(*this, "Label3", "&Enter the password currently used to secure the configurations:"),
      Password(*this, "Password"),
      SetNewPassword(*this, "SetNewPassword", "En&ter a new password to secure the configurations:"),
      Label4(*this, "Label4", "Ne&w password:"),
      NewPassword(*this, "NewPassword"),
      Label5(*this, "Label5", "Confir&m new password:"),
      ConfirmNewPassword(*this, "ConfirmNewPassword") {
  Password.masked = NewPassword.masked = ConfirmNewPassword.masked = true;
  SetNewPassword.on_click = [this] { OnSetNewPassword(); };
  AddButtons();
}

ui::Layout frmZEDPassword::PageLayout() {
  using namespace ui;
  return Column(
      {Place(Label3), Indent(Place(Password)), Place(SetNewPassword),
       Indent(Fields({Place(Label4), Place(NewPassword), Place(Label5), Place(ConfirmNewPassword)})),
       Space()},
      1);
}

void frmZEDPassword::LoadPage() {
  if (run_.PackageMode) {
    // A new package has no present password to give.
    Password.EnableWithColor(false);
    Label3.SetEnabled(false);
    SetNewPassword.SetChecked(true);
  }
  OnSetNewPassword();
}

void frmZEDPassword::OnSetNewPassword() {
  const bool ticked = SetNewPassword.Checked();
  NewPassword.EnableWithColor(ticked);
  ConfirmNewPassword.EnableWithColor(ticked);
  if (!ticked && Visible()) Password.SetFocus();
}

Status frmZEDPassword::StorePasswords() {
  const auto encipher = [this](const std::string& text) -> Result<std::string> {
    // An empty password is stored as its terminator alone.
    if (text.empty()) return std::string();
    return EncryptText(services_, text);
  };
  const bool new_wanted = SetNewPassword.Checked();
  KW_ASSIGN_OR_RETURN(const std::string present, encipher(Password.Text()));
  KW_ASSIGN_OR_RETURN(const std::string wanted, encipher(new_wanted ? NewPassword.Text() : std::string()));
  KW_ASSIGN_OR_RETURN(auto key, services_.registry->CreateKey(platform::Hive::kCurrentUser, kStagingBranch,
                                                              platform::kKeyAll));
  KW_RETURN_IF_ERROR(key->SetValue(kPresentPassword, platform::RegistryValue::OfText(present)));
  if (new_wanted) return key->SetValue(kNewPassword, platform::RegistryValue::OfText(wanted));
  const Status deleted = key->DeleteValue(kNewPassword);
  return deleted.number() == kErrorFileNotFound ? Status() : deleted;
}

void frmZEDPassword::LeavePage(const std::string& name) {
  if (SetNewPassword.Checked() && NewPassword.Text() != ConfirmNewPassword.Text()) {
    services_.dialogs->Message(
        "The new passwords do not match. Please re-enter the new passwords in both text boxes.");
    NewPassword.SetText("");
    ConfirmNewPassword.SetText("");
    NewPassword.SetFocus();
    return;
  }
  if (Check(StorePasswords())) navigator_.GoToPage(name);
}

// The terminator counts, so that an empty password reads as given.
bool frmZEDPassword::IsGiven(const char* value_name) {
  auto key = services_.registry->OpenKey(platform::Hive::kCurrentUser, kStagingBranch, platform::kKeyQuery);
  if (!key.ok()) return false;
  const auto value = (*key)->QueryValue(value_name, kRegistryBuffer);
  if (value.number() == kErrorMoreData) return true;
  return value.ok() && value->size >= 1;
}

void frmZEDPassword::AddChoices(ui::ListBox& list) {
  list.Add(std::string("\tA password to allow applying of Kitwright configuration has ") +
           (IsGiven(kPresentPassword) ? "been given." : "not been given."));
  list.Add(std::string("\tA new password to allow applying of Kitwright configuration has ") +
           (IsGiven(kNewPassword) ? "been set." : "not been set."));
  list.Add("");
}

}  // namespace kw
