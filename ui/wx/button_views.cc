#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/radiobut.h>

#include <algorithm>

#include "ui/form.h"
#include "ui/wx/control_view.h"
#include "ui/wx/form_view.h"
#include "ui/wx/label_text.h"
#include "ui/wx/option_group.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

class ButtonView : public ControlView {
 public:
  ButtonView(FormView& form, Button& button, wxWindow* parent)
      : ControlView(form, button),
        button_(button),
        push_(new wxButton(parent, wxID_ANY, ToWx(button.Text()))) {
    push_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { User([this] { button_.UserClick(); }); });
  }

  wxWindow* Window() const override { return push_; }

 protected:
  void ApplyOwn(Changes changes) override {
    const wxString caption = ToWx(button_.Text());
    if (!changes.Has(Change::kText) || push_->GetLabel() == caption) return;
    push_->SetLabel(caption);
    form_.NeedLayout();
  }

 private:
  Button& button_;
  wxButton* push_;
};

/// The caption of a check box or option, broken into lines where the widget is narrower than the caption.
template <typename Widget>
class Caption {
 public:
  explicit Caption(Widget& widget) : widget_(widget) { AllowLines(widget); }

  void Set(const wxString& text) {
    if (text == text_) return;
    text_ = text;
    widget_.SetLabel(text);
    Measure();
  }

  void AllowWrap(int least) {
    least_ = least;
    Measure();
  }

  bool Rewrap() {
    if (least_ <= 0) return false;
    const int before = widget_.GetMinSize().y;
    const wxString broken = WrapText(widget_, text_, widget_.GetSize().x - Sign());
    if (widget_.GetLabel() != broken) widget_.SetLabel(broken);
    Measure();
    // No wider than its words, so that the sign of the focus frames these alone.
    const wxSize best = widget_.GetBestSize();
    if (best.x < widget_.GetSize().x) widget_.SetSize(best.x, widget_.GetSize().y);
    return widget_.GetMinSize().y != before;
  }

 private:
  /// The room that the sign before the caption takes.
  int Sign() const { return widget_.FromDIP(28); }

  void Measure() {
    widget_.InvalidateBestSize();
    wxSize best = widget_.GetBestSize();
    // On Windows the widget counts no lines.
    best.IncTo(wxSize(0, TextExtent(widget_, widget_.GetLabel()).y));
    const int natural = TextExtent(widget_, text_).x + Sign();
    widget_.SetMinSize(wxSize(least_ > 0 ? std::min(natural, least_) : best.x, best.y));
  }

  Widget& widget_;
  wxString text_;
  int least_ = 0;
};

class CheckBoxView : public ControlView, public WrappingView {
 public:
  CheckBoxView(FormView& form, CheckBox& box, wxWindow* parent)
      : ControlView(form, box), box_(box), check_(new wxCheckBox(parent, wxID_ANY, "")), caption_(*check_) {
    caption_.Set(ToWx(box.Text()));
    check_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) {
      User([this] {
        if (check_->GetValue() != box_.Checked()) box_.UserClick();
      });
    });
  }

  wxWindow* Window() const override { return check_; }
  void AllowWrap(int least) override { caption_.AllowWrap(least); }
  bool Rewrap() override { return caption_.Rewrap(); }

 protected:
  void ApplyOwn(Changes) override {
    if (check_->GetValue() != box_.Checked()) check_->SetValue(box_.Checked());
    caption_.Set(ToWx(box_.Text()));
  }

 private:
  CheckBox& box_;
  wxCheckBox* check_;
  Caption<wxCheckBox> caption_;
};

/// The widgets of a group keep at most one of them on by themselves. That none is on they cannot show, so
/// each group begins with a button that is never seen and that is on then.
class OptionView : public ControlView, public WrappingView {
 public:
  OptionView(FormView& form, Option& option, wxWindow* parent) : ControlView(form, option), option_(option) {
    none_ = GroupBefore(parent);
    if (!none_) {
      none_ = new wxRadioButton(parent, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxRB_GROUP);
      none_->SetClientData(reinterpret_cast<void*>(static_cast<intptr_t>(option.Group()) + 1));
      none_->Hide();
      none_->SetValue(true);
    }
    radio_ = new wxRadioButton(parent, wxID_ANY, "");
    caption_ = std::make_unique<Caption<wxRadioButton>>(*radio_);
    caption_->Set(ToWx(option.Text()));
    radio_->Bind(wxEVT_RADIOBUTTON, [this](wxCommandEvent&) { User([this] { option_.UserClick(); }); });
  }

  wxWindow* Window() const override { return radio_; }
  void AllowWrap(int least) override { caption_->AllowWrap(least); }
  bool Rewrap() override { return caption_->Rewrap(); }

 protected:
  void ApplyOwn(Changes) override {
    caption_->Set(ToWx(option_.Text()));
    if (option_.Value() && !radio_->GetValue()) radio_->SetValue(true);
    if (!option_.Value() && radio_->GetValue() && !AnotherIsOn()) TurnOff(*radio_, *none_);
  }

 private:
  /// The unseen button of the group that the last option in `parent` belongs to, if it is this one's group.
  wxRadioButton* GroupBefore(wxWindow* parent) const {
    const wxWindowList& children = parent->GetChildren();
    for (auto node = children.GetLast(); node; node = node->GetPrevious()) {
      auto* radio = dynamic_cast<wxRadioButton*>(node->GetData());
      if (!radio || !radio->GetClientData()) continue;
      return reinterpret_cast<intptr_t>(radio->GetClientData()) == option_.Group() + 1 ? radio : nullptr;
    }
    return nullptr;
  }

  bool AnotherIsOn() const {
    for (const Control* other : option_.Owner().Controls()) {
      if (other == &option_ || other->Kind() != ControlKind::kOption) continue;
      const auto& option = static_cast<const Option&>(*other);
      const ControlView* view = form_.ViewOf(option);
      if (option.Group() == option_.Group() && option.Value() && view &&
          view->Window()->GetParent() == radio_->GetParent()) {
        return true;
      }
    }
    return false;
  }

  Option& option_;
  wxRadioButton* none_;
  wxRadioButton* radio_;
  std::unique_ptr<Caption<wxRadioButton>> caption_;
};

}  // namespace

std::unique_ptr<ControlView> MakeButtonView(FormView& form, Button& button, wxWindow* parent) {
  return std::make_unique<ButtonView>(form, button, parent);
}

std::unique_ptr<ControlView> MakeCheckBoxView(FormView& form, CheckBox& box, wxWindow* parent) {
  return std::make_unique<CheckBoxView>(form, box, parent);
}

std::unique_ptr<ControlView> MakeOptionView(FormView& form, Option& option, wxWindow* parent) {
  return std::make_unique<OptionView>(form, option, parent);
}

}  // namespace kw::ui
