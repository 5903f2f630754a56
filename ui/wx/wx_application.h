#ifndef KITWRIGHT_UI_WX_WX_APPLICATION_H_
#define KITWRIGHT_UI_WX_WX_APPLICATION_H_

#include <memory>

#include "base/result.h"

namespace kw::ui {

class WxHost;

/// The toolkit, from its start to its end. One at a time; everything that uses the toolkit lives inside its
/// life.
class WxApplication {
 public:
  /// Starts the toolkit; fails when there is no display. `argc` and `argv` outlive the application.
  static Result<std::unique_ptr<WxApplication>> Start(int& argc, char** argv);
  ~WxApplication();
  WxApplication(const WxApplication&) = delete;
  WxApplication& operator=(const WxApplication&) = delete;

  /// Serves events until no form of `host` is visible or the program was ended.
  void Run(const WxHost& host);

 private:
  WxApplication() = default;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_WX_APPLICATION_H_
