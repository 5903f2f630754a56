#ifndef KITWRIGHT_PAYLOADS_VERSION_TEXT_H_
#define KITWRIGHT_PAYLOADS_VERSION_TEXT_H_

#include <string>

#include "platform/services.h"

namespace kw {

/// What both read when a file has no version information.
inline constexpr const char* kNoVersion = "N/A";

/// The product version as the engine page records it: a point behind the first and the second part, none
/// behind the third, so that 4, 1, 60, 0 reads "4.1.600".
std::string EngineVersionText(platform::Services& services, const std::string& file);
/// The file version with all its points, "1.2.3.4".
std::string FileVersionText(platform::Services& services, const std::string& file);

}  // namespace kw

#endif  // KITWRIGHT_PAYLOADS_VERSION_TEXT_H_
