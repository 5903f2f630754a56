#include <wx/settings.h>
#include <wx/textctrl.h>

#include "ui/wx/control_view.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

class TextBoxView : public ControlView {
 public:
  TextBoxView(FormView& form, TextBox& box, wxWindow* parent)
      : ControlView(form, box),
        box_(box),
        field_(new wxTextCtrl(parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                              box.masked ? wxTE_PASSWORD : 0)) {
    field_->SetMinSize(wxSize(field_->FromDIP(120), -1));
    field_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
      User([this] {
        const std::string typed = FromWx(field_->GetValue());
        if (typed != box_.Text()) box_.UserType(typed);
      });
    });
  }

  wxWindow* Window() const override { return field_; }

  void Focus(bool select_all) override {
    field_->SetFocus();
    if (select_all) field_->SelectAll();
  }

 protected:
  void ApplyOwn(Changes) override {
    const wxString text = ToWx(box_.Text());
    if (field_->GetValue() != text) field_->ChangeValue(text);
    // Not every theme gives a disabled box this colour by itself: some keep it as good as white.
    const bool face = box_.Back() == BackColor::kFace;
    if (face == face_) return;
    face_ = face;
    field_->SetBackgroundColour(face ? wxSystemSettings::GetColour(wxSYS_COLOUR_BTNFACE) : wxNullColour);
    field_->Refresh();
  }

 private:
  TextBox& box_;
  wxTextCtrl* field_;
  bool face_ = false;
};

class EditorView : public ControlView {
 public:
  EditorView(FormView& form, Editor& editor, wxWindow* parent)
      : ControlView(form, editor),
        editor_(editor),
        field_(new wxTextCtrl(parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                              wxTE_MULTILINE | wxTE_DONTWRAP)) {
    EditorView::UseFont(field_->GetFont());
    field_->SetMinSize(field_->FromDIP(wxSize(420, 240)));
    field_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
      User([this] {
        const std::string typed = FromWxLines(field_->GetValue());
        if (typed != editor_.Text()) editor_.UserType(typed);
      });
    });
  }

  wxWindow* Window() const override { return field_; }

  void UseFont(const wxFont& font) override {
    field_->SetFont(wxFont(wxFontInfo(font.GetPointSize()).Family(wxFONTFAMILY_TELETYPE)));
  }

 protected:
  void ApplyOwn(Changes) override {
    const wxString text = ToWxLines(editor_.Text());
    if (field_->GetValue() != text) field_->ChangeValue(text);
  }

 private:
  Editor& editor_;
  wxTextCtrl* field_;
};

}  // namespace

std::unique_ptr<ControlView> MakeTextBoxView(FormView& form, TextBox& box, wxWindow* parent) {
  return std::make_unique<TextBoxView>(form, box, parent);
}

std::unique_ptr<ControlView> MakeEditorView(FormView& form, Editor& editor, wxWindow* parent) {
  return std::make_unique<EditorView>(form, editor, parent);
}

}  // namespace kw::ui
