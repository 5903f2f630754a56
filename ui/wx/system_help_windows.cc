#include <windows.h>

#include "ui/wx/system_help.h"

namespace kw::ui {
namespace {

using HtmlHelpCall = HWND(WINAPI*)(HWND caller, LPCWSTR file, UINT command, DWORD_PTR data);

// Commands of the system's call.
constexpr UINT kHelpContext = 0x000F;
constexpr UINT kCloseAll = 0x0012;

/// The viewer's library, which stays loaded; its windows go when the program ends.
class HelpLibrary {
 public:
  HelpLibrary() {
    const HMODULE library = LoadLibraryW(L"hhctrl.ocx");
    if (library == nullptr) return;
    call = reinterpret_cast<HtmlHelpCall>(reinterpret_cast<void*>(GetProcAddress(library, "HtmlHelpW")));
  }
  ~HelpLibrary() {
    if (call != nullptr && shown) call(nullptr, nullptr, kCloseAll, 0);
  }
  HtmlHelpCall call = nullptr;
  bool shown = false;
};

}  // namespace

bool ShowInSystemViewer(wxWindow* parent, const wxString& book, int topic) {
  static HelpLibrary help;
  if (help.call == nullptr) return false;
  const HWND caller = parent == nullptr ? GetDesktopWindow() : static_cast<HWND>(parent->GetHandle());
  if (help.call(caller, book.wc_str(), kHelpContext, static_cast<DWORD_PTR>(topic)) == nullptr) return false;
  help.shown = true;
  return true;
}

}  // namespace kw::ui
