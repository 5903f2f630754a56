#include "payloads/version_text.h"

#include <array>
#include <cstdint>

namespace kw {
namespace {

// The parts are printed as signed 16-bit numbers.
std::string Part(uint16_t part) { return std::to_string(static_cast<int16_t>(part)); }

}  // namespace

std::string EngineVersionText(platform::Services& services, const std::string& file) {
  const auto version = services.versions->Read(file);
  if (!version.ok() || !version->has_fixed) return kNoVersion;
  const auto& parts = version->product;
  return Part(parts[0]) + "." + Part(parts[1]) + "." + Part(parts[2]) + Part(parts[3]);
}

std::string FileVersionText(platform::Services& services, const std::string& file) {
  const auto version = services.versions->Read(file);
  if (!version.ok() || !version->has_fixed) return kNoVersion;
  const auto& parts = version->file;
  return Part(parts[0]) + "." + Part(parts[1]) + "." + Part(parts[2]) + "." + Part(parts[3]);
}

}  // namespace kw
