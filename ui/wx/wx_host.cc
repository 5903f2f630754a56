#include "ui/wx/wx_host.h"

#include <wx/app.h>
#include <wx/cursor.h>
#include <wx/evtloop.h>
#include <wx/menu.h>
#include <wx/sizer.h>
#include <wx/stopwatch.h>
#include <wx/utils.h>

#include <algorithm>
#include <utility>

#include "ui/form.h"
#include "ui/wx/access_keys.h"
#include "ui/wx/accessibility.h"
#include "ui/wx/label_text.h"
#include "ui/wx/status_window.h"
#include "ui/wx/wizard_frame.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

// How long one turn of PumpEvents waits for an event, and how long Refresh waits for a new window to be
// painted.
constexpr unsigned long kTurnMilliseconds = 3;
constexpr long kPaintMilliseconds = 120;
constexpr int kDialogWidth = 600;  // of a new dialog's content

void Forget(std::vector<Form*>& forms, const Form& form) {
  forms.erase(std::remove(forms.begin(), forms.end(), &form), forms.end());
}

/// Takes a top-level window away. It goes only when the toolkit is idle; what still reaches it until then
/// must not come back to a host that is gone.
void Retire(wxWindow& window) {
  window.SetEvtHandlerEnabled(false);
  window.Destroy();
}

}  // namespace

WxHost::Handling::~Handling() {
  if (--host_.handling_ == 0) wxWakeUpIdle();
}

WxHost::WxHost() {
  wxTheApp->Bind(wxEVT_IDLE, &WxHost::OnIdle, this);
  wxEvtHandler::AddFilter(this);
}

WxHost::~WxHost() {
  wxEvtHandler::RemoveFilter(this);
  wxTheApp->Unbind(wxEVT_IDLE, &WxHost::OnIdle, this);
  if (busy_pointer_) wxEndBusyCursor();
  views_.clear();
  gone_.clear();
  for (const auto& [form, window] : windows_) Retire(*window);
  for (wxWindow* window : gone_windows_) Retire(*window);
  if (frame_) Retire(*frame_);
}

FormView* WxHost::ViewOf(const Form& form) const {
  const auto found = views_.find(&form);
  return found == views_.end() ? nullptr : found->second.get();
}

wxTopLevelWindow* WxHost::WindowOf(const Form& form) const {
  const auto found = windows_.find(&form);
  return found == windows_.end() ? nullptr : found->second;
}

FormView& WxHost::Ensure(Form& form) {
  std::unique_ptr<FormView>& view = views_[&form];
  if (view) return *view;
  wxWindow* parent = nullptr;
  if (form.Style() == FormStyle::kPage) {
    if (!frame_) {
      frame_ = new WizardFrame([this] { CloseTopPage(); });
      BindKeys(*frame_, [this] { return TopPage(); });
      frame_->Bind(wxEVT_ACTIVATE, [this](wxActivateEvent& event) {
        event.Skip();
        if (event.GetActive() && redirected_ && bring_forward_) frame_->CallAfter(bring_forward_);
      });
    }
    parent = frame_;
  } else if (form.Style() == FormStyle::kDialog) {
    auto* dialog = new wxDialog(BoxParent(), wxID_ANY, ToWx(form.Caption()), wxDefaultPosition, wxDefaultSize,
                                wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER);
    MarkAsDialog(dialog);
    dialog->Bind(wxEVT_CLOSE_WINDOW, [this, shown = &form](wxCloseEvent& event) {
      event.Veto();
      CloseDialog(*shown);
    });
    BindKeys(*dialog, [shown = &form] { return shown; });
    windows_[&form] = dialog;
    parent = dialog;
  } else {
    auto* status = new StatusWindow(frame_, ToWx(form.Caption()));
    windows_[&form] = status;
    parent = &status->Base();
  }
  view = std::make_unique<FormView>(*this, form, parent);
  return *view;
}

void WxHost::BindKeys(wxWindow& window, std::function<Form*()> shown) {
  window.Bind(wxEVT_CHAR_HOOK, [this, &window, shown = std::move(shown)](wxKeyEvent& event) {
    if (event.GetKeyCode() != WXK_ESCAPE || event.HasAnyModifiers()) {
      Form* form = shown();
      FormView* view = form && !ended_ ? ViewOf(*form) : nullptr;
      if (!view || !PressAccessKey(*view, event)) event.Skip();
      return;
    }
    // Not within the hook by which Windows tells of keys: the question that comes then needs them too.
    window.CallAfter([this, shown] {
      Form* form = shown();
      FormView* view = form ? ViewOf(*form) : nullptr;
      if (view) view->PressCancel();
    });
  });
}

bool WxHost::Alive() const { return !ended_ && !visible_.empty(); }

wxWindow* WxHost::BoxParent() const {
  for (auto form = visible_.rbegin(); form != visible_.rend(); ++form) {
    if ((*form)->Style() == FormStyle::kDialog) return WindowOf(**form);
    if ((*form)->Style() == FormStyle::kPage) break;
  }
  return frame_ && frame_->IsShown() ? frame_ : nullptr;
}

void WxHost::FormShown(Form& form) {
  if (ended_) return;
  Ensure(form);
  visible_.push_back(&form);
  switch (form.Style()) {
    case FormStyle::kPage:
      ShowPage(form);
      break;
    case FormStyle::kDialog:
      ShowDialog(form);
      break;
    case FormStyle::kStatus:
      ShowStatus(form);
      break;
  }
  ApplyPointer();
}

void WxHost::ShowPage(Form& form) {
  FormView& view = Ensure(form);
  pages_.push_back(&form);
  view.Flush();
  frame_->SetTitle(ToWx(form.Caption()));
  frame_->ShowPanel(view.Panel(), view.LeastSize());
  view.ApplyDefaultButton();
  if (!frame_->IsShown()) frame_->Show();
  wants_focus_ = &form;
  FlushSoon();
}

void WxHost::ShowDialog(Form& form) {
  FormView& view = Ensure(form);
  wxTopLevelWindow* window = WindowOf(form);
  view.Flush();
  window->SetTitle(ToWx(form.Caption()));
  if (!window->GetSizer()) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(view.Panel(), 1, wxEXPAND);
    window->SetSizer(whole);
    // Wide enough for paths, and no higher than its content.
    wxSize first = ScaledSize(*window, wxSize(kDialogWidth, 0));
    first.IncTo(view.LeastSize());
    window->SetClientSize(first);
  }
  view.Panel()->Show();
  FitDialog(*window, view);
  window->CentreOnParent();
  view.ApplyDefaultButton();
  window->Show();
  wants_focus_ = &form;
  FlushSoon();
}

void WxHost::FitDialog(wxTopLevelWindow& window, FormView& view) {
  const wxSize least = view.LeastSize();
  window.SetMinClientSize(least);
  wxSize size = window.GetClientSize();
  size.IncTo(least);
  window.SetClientSize(size);
  window.Layout();
  view.DoLayout();
}

void WxHost::ShowStatus(Form& form) {
  FormView& view = Ensure(form);
  auto* window = static_cast<StatusWindow*>(WindowOf(form));
  view.Flush();
  window->ShowOver(BoxParent(), *view.Panel(), view.LeastSize());
  view.DoLayout();
}

void WxHost::FormHidden(Form& form) {
  Forget(visible_, form);
  FormView* view = ViewOf(form);
  if (!view) return;
  if (form.Style() == FormStyle::kPage) {
    Forget(pages_, form);
    Form* next = TopPage();
    if (next && frame_->Panel() == view->Panel()) {
      FormView& below = Ensure(*next);
      frame_->SetTitle(ToWx(next->Caption()));
      frame_->ShowPanel(below.Panel(), below.LeastSize());
      below.ApplyDefaultButton();
    }
  } else {
    view->ForgetFocus();
    auto* dialog = dynamic_cast<wxDialog*>(WindowOf(form));
    if (dialog && dialog->IsModal()) {
      dialog->EndModal(0);
    } else {
      WindowOf(form)->Hide();
    }
  }
  ApplyPointer();
  wxWakeUpIdle();
}

void WxHost::RunModal(Form& form) {
  auto* dialog = dynamic_cast<wxDialog*>(WindowOf(form));
  if (!dialog || ended_) return;
  Flush();
  dialog->ShowModal();
}

void WxHost::FormDestroyed(Form& form) {
  Forget(visible_, form);
  Forget(pages_, form);
  if (redirected_ == &form) redirected_ = nullptr;
  if (wants_focus_ == &form) wants_focus_ = nullptr;
  const auto view = views_.find(&form);
  if (view == views_.end()) return;
  view->second->Detach();
  view->second->Panel()->Hide();
  if (frame_) frame_->DropPanel(view->second->Panel());
  gone_.push_back(std::move(view->second));
  views_.erase(view);
  const auto window = windows_.find(&form);
  if (window != windows_.end()) {
    window->second->Hide();
    gone_windows_.push_back(window->second);
    windows_.erase(window);
  }
  wxWakeUpIdle();
}

void WxHost::FormChanged(Form& form) {
  FormView* view = ViewOf(form);
  if (!view) return;
  view->Enable(form.Enabled());
  view->ApplyFont();
  if (form.Style() == FormStyle::kPage) {
    if (TopPage() == &form) frame_->SetTitle(ToWx(form.Caption()));
  } else {
    WindowOf(form)->SetTitle(ToWx(form.Caption()));
  }
  ApplyPointer();
}

void WxHost::ControlChanged(Control& control, Change change) {
  FormView* view = ViewOf(control.Owner());
  if (!view) return;
  view->Mark(control, change);
  FlushSoon();
}

void WxHost::FocusControl(Control& control, bool select_all) {
  FormView* view = ViewOf(control.Owner());
  if (!view) return;
  if (wants_focus_ == &control.Owner()) wants_focus_ = nullptr;
  view->Focus(control, select_all);
}

void WxHost::FocusForm(Form& form) {
  if (form.Style() == FormStyle::kPage) {
    if (frame_) frame_->Raise();
  } else if (wxTopLevelWindow* window = WindowOf(form)) {
    window->Raise();
  }
}

int WxHost::ShowPopup(Form& form, const PopupMenu& menu) {
  FormView* view = ViewOf(form);
  if (!view || ended_) return -1;
  Flush();
  wxMenu popup;
  std::vector<int> ids;
  for (const MenuItem& item : menu.Items()) {
    // An item that is not checked shows no box: most items never are.
    wxMenuItem* added = item.checked ? popup.AppendCheckItem(wxID_ANY, ToWx(item.caption))
                                     : popup.Append(wxID_ANY, ToWx(item.caption));
    if (item.checked) added->Check();
    added->Enable(item.enabled);
    ids.push_back(added->GetId());
  }
  const std::optional<wxPoint> place = std::exchange(popup_place_, std::nullopt);
  wxWindow* panel = view->Panel();
  const wxPoint point = place ? panel->ScreenToClient(*place) : wxDefaultPosition;
  const int chosen = panel->GetPopupMenuSelectionFromUser(popup, point);
  const auto found = std::find(ids.begin(), ids.end(), chosen);
  return found == ids.end() ? -1 : static_cast<int>(found - ids.begin());
}

void WxHost::Refresh(Form& form) {
  FormView* view = ViewOf(form);
  if (!view || ended_ || !form.Visible()) return;
  Flush();
  view->ForgetPainting();
  view->Panel()->Refresh();
  view->Panel()->Update();
  wxEventLoopBase* loop = wxEventLoopBase::GetActive();
  if (!loop) return;
  // A window that was just shown is painted once the window system has mapped it; what a person does
  // meanwhile waits for its turn.
  const wxStopWatch watch;
  while (!view->Painted() && view->Panel()->IsShownOnScreen() && watch.Time() < kPaintMilliseconds) {
    loop->YieldFor(wxEVT_CATEGORY_UI);
    if (!view->Painted()) wxMilliSleep(2);
  }
}

void WxHost::ServePainting() {
  wxEventLoopBase* loop = wxEventLoopBase::GetActive();
  if (!ended_ && loop && !loop->IsYielding()) loop->YieldFor(wxEVT_CATEGORY_UI);
}

void WxHost::PumpEvents() {
  if (ended_) {
    // A handler may still wait for another program; it is not to use up a processor.
    wxMilliSleep(kTurnMilliseconds);
    return;
  }
  Flush();
  wxEventLoopBase* loop = wxEventLoopBase::GetActive();
  if (!loop) {
    wxMilliSleep(kTurnMilliseconds);
    return;
  }
  loop->DispatchTimeout(kTurnMilliseconds);
  if (!ended_) loop->YieldFor(wxEVT_CATEGORY_ALL);
  Flush();
}

int WxHost::TextWidth(Form& form, std::string_view text) {
  FormView& view = Ensure(form);
  return view.Panel()->GetTextExtent(ToWx(text)).x;
}

void WxHost::RedirectActivation(Form& form, std::function<void()> bring_forward) {
  redirected_ = bring_forward ? &form : nullptr;
  bring_forward_ = std::move(bring_forward);
}

bool WxHost::Redirects(const Form& form) const { return redirected_ == &form; }

int WxHost::FilterEvent(wxEvent& event) {
  if (!redirected_) return Event_Skip;
  const wxEventType type = event.GetEventType();
  const bool press = type == wxEVT_LEFT_DOWN || type == wxEVT_RIGHT_DOWN || type == wxEVT_LEFT_DCLICK;
  if (!press && type != wxEVT_KEY_DOWN && type != wxEVT_CHAR_HOOK) return Event_Skip;
  auto* window = wxDynamicCast(event.GetEventObject(), wxWindow);
  FormView* view = ViewOf(*redirected_);
  if (!window || !view || wxGetTopLevelParent(window) != wxGetTopLevelParent(view->Panel()))
    return Event_Skip;
  if (press && bring_forward_) window->CallAfter(bring_forward_);
  return Event_Processed;
}

void WxHost::EndProgram() {
  if (ended_) return;
  ended_ = true;
  redirected_ = nullptr;
  visible_.clear();
  pages_.clear();
  ApplyPointer();
  if (frame_) frame_->Hide();
  for (const auto& [form, window] : windows_) {
    auto* dialog = dynamic_cast<wxDialog*>(window);
    if (dialog && dialog->IsModal()) {
      dialog->EndModal(0);
    } else {
      window->Hide();
    }
  }
  wxTheApp->ExitMainLoop();
}

void WxHost::Flush() {
  for (const auto& [form, view] : views_) view->Flush();
}

void WxHost::FlushSoon() { wxWakeUpIdle(); }

void WxHost::CloseTopPage() {
  Form* page = TopPage();
  if (ended_ || !page || !page->Enabled() || page->MousePointer() != Pointer::kDefault) return;
  Handling handling(*this);
  page->UserClose();
}

void WxHost::CloseDialog(Form& form) {
  if (ended_ || !form.Visible() || !form.Enabled()) return;
  Handling handling(*this);
  form.UserClose();
}

void WxHost::ApplyPointer() {
  const bool busy = std::any_of(visible_.begin(), visible_.end(),
                                [](const Form* form) { return form->MousePointer() == Pointer::kHourglass; });
  if (busy == busy_pointer_) return;
  busy_pointer_ = busy;
  if (busy) {
    wxBeginBusyCursor();
  } else {
    wxEndBusyCursor();
  }
}

void WxHost::OnIdle(wxIdleEvent& event) {
  event.Skip();
  Flush();
  if (wants_focus_) {
    const Form* form = std::exchange(wants_focus_, nullptr);
    if (FormView* view = ViewOf(*form)) {
      view->FocusSomething();
      // Widgets learn only on the screen how high a font makes them.
      view->ForgetSizes();
      if (form->Style() == FormStyle::kDialog) {
        FitDialog(*WindowOf(*form), *view);
      } else {
        view->DoLayout();
      }
    }
  }
  if (frame_ && pages_.empty() && frame_->IsShown()) frame_->Hide();
  if (handling_ > 0) return;
  gone_.clear();
  for (wxWindow* window : std::exchange(gone_windows_, {})) window->Destroy();
  if (!Alive()) wxTheApp->ExitMainLoop();
}

}  // namespace kw::ui
