#include "platform/embedded/closed_libraries.h"

#include <dlfcn.h>

#include "base/text.h"
#include "platform/embedded/guarded_call.h"
#include "platform/shared/library_abi.h"

namespace kw::platform::embedded {

void* EmbeddedClosedLibraries::LoadFile(const std::string& file, std::string& reason) {
  const bool bare_name = file.find('\\') == std::string::npos;
  const std::string host = bare_name ? file : files_.Paths().HostPath(file);
  void* const handle = ::dlopen(host.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* said = ::dlerror();
    reason = said == nullptr ? "no reason given" : said;
  }
  return handle;
}

void* EmbeddedClosedLibraries::FindFunction(void* library, const char* name) {
  return ::dlsym(library, name);
}

Status EmbeddedClosedLibraries::Run(const std::function<void()>& call) {
  const int signal = GuardedCall(call);
  if (signal == 0) return {};
  return {kErrorFunctionFailed, "signal " + std::to_string(signal)};
}

Result<int> EmbeddedClosedLibraries::WithOpenKey(Hive root, const std::string& path,
                                                 const std::function<Result<int>(const void* key)>& call) {
  const std::u16string wide = Utf8ToUtf16(path);
  const KitwrightOpenKey open{
      root == Hive::kCurrentUser ? KITWRIGHT_HKEY_CURRENT_USER : KITWRIGHT_HKEY_LOCAL_MACHINE, wide.c_str()};
  return call(&open);
}

}  // namespace kw::platform::embedded
