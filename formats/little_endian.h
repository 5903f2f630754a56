#ifndef KITWRIGHT_FORMATS_LITTLE_ENDIAN_H_
#define KITWRIGHT_FORMATS_LITTLE_ENDIAN_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kw::formats {

/// Numbers with the low byte first. Bytes behind the end count as 0.
inline uint32_t GetLittle(std::string_view bytes, size_t at, size_t count) {
  uint32_t number = 0;
  for (size_t i = count; i-- > 0;) {
    const bool inside = at < bytes.size() && i < bytes.size() - at;
    number = number << 8 | (inside ? static_cast<unsigned char>(bytes[at + i]) : 0u);
  }
  return number;
}

inline uint16_t Get16(std::string_view bytes, size_t at) {
  return static_cast<uint16_t>(GetLittle(bytes, at, 2));
}

inline uint32_t Get32(std::string_view bytes, size_t at) { return GetLittle(bytes, at, 4); }

}  // namespace kw::formats

#endif  // KITWRIGHT_FORMATS_LITTLE_ENDIAN_H_
