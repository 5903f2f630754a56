// bulwarkcfg: the stand-in for the library that reads and rewrites the firewall's installer.

#include "platform/shared/library_abi.h"
#include "sample/libraries/bulwark_installer.h"
#include "sample/libraries/library_calls.h"
#include "sample/settings/answers.h"

int BWKExtractInstallerFilesA(const char* installer, const char* folder) {
  const kw::sample::CallContext call;
  return kw::sample::ExtractBulwark(kw::SystemStorage(), call.HostOf(installer), call.HostOf(folder),
                                    call.code_page)
                 .ok()
             ? 1
             : 0;
}

int BWKCreateInstallerA(const char* installer, const char* preferences, const char* install_folder,
                        int fourth, int fifth) {
  if (kw::sample::MustFail("BWKCreate")) return 0;
  const kw::sample::CallContext call;
  kw::sample::BulwarkChoices choices;
  if (!call.Narrow(preferences).empty()) choices.preferences = call.HostOf(preferences);
  choices.install_folder = call.Narrow(install_folder);
  // In this order, whatever the argument list of the maker's description says.
  choices.silent = fourth != 0;
  choices.managed = fifth != 0;
  return kw::sample::RewriteBulwark(kw::SystemStorage(), call.HostOf(installer), choices, call.code_page).ok()
             ? 1
             : 0;
}
