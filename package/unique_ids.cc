#include <array>
#include <string>

#include "package/installer_db.h"

namespace kw {

std::string MakeUniqueId(platform::Services& services, RunState& run) {
  const platform::LocalTime now = services.system->Now();
  std::string id = "_id_";
  for (const int part : {now.day_of_year, now.day, now.month, now.hour, now.minute, now.second})
    id += std::to_string(part);
  return id + std::to_string(run.UniqueIdCounter++);
}

std::string MakeGuidString(platform::Services& services) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  const auto bytes = services.system->CreateGuid();
  if (!bytes.ok()) return {};
  std::string text = "{";
  for (size_t i = 0; i < bytes->size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    const unsigned byte = (*bytes)[i];
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text + "}";
}

}  // namespace kw
