#ifndef KITWRIGHT_SAMPLE_LIBRARIES_BULWARK_INSTALLER_H_
#define KITWRIGHT_SAMPLE_LIBRARIES_BULWARK_INSTALLER_H_

#include <string>

#include "base/result.h"
#include "base/storage.h"

namespace kw::sample {

/// What a new installer of the firewall is to hold.
struct BulwarkChoices {
  std::string preferences;     ///< host path of the preferences; "" keeps the installer's own
  std::string install_folder;  ///< "" for the default one
  bool silent = false;
  bool managed = false;
};

/// Unpacks the descriptor and the preferences of an installer into a folder that exists (host paths).
Status ExtractBulwark(Storage& storage, const std::string& installer, const std::string& folder,
                      int code_page);

/// Rewrites an installer with the choices. It appears whole or stays as it was.
Status RewriteBulwark(Storage& storage, const std::string& installer, const BulwarkChoices& choices,
                      int code_page);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_LIBRARIES_BULWARK_INSTALLER_H_
