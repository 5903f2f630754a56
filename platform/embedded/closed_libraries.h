#ifndef KITWRIGHT_PLATFORM_EMBEDDED_CLOSED_LIBRARIES_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_CLOSED_LIBRARIES_H_

#include <functional>
#include <string>

#include "platform/embedded/file_system.h"
#include "platform/shared/closed_library_calls.h"

namespace kw::platform::embedded {

/// The closed libraries as shared objects.
class EmbeddedClosedLibraries : public ClosedLibraryCalls {
 public:
  EmbeddedClosedLibraries(EmbeddedFileSystem& files, Registry& registry, System& system)
      : ClosedLibraryCalls(files, registry, system, ".so"), files_(files) {}

 protected:
  void* LoadFile(const std::string& file, std::string& reason) override;
  void* FindFunction(void* library, const char* name) override;
  Status Run(const std::function<void()>& call) override;
  Result<int> WithOpenKey(Hive root, const std::string& path,
                          const std::function<Result<int>(const void* key)>& call) override;
  std::string KeyForLibrary(Hive, const std::string& subkey) override { return subkey; }
  void* ActiveWindow() override { return nullptr; }

 private:
  EmbeddedFileSystem& files_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_CLOSED_LIBRARIES_H_
