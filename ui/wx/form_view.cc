#include "ui/wx/form_view.h"

#include <wx/button.h>
#include <wx/display.h>
#include <wx/toplevel.h>

#include <algorithm>
#include <utility>

#include "ui/wx/accessibility.h"
#include "ui/wx/form_layout.h"
#include "ui/wx/label_text.h"
#include "ui/wx/wx_host.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

// The size of a page's panel that its least size is worked out for, at 100 %.
constexpr int kUsualWidth = 880;
constexpr int kUsualHeight = 690;
// A page never asks for more of the screen's height than this share; beyond it its content scrolls.
constexpr double kScreenShare = 0.6;
// The list of pages has the same name on every page.
constexpr std::string_view kPageTree = "TreeView1";

bool IsChoiceOn(const Control& control) {
  if (control.Kind() == ControlKind::kOption) return static_cast<const Option&>(control).Value();
  return true;
}

/// Where a person begins on a page: the first control of its content that can be used.
bool BeginsHere(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::kTextBox:
    case ControlKind::kEditor:
    case ControlKind::kCheckBox:
    case ControlKind::kOption:
    case ControlKind::kComboBox:
    case ControlKind::kGrid:
      return control.UserCanUse() && IsChoiceOn(control);
    case ControlKind::kTree:
      return control.UserCanUse() && control.Name() != kPageTree;
    default:
      return false;
  }
}

}  // namespace

FormView::FormView(WxHost& host, Form& form, wxWindow* parent)
    : host_(host), form_(&form), panel_(new wxPanel(parent, wxID_ANY)) {
  panel_->Hide();
  FormLayout layout(form.ContentLayout(), form.Style(), panel_,
                    [this](Control& control, wxWindow* container) {
                      std::unique_ptr<ControlView> view = MakeControlView(*this, control, container);
                      ControlView* made = view.get();
                      order_.push_back(made);
                      if (auto* wrapping = dynamic_cast<WrappingView*>(made)) wrapping_.push_back(wrapping);
                      views_[&control] = std::move(view);
                      return made;
                    });
  layout.Build(form.Controls());
  scroller_ = layout.Scroller();
  for (ControlView* view : order_) view->Apply(Changes::All());
  ApplyFont();
  NameForReaders(layout);
  if (scroller_) {
    // What the content needs depends on how its labels break, hence on the width that pages usually have.
    panel_->SetSize(ScaledSize(*panel_, wxSize(kUsualWidth, kUsualHeight)));
    DoLayout();
    const wxSize content = scroller_->GetSizer()->CalcMin();
    const int most = static_cast<int>(wxDisplay(parent).GetClientArea().height * kScreenShare);
    scroller_->SetMinSize(wxSize(content.x, std::min(content.y, most)));
  }
  panel_->Enable(form.Enabled());
  panel_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    DoLayout();
  });
  panel_->Bind(wxEVT_PAINT, [this](wxPaintEvent& event) {
    painted_ = true;
    event.Skip();
  });
  panel_->Bind(wxEVT_CHILD_FOCUS, [this](wxChildFocusEvent& event) {
    event.Skip();
    if (event.GetWindow() != panel_ && event.GetWindow() != scroller_) last_focus_ = event.GetWindow();
  });
}

void FormView::NameForReaders(const FormLayout& layout) {
  SetAccessibleId(panel_, ToWx(form_->Name()));
  for (ControlView* view : order_) {
    const Control& control = view->Shown();
    SetAccessibleId(view->Window(), ToWx(form_->Name() + "." + control.Name()));
    const auto label = layout.Labels().find(&control);
    if (label != layout.Labels().end()) {
      SetAccessibleName(view->Window(), WithoutAccessKey(label->second->Text()));
    } else if (control.Name() == kPageTree) {
      SetAccessibleName(view->Window(), "Pages");
    } else if (NeedsName(control)) {
      SetAccessibleName(view->Window(), ToWx(form_->Caption()));
    }
  }
  for (const auto& [button, field] : layout.FieldsOfButtons()) {
    const auto label = layout.Labels().find(field);
    if (label == layout.Labels().end()) continue;
    SetAccessibleDescription(ViewOf(*button)->Window(), WithoutAccessKey(label->second->Text()));
  }
}

FormView::~FormView() {
  // The widgets' handlers know their views, so the widgets go first.
  panel_->Destroy();
}

ControlView* FormView::ViewOf(const Control& control) const {
  const auto found = views_.find(&control);
  return found == views_.end() ? nullptr : found->second.get();
}

void FormView::Mark(const Control& control, Change change) {
  if (views_.count(&control)) pending_[&control].Add(change);
}

void FormView::Flush() {
  if (!form_) return;
  while (!pending_.empty()) {
    const auto changes = std::exchange(pending_, {});
    for (ControlView* view : order_) {
      const auto found = changes.find(&view->Shown());
      if (found == changes.end()) continue;
      view->Apply(found->second);
      if (found->second.Has(Change::kText) && dynamic_cast<WrappingView*>(view)) need_layout_ = true;
    }
  }
  if (need_layout_) {
    DoLayout();
    panel_->Refresh();
  }
}

void FormView::DoLayout() {
  need_layout_ = false;
  panel_->Layout();
  // A label that needs another line moves what is below it, which may change the room of others.
  for (int pass = 0; pass < 3; ++pass) {
    if (scroller_) {
      scroller_->FitInside();
      scroller_->Layout();
    }
    bool changed = false;
    for (WrappingView* label : wrapping_) changed = label->Rewrap() || changed;
    if (!changed) return;
    panel_->Layout();
  }
}

void FormView::ForgetSizes() {
  for (ControlView* view : order_) view->Window()->InvalidateBestSize();
}

wxSize FormView::LeastSize() const { return panel_->GetSizer()->CalcMin(); }

void FormView::Focus(const Control& control, bool select_all) {
  Flush();
  ControlView* view = ViewOf(control);
  if (!view) return;
  last_focus_ = view->Window();
  view->Focus(select_all);
}

void FormView::FocusSomething() {
  const wxWindow* restored = std::exchange(left_, nullptr);
  if (last_focus_ && last_focus_ != restored && last_focus_->IsEnabled() && last_focus_->IsShownOnScreen()) {
    last_focus_->SetFocus();
    return;
  }
  for (ControlView* view : order_) {
    if (BeginsHere(view->Shown())) {
      view->Focus(false);
      return;
    }
  }
  for (ControlView* view : order_) {
    const Control& control = view->Shown();
    if (control.Kind() == ControlKind::kButton && control.UserCanUse() &&
        static_cast<const Button&>(control).is_default) {
      view->Focus(false);
      return;
    }
  }
}

void FormView::Enable(bool enabled) {
  if (panel_->IsThisEnabled() == enabled) return;
  wxWindow* focused = wxWindow::FindFocus();
  const bool had_focus = focused && panel_->IsDescendant(focused);
  panel_->Enable(enabled);
  if (!had_focus && last_focus_ && enabled && panel_->IsShownOnScreen()) last_focus_->SetFocus();
}

void FormView::ApplyFont() {
  if (form_->TextFont() == font_) return;
  font_ = form_->TextFont();
  wxFont shown = panel_->GetFont();
  if (!font_.face.empty()) shown = wxFont(wxFontInfo(font_.size).FaceName(ToWx(font_.face)));
  for (ControlView* view : order_) view->UseFont(shown);
  need_layout_ = true;
}

void FormView::User(ControlView& view, const std::function<void()>& action) {
  if (!form_ || host_.Ended()) return;
  Control& control = view.Shown();
  if (!control.UserCanUse() || host_.Redirects(*form_)) {
    pending_[&control] = Changes::All();
    host_.FlushSoon();
    return;
  }
  WxHost::Handling handling(host_);
  action();
}

bool FormView::PressCancel() {
  if (!form_ || host_.Ended()) return false;
  for (Control* control : form_->Controls()) {
    if (control->Kind() != ControlKind::kButton || !control->UserCanUse()) continue;
    auto* button = static_cast<Button*>(control);
    if (!button->is_cancel) continue;
    WxHost::Handling handling(host_);
    button->UserClick();
    return true;
  }
  return false;
}

void FormView::ApplyDefaultButton() {
  auto* window = wxDynamicCast(wxGetTopLevelParent(panel_), wxTopLevelWindow);
  if (!window || !form_) return;
  wxWindow* chosen = nullptr;
  for (ControlView* view : order_) {
    const Control& control = view->Shown();
    if (control.Kind() == ControlKind::kButton && static_cast<const Button&>(control).is_default) {
      chosen = view->Window();
    }
  }
  if (auto* button = dynamic_cast<wxButton*>(chosen)) {
    button->SetDefault();
  } else {
    window->SetDefaultItem(nullptr);
  }
}

}  // namespace kw::ui
