#ifndef KITWRIGHT_SETTINGS_SETTINGS_OUTPUT_H_
#define KITWRIGHT_SETTINGS_SETTINGS_OUTPUT_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// First step of the build in both modes: flushes, compares, exports, enciphers and packs the settings, and
/// delivers the cabinet into the package, beside it, or as the output file. False when the build must not go
/// on; it has told why.
bool AddProductSettings(PageContext& context);

/// Deletes from the staging branch below `path` ("" for the whole) every value that equals the source's, and
/// the keys that are empty then. Tasks and recipients are kept whole.
void StripUnchangedValues(PageContext& context, const std::string& path);

/// Makes the settings cabinet in ConfigAppDataFolder from the enciphered files that lie there. A failure
/// shows when the cabinet is delivered.
Status MakeSettingsCabinet(PageContext& context);

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_SETTINGS_OUTPUT_H_
