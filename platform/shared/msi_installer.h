#ifndef KITWRIGHT_PLATFORM_SHARED_MSI_INSTALLER_H_
#define KITWRIGHT_PLATFORM_SHARED_MSI_INSTALLER_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/storage.h"
#include "platform/file_system.h"
#include "platform/installer.h"
#include "platform/system.h"

namespace kw::platform {

/// What only the system knows: the installed products.
class ProductQuery {
 public:
  virtual ~ProductQuery() = default;
  /// As Installer::RelatedProducts and Installer::FeatureState.
  virtual std::vector<std::string> RelatedProducts(const std::string& upgrade_code) = 0;
  virtual int FeatureState(const std::string& product_code, const std::string& feature) = 0;
};

/// What installer automation stands on. All of it outlives every object made with it.
struct InstallerGround {
  Storage& storage;
  /// The path in `storage` of a Windows path in any form.
  std::function<std::string(const std::string&)> host_path;
  FileSystem& files;
  System& system;
  ProductQuery& products;
};

/// Installer automation over the package engine, the same on every system.
std::unique_ptr<Installer> MakeMsiInstaller(InstallerGround ground);

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_MSI_INSTALLER_H_
