#ifndef KITWRIGHT_MSI_BYTES_H_
#define KITWRIGHT_MSI_BYTES_H_

#include <cstdint>
#include <string>

namespace kw::msi {

// Little-endian numbers in byte buffers. Callers have checked that the bytes are there.

inline uint16_t GetU16(const void* at) {
  const auto* p = static_cast<const unsigned char*>(at);
  return static_cast<uint16_t>(p[0] | p[1] << 8);
}

inline uint32_t GetU32(const void* at) {
  const auto* p = static_cast<const unsigned char*>(at);
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
         static_cast<uint32_t>(p[3]) << 24;
}

inline uint64_t GetU64(const void* at) {
  const auto* p = static_cast<const unsigned char*>(at);
  return GetU32(p) | static_cast<uint64_t>(GetU32(p + 4)) << 32;
}

inline void PutU16(void* at, uint16_t value) {
  auto* p = static_cast<unsigned char*>(at);
  p[0] = static_cast<unsigned char>(value);
  p[1] = static_cast<unsigned char>(value >> 8);
}

inline void PutU32(void* at, uint32_t value) {
  PutU16(at, static_cast<uint16_t>(value));
  PutU16(static_cast<unsigned char*>(at) + 2, static_cast<uint16_t>(value >> 16));
}

inline void PutU64(void* at, uint64_t value) {
  PutU32(at, static_cast<uint32_t>(value));
  PutU32(static_cast<unsigned char*>(at) + 4, static_cast<uint32_t>(value >> 32));
}

inline void AppendU16(std::string& out, uint16_t value) {
  out.push_back(static_cast<char>(value));
  out.push_back(static_cast<char>(value >> 8));
}

inline void AppendU32(std::string& out, uint32_t value) {
  AppendU16(out, static_cast<uint16_t>(value));
  AppendU16(out, static_cast<uint16_t>(value >> 16));
}

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_BYTES_H_
