// Windows Installer's answers about installed products.

#include "platform/windows/system.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {

std::vector<std::string> WindowsProducts::RelatedProducts(const std::string& upgrade_code) {
  constexpr size_t kGuidLength = 38;
  const std::wstring upgrade = Wide(upgrade_code);
  std::vector<std::string> codes;
  wchar_t code[kGuidLength + 1] = {};
  for (DWORD index = 0; MsiEnumRelatedProductsW(upgrade.c_str(), 0, index, code) == ERROR_SUCCESS; ++index) {
    codes.push_back(Narrow(code));
  }
  return codes;
}

int WindowsProducts::FeatureState(const std::string& product_code, const std::string& feature) {
  return static_cast<int>(MsiQueryFeatureStateW(Wide(product_code).c_str(), Wide(feature).c_str()));
}

}  // namespace kw::platform::windows
