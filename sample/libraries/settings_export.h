#ifndef KITWRIGHT_SAMPLE_LIBRARIES_SETTINGS_EXPORT_H_
#define KITWRIGHT_SAMPLE_LIBRARIES_SETTINGS_EXPORT_H_

#include <string>

#include "base/result.h"
#include "base/storage.h"

namespace kw::sample {

/// Checks that a host file is a registry-editor file of nothing but settings, those of the staging branch or
/// of the live branch of a product, and rewrites it so that importing it lands in the staging branch.
/// kErrorInvalidData for any other file, which stays as it is.
Status ConvertSettingsExport(Storage& storage, const std::string& path, int code_page);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_LIBRARIES_SETTINGS_EXPORT_H_
