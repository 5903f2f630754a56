#include "ui/wx/control_view.h"

#include "ui/wx/form_view.h"

namespace kw::ui {

void ControlView::Apply(Changes changes) {
  wxWindow* window = Window();
  ApplyOwn(changes);
  if (window->IsThisEnabled() != control_.Enabled()) window->Enable(control_.Enabled());
  if (window->IsShown() != control_.Visible()) {
    window->Show(control_.Visible());
    form_.NeedLayout();
  }
}

void ControlView::Focus(bool) { Window()->SetFocus(); }

void ControlView::User(const std::function<void()>& action) { form_.User(*this, action); }

void ControlView::UserByKey(std::function<void()> action) {
  Window()->CallAfter([this, action = std::move(action)] { User(action); });
}

std::unique_ptr<ControlView> MakeControlView(FormView& form, Control& control, wxWindow* parent) {
  switch (control.Kind()) {
    case ControlKind::kTextBox:
      return MakeTextBoxView(form, static_cast<TextBox&>(control), parent);
    case ControlKind::kCheckBox:
      return MakeCheckBoxView(form, static_cast<CheckBox&>(control), parent);
    case ControlKind::kOption:
      return MakeOptionView(form, static_cast<Option&>(control), parent);
    case ControlKind::kListBox:
      return MakeListBoxView(form, static_cast<ListBox&>(control), parent);
    case ControlKind::kComboBox:
      return MakeComboBoxView(form, static_cast<ComboBox&>(control), parent);
    case ControlKind::kGrid:
      return MakeGridView(form, static_cast<Grid&>(control), parent);
    case ControlKind::kTree:
      return MakeTreeView(form, static_cast<Tree&>(control), parent);
    case ControlKind::kButton:
      return MakeButtonView(form, static_cast<Button&>(control), parent);
    case ControlKind::kLabel:
      return MakeLabelView(form, static_cast<Label&>(control), parent);
    case ControlKind::kFrame:
      return MakeFrameView(form, static_cast<Frame&>(control), parent);
    case ControlKind::kImage:
      return MakeImageView(form, static_cast<Image&>(control), parent);
    case ControlKind::kLine:
      return MakeLineView(form, static_cast<Line&>(control), parent);
    case ControlKind::kEditor:
      return MakeEditorView(form, static_cast<Editor&>(control), parent);
  }
  return nullptr;
}

}  // namespace kw::ui
