#ifndef KITWRIGHT_PLATFORM_EMBEDDED_SYSTEM_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_SYSTEM_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/machine_paths.h"
#include "platform/embedded/host_file.h"
#include "platform/shared/msi_installer.h"
#include "platform/system.h"

namespace kw::platform::embedded {

/// The facts that `machine.ini` in the machine's folder states; this folder's README.md lists its keys. The
/// file is read once.
class EmbeddedSystem : public System {
 public:
  explicit EmbeddedSystem(const MachinePaths& paths);

  int32_t TotalPhysicalMemory() override;
  int UserDefaultLocale() override { return locale_; }
  int CodePage() override;
  std::string TempFolder() override { return temp_; }
  std::string SpecialFolder(int id) override;
  std::string ProgramFolder() override { return program_folder_; }
  /// Instances share a machine's folder; elsewhere they do not see each other. A folder that cannot be
  /// written has no other instance.
  bool PreviousInstance() override;
  LocalTime Now() override;
  Result<std::array<uint8_t, 16>> CreateGuid() override;

 private:
  std::string root_;
  long long memory_ = 0;
  int locale_ = 0;
  std::string temp_;
  std::string now_;
  std::string program_folder_;
  bool asked_ = false;
  bool previous_ = false;
  OwnedFd claim_;
};

/// The installed products of `machine.ini`.
class EmbeddedProducts : public ProductQuery {
 public:
  /// `root` is the machine's folder on the host.
  explicit EmbeddedProducts(const std::string& root);
  std::vector<std::string> RelatedProducts(const std::string& upgrade_code) override;
  int FeatureState(const std::string& product_code, const std::string& feature) override;

 private:
  std::string ini_;
};

/// A local time from its numbers, year to second, whatever stands between them ("2004-11-15 04:53:00");
/// fields that are missing are those of the beginning of the year. False for text without a year, or out of
/// range.
bool ParseLocalTime(std::string_view text, LocalTime* time);

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_SYSTEM_H_
