#include "platform/registry.h"

namespace kw::platform {

std::string RegistryValue::Text() const {
  if (type != kRegSz && type != kRegExpandSz && type != kRegMultiSz) return {};
  return data.substr(0, data.find('\0'));
}

uint32_t RegistryValue::Dword(uint32_t fallback) const {
  if (type != kRegDword || data.size() != 4) return fallback;
  uint32_t number = 0;
  for (int i = 3; i >= 0; --i)
    number = (number << 8) | static_cast<unsigned char>(data[static_cast<size_t>(i)]);
  return number;
}

RegistryValue RegistryValue::OfText(std::string_view text) {
  RegistryValue value;
  value.type = kRegSz;
  value.data.assign(text).push_back('\0');
  return value;
}

RegistryValue RegistryValue::OfDword(uint32_t number) {
  RegistryValue value;
  value.type = kRegDword;
  for (int i = 0; i < 4; ++i) value.data.push_back(static_cast<char>((number >> (8 * i)) & 0xFF));
  return value;
}

}  // namespace kw::platform
