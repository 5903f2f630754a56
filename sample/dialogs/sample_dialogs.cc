// The product's dialog boxes: a list of values to edit, and a text to edit.

#include <wx/wx.h>

#include <utility>

#include "platform/registry.h"
#include "sample/settings/dialog_library.h"

namespace {

using kw::sample::Setting;

/// True when windows can be shown: in a program that has the toolkit running, or after starting it here.
bool ToolkitRuns() {
  static const bool runs = [] {
    if (wxTheApp != nullptr) return true;
    static int argc = 1;
    static char name[] = "Kestrane";
    static char* argv[] = {name, nullptr};
    wxApp::SetInstance(new wxApp);
    return wxEntryStart(argc, argv) && wxTheApp != nullptr && wxTheApp->CallOnInit();
  }();
  return runs;
}

wxString Shown(const std::string& utf8) { return wxString::FromUTF8(utf8); }

/// One row for each value: its name and a field, read-only for what cannot be edited as text.
class SettingsDialog : public wxDialog {
 public:
  SettingsDialog(const wxString& title, std::vector<Setting>& settings)
      : wxDialog(nullptr, wxID_ANY, title, wxDefaultPosition, wxDefaultSize,
                 wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
        settings_(settings) {
    auto* all = new wxBoxSizer(wxVERTICAL);
    auto* area = new wxScrolledWindow(this);
    area->SetScrollRate(0, FromDIP(12));
    auto* rows = new wxFlexGridSizer(2, wxSize(FromDIP(10), FromDIP(6)));
    rows->AddGrowableCol(1, 1);
    for (const Setting& setting : settings_) AddRow(area, rows, setting);
    area->SetSizer(rows);
    area->SetMinSize(FromDIP(wxSize(460, 280)));
    all->Add(area, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(10)));
    all->Add(CreateStdDialogButtonSizer(wxOK | wxCANCEL), wxSizerFlags().Expand().Border(wxALL, FromDIP(10)));
    SetSizerAndFit(all);
    CentreOnScreen();
    if (!fields_.empty()) fields_.front()->SetFocus();
  }

  /// Takes over what was typed.
  void TakeFields() {
    for (size_t i = 0; i < settings_.size(); ++i) {
      if (settings_[i].editable) settings_[i].text = fields_[i]->GetValue().utf8_string();
    }
  }

 private:
  void AddRow(wxWindow* area, wxSizer* rows, const Setting& setting) {
    const std::string name = setting.name.empty() ? "(Default)" : setting.name;
    const std::string label = setting.subkey.empty() ? name : setting.subkey + "\\" + name;
    long style = setting.editable ? 0 : wxTE_READONLY;
    if (setting.secret) style |= wxTE_PASSWORD;
    wxTextValidator digits(wxFILTER_DIGITS);
    auto* field =
        new wxTextCtrl(area, wxID_ANY, Shown(setting.text), wxDefaultPosition, wxDefaultSize, style);
    if (setting.editable && setting.type == kw::platform::kRegDword) field->SetValidator(digits);
    fields_.push_back(field);
    rows->Add(new wxStaticText(area, wxID_ANY, Shown(label)), wxSizerFlags().CentreVertical());
    rows->Add(field, wxSizerFlags(1).Expand());
  }

  std::vector<Setting>& settings_;
  std::vector<wxTextCtrl*> fields_;
};

/// A text over the whole box; OK asks for the complaint first.
class TextDialog : public wxDialog {
 public:
  TextDialog(const wxString& title, const std::string& text, std::string (*check)(const std::string& text))
      : wxDialog(nullptr, wxID_ANY, title, wxDefaultPosition, wxDefaultSize,
                 wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
        field_(new wxTextCtrl(this, wxID_ANY, Shown(text), wxDefaultPosition, FromDIP(wxSize(560, 320)),
                              wxTE_MULTILINE | wxHSCROLL)) {
    field_->SetFont(wxFont(wxFontInfo().Family(wxFONTFAMILY_TELETYPE)));
    auto* all = new wxBoxSizer(wxVERTICAL);
    all->Add(field_, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(10)));
    all->Add(CreateStdDialogButtonSizer(wxOK | wxCANCEL), wxSizerFlags().Expand().Border(wxALL, FromDIP(10)));
    SetSizerAndFit(all);
    CentreOnScreen();
    field_->SetFocus();
    Bind(
        wxEVT_BUTTON,
        [this, check](wxCommandEvent& event) {
          const std::string complaint = check(Text());
          if (complaint.empty()) {
            event.Skip();
          } else {
            wxMessageBox(Shown(complaint), GetTitle(), wxOK | wxICON_EXCLAMATION, this);
          }
        },
        wxID_OK);
  }

  std::string Text() const { return field_->GetValue().utf8_string(); }

 private:
  wxTextCtrl* field_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) int SampleEditSettings(const char* title,
                                                                         std::vector<Setting>* settings) {
  if (!ToolkitRuns()) return 0;
  SettingsDialog dialog(Shown(title), *settings);
  if (dialog.ShowModal() != wxID_OK) return 0;
  dialog.TakeFields();
  return 1;
}

extern "C" __attribute__((visibility("default"))) int SampleEditText(
    const char* title, std::string* text, std::string (*check)(const std::string& text)) {
  if (!ToolkitRuns()) return 0;
  TextDialog dialog(Shown(title), *text, check);
  if (dialog.ShowModal() != wxID_OK) return 0;
  *text = dialog.Text();
  return 1;
}
