#include "sample/console/catalogue_file.h"

#include <zlib.h>

#include <cstdint>

namespace kw::sample {
namespace {

constexpr std::string_view kMark("STCCAT1\0", 8);
constexpr size_t kHeaderSize = 16;
/// Catalogues are a few kilobytes; what claims more is damaged.
constexpr uint32_t kLargestText = 64u << 20;

void PutNumber(std::string& bytes, uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((value >> shift) & 0xFF);
}

uint32_t NumberAt(std::string_view bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i)
    value |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + i])) << (8 * i);
  return value;
}

uint32_t Checksum(std::string_view text) {
  return static_cast<uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size())));
}

}  // namespace

Result<std::string> CompressCatalogue(std::string_view text) {
  if (text.size() > kLargestText)
    return Result<std::string>(kErrorInvalidData, "The catalogue is too large.");
  uLongf size = compressBound(static_cast<uLong>(text.size()));
  std::string packed(size, '\0');
  if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
                static_cast<uLong>(text.size()), Z_BEST_COMPRESSION) != Z_OK) {
    return Result<std::string>(kErrorFunctionFailed, "The catalogue could not be compressed.");
  }
  packed.resize(size);
  std::string bytes(kMark);
  PutNumber(bytes, static_cast<uint32_t>(text.size()));
  PutNumber(bytes, Checksum(text));
  return bytes + packed;
}

Result<std::string> ExpandCatalogue(std::string_view bytes) {
  const Error damaged{kErrorInvalidData, "This is no compressed catalogue."};
  if (bytes.size() < kHeaderSize || bytes.substr(0, kMark.size()) != kMark) return damaged;
  const uint32_t expected = NumberAt(bytes, 8);
  if (expected > kLargestText) return damaged;
  std::string text(expected, '\0');
  uLongf size = expected;
  const std::string_view packed = bytes.substr(kHeaderSize);
  if (uncompress(reinterpret_cast<Bytef*>(text.data()), &size, reinterpret_cast<const Bytef*>(packed.data()),
                 static_cast<uLong>(packed.size())) != Z_OK ||
      size != expected || Checksum(text) != NumberAt(bytes, 12)) {
    return damaged;
  }
  return text;
}

}  // namespace kw::sample
