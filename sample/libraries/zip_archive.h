#ifndef KITWRIGHT_SAMPLE_LIBRARIES_ZIP_ARCHIVE_H_
#define KITWRIGHT_SAMPLE_LIBRARIES_ZIP_ARCHIVE_H_

#include <string>

#include "base/result.h"
#include "base/storage.h"

namespace kw::sample {

/// Unpacks a ZIP archive (host paths) into a folder that exists. Refused before anything is written: what is
/// no archive, members with a password, and names that would leave the folder.
Status UnpackZip(Storage& storage, const std::string& archive, const std::string& folder);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_LIBRARIES_ZIP_ARCHIVE_H_
