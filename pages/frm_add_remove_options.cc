#include "pages/frm_add_remove_options.h"

#include <initializer_list>
#include <utility>

namespace kw {

using platform::Answer;

frmAddRemoveOptions::frmAddRemoveOptions(PageContext& context)
    : WizardPage(context, kName, "Add/Remove Options", "Label1",
                 "These options control the information in the \"Add/Remove Programs\" control panel for the "
                 "installed product.",
                 1016),
      Frame2(*this, "Frame2", "All Windows Operating Systems"),
      AllowRemove(*this, "AllowRemove", "&Allow user to uninstall"),
      Frame1(*this, "Frame1", "Windows 2000, XP and Server 2003"),
      ShowOnPanel(*this, "ShowOnPanel", "Sh&ow on control panel"),
      AllowModify(*this, "AllowModify", "A&llow user to modify features"),
      Label5(*this, "Label5", "&Contact"),
      Contact(*this, "Contact"),
      Label4(*this, "Label4", "Co&mments"),
      Comments(*this, "Comments"),
      Label6(*this, "Label6", "Home &Page URL"),
      About(*this, "About"),
      Label7(*this, "Label7", "&Update Information URL"),
      UpdateInformation(*this, "UpdateInformation"),
      Label8(*this, "Label8", "&Technical Support URL"),
      SupportURL(*this, "SupportURL"),
      Label9(*this, "Label9", "T&echnical Support Telephone"),
      SupportTelephone(*this, "SupportTelephone"),
      db_(InstallerDb::Working(context.services, context.run)) {
  ShowOnPanel.on_click = [this] { OnShowOnPanel(); };
  AddButtons();
}

ui::Layout frmAddRemoveOptions::PageLayout() {
  using namespace ui;
  return Column(
      {Framed(Frame2, Place(AllowRemove)),
       Framed(Frame1,
              Column({Place(ShowOnPanel), Place(AllowModify),
                      Fields({Place(Label5), Place(Contact), Place(Label4), Place(Comments), Place(Label6),
                              Place(About), Place(Label7), Place(UpdateInformation), Place(Label8),
                              Place(SupportURL), Place(Label9), Place(SupportTelephone)})})),
       Space()},
      1);
}

void frmAddRemoveOptions::ReadConfig() {
  EnsureLoaded();
  const auto read = [this](const char* property, std::string& value) {
    auto result = db_.GetProperty(property);
    if (result.ok()) value = *result;
    return Check(result.status());
  };
  const std::pair<const char*, ui::TextBox*> texts[] = {
      {"ARPCONTACT", &Contact},     {"ARPCOMMENTS", &Comments},
      {"ARPURLINFOABOUT", &About},  {"ARPURLUPDATEINFO", &UpdateInformation},
      {"ARPHELPLINK", &SupportURL}, {"ARPHELPTELEPHONE", &SupportTelephone},
  };
  std::string value;
  for (const auto& [property, box] : texts) {
    if (!read(property, value)) return;
    box->SetText(value);
  }
  if (!read("ARPNOREMOVE", value)) return;
  AllowRemove.SetChecked(value.empty());
  if (!read("ARPNOMODIFY", value)) return;
  AllowModify.SetChecked(value.empty());
  if (!read("ARPSYSTEMCOMPONENT", value)) return;
  ShowOnPanel.SetChecked(value != "1");
  OnShowOnPanel();
}

void frmAddRemoveOptions::OnShowOnPanel() {
  const std::initializer_list<ui::Control*> others = {
      &AllowRemove, &AllowModify,       &Contact, &Label5,     &Comments, &Label4,           &About,
      &Label6,      &UpdateInformation, &Label7,  &SupportURL, &Label8,   &SupportTelephone, &Label9};
  for (ui::Control* control : others) control->SetEnabled(ShowOnPanel.Checked());
}

// Asks about a text that looks like no address; False keeps the page.
bool frmAddRemoveOptions::UrlIsWanted(ui::TextBox& box, const std::string& display_name) {
  const std::string& text = box.Text();
  if (text.empty() || text.starts_with("http://") || text.starts_with("https://")) return true;
  const Answer answer = services_.dialogs->Question(display_name + text +
                                                        "\r\nshould be left blank, begin with \"http://\" or "
                                                        "begin with \"https://\".\r\n\r\nClick OK to use it "
                                                        "anyway.",
                                                    {Answer::kOk, Answer::kCancel}, Answer::kOk, "");
  if (answer == Answer::kOk) return true;
  box.SelectField();
  return false;
}

Status frmAddRemoveOptions::WriteProperties() {
  const std::pair<const char*, std::string> properties[] = {
      {"ARPCONTACT", Contact.Text()},
      {"ARPCOMMENTS", Comments.Text()},
      {"ARPURLINFOABOUT", About.Text()},
      {"ARPURLUPDATEINFO", UpdateInformation.Text()},
      {"ARPHELPLINK", SupportURL.Text()},
      {"ARPHELPTELEPHONE", SupportTelephone.Text()},
      {"ARPNOREMOVE", ChooseValue(AllowRemove.Checked(), "", "1")},
      {"ARPNOMODIFY", ChooseValue(AllowModify.Checked(), "", "1")},
      {"ARPSYSTEMCOMPONENT", ChooseValue(ShowOnPanel.Checked(), "", "1")},
  };
  for (const auto& [property, value] : properties) KW_RETURN_IF_ERROR(db_.SetProperty(property, value));
  return {};
}

void frmAddRemoveOptions::LeavePage(const std::string& name) {
  if (!UrlIsWanted(About, "Home page URL ") || !UrlIsWanted(UpdateInformation, "Update Information URL ") ||
      !UrlIsWanted(SupportURL, "Technical Support URL ") || !Check(WriteProperties())) {
    return;
  }
  navigator_.GoToPage(name);
}

void frmAddRemoveOptions::AddChoices(ui::ListBox& list) {
  list.Add("\tAllow user to uninstall: " + ChooseValue(AllowRemove.Checked(), "Yes", "No"));
  list.Add("\tContact: " + Contact.Text());
  list.Add("\tHome page URL: " + About.Text());
  list.Add("\tTechnical Support URL: " + SupportURL.Text());
  list.Add("\tComments: " + Comments.Text());
  list.Add("\tUpdate Information: " + UpdateInformation.Text());
  list.Add("\tSupport Telephone: " + SupportTelephone.Text());
  list.Add("\tAllow user to modify features: " + ChooseValue(AllowModify.Checked(), "Yes", "No"));
  list.Add("\tShow in Control Panel: " + ChooseValue(ShowOnPanel.Checked(), "Yes", "No"));
  list.Add("");
}

}  // namespace kw
