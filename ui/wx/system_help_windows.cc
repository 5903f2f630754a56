#include <windows.h>

#include "ui/wx/system_help.h"

namespace kw::ui {
namespace {

using HtmlHelpCall = HWND(WINAPI*)(HWND caller, LPCWSTR file, UINT command, DWORD_PTR data);

// Commands of the system's call.
constexpr UINT kHelpContext = 0x000F;
constexpr UINT kCloseAll = 0x0012;

/// The viewer's call, null where there is none; its library stays loaded.
HtmlHelpCall LoadViewer() {
  const HMODULE library = LoadLibraryW(L"hhctrl.ocx");
  if (library == nullptr) return nullptr;
  return reinterpret_cast<HtmlHelpCall>(reinterpret_cast<void*>(GetProcAddress(library, "HtmlHelpW")));
}

/// The call that has opened windows.
HtmlHelpCall opened_by = nullptr;

}  // namespace

bool ShowInSystemViewer(wxWindow* parent, const wxString& book, int topic) {
  static const HtmlHelpCall viewer = LoadViewer();
  if (viewer == nullptr) return false;
  const HWND caller = parent == nullptr ? GetDesktopWindow() : static_cast<HWND>(parent->GetHandle());
  if (viewer(caller, book.wc_str(), kHelpContext, static_cast<DWORD_PTR>(topic)) == nullptr) return false;
  opened_by = viewer;
  return true;
}

void CloseSystemViewer() {
  if (opened_by != nullptr) opened_by(nullptr, nullptr, kCloseAll, 0);
  opened_by = nullptr;
}

}  // namespace kw::ui
