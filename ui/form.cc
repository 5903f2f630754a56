#include "ui/form.h"

#include <utility>

namespace kw::ui {

Form::Form(FormHost& host, std::string name, std::string caption, FormStyle style)
    : host_(host), name_(std::move(name)), caption_(std::move(caption)), style_(style) {
  host_.FormCreated(*this);
}

Form::~Form() { host_.FormDestroyed(*this); }

void Form::SetCaption(std::string caption) {
  if (caption == caption_) return;
  caption_ = std::move(caption);
  host_.FormChanged(*this);
}

void Form::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  host_.FormChanged(*this);
}

void Form::SetMousePointer(Pointer pointer) {
  if (pointer == pointer_) return;
  pointer_ = pointer;
  host_.FormChanged(*this);
}

void Form::SetTextFont(Font font) {
  if (font == font_) return;
  font_ = std::move(font);
  host_.FormChanged(*this);
}

void Form::RemoveMaximize() {
  if (!has_maximize_) return;
  has_maximize_ = false;
  host_.FormChanged(*this);
}

Control* Form::FindControl(std::string_view name) const {
  for (Control* control : controls_) {
    if (control->Name() == name) return control;
  }
  return nullptr;
}

void Form::EnsureLoaded() {
  if (loaded_) return;
  loaded_ = true;
  OnLoad();
}

void Form::Show() {
  if (host_.Ended()) return;
  EnsureLoaded();
  if (visible_) {
    host_.FocusForm(*this);
    return;
  }
  visible_ = true;
  host_.FormShown(*this);
  OnActivate();
}

void Form::ShowModal() {
  if (host_.Ended() || visible_) return;
  EnsureLoaded();
  visible_ = true;
  modal_ = true;
  host_.FormShown(*this);
  OnActivate();
  if (visible_) host_.RunModal(*this);
  modal_ = false;
}

void Form::Hide() {
  if (!visible_) return;
  visible_ = false;
  host_.FormHidden(*this);
}

void Form::ShowPopup(const PopupMenu& menu) {
  const int chosen = host_.ShowPopup(*this, menu);
  if (chosen < 0 || chosen >= static_cast<int>(menu.Items().size())) return;
  const MenuItem& item = menu.Items()[static_cast<size_t>(chosen)];
  if (item.enabled && item.on_click) item.on_click();
}

void Form::UserActivate() { OnActivate(); }

void Form::UserClose() {
  if (OnQueryUnload()) Hide();
}

}  // namespace kw::ui
