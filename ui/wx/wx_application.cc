#include "ui/wx/wx_application.h"

#include <wx/app.h>
#include <wx/init.h>

#include <clocale>

#include "ui/wx/wx_host.h"

namespace kw::ui {

namespace {

class App : public wxApp {
 public:
  bool OnInit() override {
    SetAppName("kitwright");
    SetAppDisplayName("Kitwright");
    SetExitOnFrameDelete(false);
    return true;
  }
};

}  // namespace

Result<std::unique_ptr<WxApplication>> WxApplication::Start(int& argc, char** argv) {
  wxApp::SetInstance(new App);
  if (!wxEntryStart(argc, argv)) {
    return Error{kErrorFunctionFailed, "There is no display on which windows could be shown."};
  }
  if (!wxTheApp->CallOnInit()) {
    wxEntryCleanup();
    return Error{kErrorFunctionFailed, "The window toolkit could not be started."};
  }
  // The toolkit takes the user's locale for everything; numbers in files and statements keep their points.
  std::setlocale(LC_NUMERIC, "C");
  return std::unique_ptr<WxApplication>(new WxApplication);
}

WxApplication::~WxApplication() {
  wxTheApp->OnExit();
  wxEntryCleanup();
}

void WxApplication::Run(const WxHost& host) {
  if (host.Alive()) wxTheApp->OnRun();
}

}  // namespace kw::ui
