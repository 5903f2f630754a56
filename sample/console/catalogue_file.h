#ifndef KITWRIGHT_SAMPLE_CONSOLE_CATALOGUE_FILE_H_
#define KITWRIGHT_SAMPLE_CONSOLE_CATALOGUE_FILE_H_

#include <string>
#include <string_view>

#include "base/result.h"

namespace kw::sample {

/// The console's form of a catalogue (`PkgCatalog.z`): eight bytes "STCCAT1" and NUL, the size of the plain
/// text and its checksum (both four bytes, low byte first), then the text as a zlib stream.
Result<std::string> CompressCatalogue(std::string_view text);

/// The plain text again; kErrorInvalidData for anything that CompressCatalogue did not make.
Result<std::string> ExpandCatalogue(std::string_view bytes);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_CONSOLE_CATALOGUE_FILE_H_
