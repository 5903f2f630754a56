#ifndef KITWRIGHT_PLATFORM_WINDOWS_CLOSED_LIBRARIES_H_
#define KITWRIGHT_PLATFORM_WINDOWS_CLOSED_LIBRARIES_H_

#include <functional>
#include <string>

#include "platform/shared/closed_library_calls.h"

namespace kw::platform::windows {

/// The closed libraries themselves. An exception that goes out of a call is a failed call. A window that a
/// function asks for is the one that is active on this thread.
class WindowsClosedLibraries : public ClosedLibraryCalls {
 public:
  WindowsClosedLibraries(FileSystem& files, Registry& registry, System& system)
      : ClosedLibraryCalls(files, registry, system, ".dll") {}

 protected:
  void* LoadFile(const std::string& file, std::string& reason) override;
  void* FindFunction(void* library, const char* name) override;
  Status Run(const std::function<void()>& call) override;
  Result<int> WithOpenKey(Hive root, const std::string& path,
                          const std::function<Result<int>(const void* key)>& call) override;
  /// A library knows the registry view of its own program alone, and is led to the other one by its path
  /// there.
  std::string KeyForLibrary(Hive root, const std::string& subkey) override;
  void* ActiveWindow() override;
};

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_CLOSED_LIBRARIES_H_
