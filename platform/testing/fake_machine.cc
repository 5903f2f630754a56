#include "platform/testing/fake_machine.h"

#include "base/text.h"

namespace kw::platform::testing {

std::vector<std::string> FakeProducts::RelatedProducts(const std::string& upgrade_code) {
  std::vector<std::string> codes;
  for (const Product& product : products) {
    if (EqualsNoCase(product.upgrade_code, upgrade_code)) codes.push_back(product.code);
  }
  return codes;
}

int FakeProducts::FeatureState(const std::string& product_code, const std::string& feature) {
  for (const Product& product : products) {
    const auto state = product.features.find(feature);
    if (EqualsNoCase(product.code, product_code) && state != product.features.end()) return state->second;
  }
  return -1;
}

std::unique_ptr<Installer> FakeMachine::MakeInstaller() {
  return MakeMsiInstaller({files.HostFiles(),
                           [this](const std::string& path) { return files.FullPath(path); }, files, system,
                           products});
}

FakeMachine::FakeMachine() {
  files.AddFolder(system.temp_folder);
  files.AddFolder(system.program_folder);
  files.SetCurrentFolder(system.program_folder).IgnoreError();
  files.log.clear();
  services.files = &files;
  services.registry = &registry;
  services.profiles = &profiles;
  services.xml = &xml;
  services.versions = &versions;
  services.processes = &recorded_processes;
  services.system = &system;
  services.dialogs = &dialogs;
  services.libraries = &recorded_libraries;
  services.create_installer = [this]() -> Result<std::unique_ptr<Installer>> { return MakeInstaller(); };
}

}  // namespace kw::platform::testing
