#ifndef KITWRIGHT_PLATFORM_WINDOWS_REGISTRY_H_
#define KITWRIGHT_PLATFORM_WINDOWS_REGISTRY_H_

#include <memory>
#include <string_view>

#include "platform/registry.h"

namespace kw::platform::windows {

/// The system's registry. A key of the local machine that only the view for 32-bit programs has is found
/// there (registry_views.h); a new key belongs to the program's own view.
class WindowsRegistry : public Registry {
 public:
  /// `code_page` is that of the 8-bit calls, whose sizes count.
  explicit WindowsRegistry(int code_page) : code_page_(code_page) {}

  Result<std::unique_ptr<RegistryKey>> OpenKey(Hive hive, std::string_view path, uint32_t access) override;
  Result<std::unique_ptr<RegistryKey>> CreateKey(Hive hive, std::string_view path, uint32_t access) override;
  Status DeleteKey(Hive hive, std::string_view path) override;

 private:
  int code_page_;
};

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_REGISTRY_H_
