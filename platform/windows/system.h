#ifndef KITWRIGHT_PLATFORM_WINDOWS_SYSTEM_H_
#define KITWRIGHT_PLATFORM_WINDOWS_SYSTEM_H_

#include <string>
#include <vector>

#include "platform/shared/msi_installer.h"
#include "platform/system.h"
#include "platform/windows/owned_handle.h"

namespace kw::platform::windows {

/// Facts from the system itself.
class WindowsSystem : public System {
 public:
  int32_t TotalPhysicalMemory() override;
  int UserDefaultLocale() override;
  int CodePage() override;
  /// In its short form where the long one holds a blank, since not every command line quotes it.
  std::string TempFolder() override;
  std::string SpecialFolder(int id) override;
  std::string ProgramFolder() override;
  bool PreviousInstance() override;
  LocalTime Now() override;
  Result<std::array<uint8_t, 16>> CreateGuid() override;

 private:
  bool asked_ = false;
  bool previous_ = false;
  OwnedHandle claim_;
};

/// The products that Windows Installer knows.
class WindowsProducts : public ProductQuery {
 public:
  std::vector<std::string> RelatedProducts(const std::string& upgrade_code) override;
  int FeatureState(const std::string& product_code, const std::string& feature) override;
};

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_SYSTEM_H_
