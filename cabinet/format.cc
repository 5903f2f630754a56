#include "cabinet/format.h"

#include <cstring>

namespace kw::cabinet {

uint32_t Checksum(std::span<const std::byte> data, uint32_t seed) {
  // Words are joined in memory order and put right once at the end, which lets the loop run in vectors.
  uint64_t lanes[4] = {};
  size_t pos = 0;
  for (; pos + sizeof lanes <= data.size(); pos += sizeof lanes) {
    uint64_t words[4];
    std::memcpy(words, data.data() + pos, sizeof words);
    for (int i = 0; i < 4; ++i) lanes[i] ^= words[i];
  }
  const uint64_t joined = lanes[0] ^ lanes[1] ^ lanes[2] ^ lanes[3];
  std::byte bytes[sizeof joined];
  std::memcpy(bytes, &joined, sizeof joined);
  uint32_t sum = seed ^ GetU32(bytes) ^ GetU32(bytes + 4);
  for (; pos + 4 <= data.size(); pos += 4) sum ^= GetU32(data.data() + pos);
  // The last one to three bytes count with the first of them highest.
  uint32_t rest = 0;
  for (; pos < data.size(); ++pos) rest = (rest << 8) | static_cast<uint32_t>(data[pos]);
  return sum ^ rest;
}

}  // namespace kw::cabinet
