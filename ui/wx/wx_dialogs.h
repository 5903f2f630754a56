#ifndef KITWRIGHT_UI_WX_WX_DIALOGS_H_
#define KITWRIGHT_UI_WX_WX_DIALOGS_H_

#include <functional>
#include <memory>
#include <string>

#include "platform/dialogs.h"

class wxHtmlHelpController;

namespace kw::ui {

class WxHost;

/// Where Windows paths lie on the host, both ways. On Windows both give their argument back.
struct PathMapper {
  std::function<std::string(const std::string& windows_path)> to_host;
  std::function<std::string(const std::string& host_path)> to_windows;
};

/// Boxes, common dialogs and the help viewer of the toolkit, in front of the window that a person works on.
class WxDialogs : public platform::Dialogs {
 public:
  /// `host` outlives the dialogs.
  WxDialogs(WxHost& host, PathMapper paths);
  ~WxDialogs() override;

  void Message(const std::string& text) override;
  void CriticalMessage(const std::string& text) override;
  platform::Answer Question(const std::string& text, const std::vector<platform::Answer>& buttons,
                            platform::Answer default_button, const std::string& title) override;
  std::string OpenFile(const std::string& title, const std::string& filter, const std::string& start_folder,
                       const std::string& start_name) override;
  std::string BrowseForFolder(const std::string& title, const std::string& start) override;
  /// In the system's own viewer where there is one. Otherwise the book beside `help_file`, with the extension
  /// .htb, opens in a window of the toolkit's.
  Status ShowHelp(const std::string& help_file, int context_id) override;

 private:
  WxHost& host_;
  PathMapper paths_;
  std::unique_ptr<wxHtmlHelpController> help_;
  std::string help_book_;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_WX_DIALOGS_H_
