#include "cabinet/block_encoder.h"

#include <libdeflate.h>

#include <cstring>

#include "cabinet/format.h"

namespace kw::cabinet {
namespace {

constexpr int kLevel = 5;
constexpr size_t kMarkSize = 2;
constexpr size_t kStoredOverhead = 5;

}  // namespace

void BlockEncoder::Free::operator()(libdeflate_compressor* compressor) const {
  libdeflate_free_compressor(compressor);
}

BlockEncoder::BlockEncoder() : compressor_(libdeflate_alloc_compressor(kLevel)) {}

size_t BlockEncoder::Encode(std::span<const std::byte> block, std::span<std::byte> out) {
  out[0] = std::byte{'C'};
  out[1] = std::byte{'K'};
  size_t packed = 0;
  if (compressor_ != nullptr && !block.empty()) {
    packed = libdeflate_deflate_compress(compressor_.get(), block.data(), block.size(), &out[kMarkSize],
                                         block.size() + kStoredOverhead - 1);
  }
  if (packed != 0) return kMarkSize + packed;
  std::byte* stored = &out[kMarkSize];
  stored[0] = std::byte{1};
  PutU16(stored + 1, static_cast<uint16_t>(block.size()));
  PutU16(stored + 3, static_cast<uint16_t>(~block.size()));
  std::memcpy(stored + kStoredOverhead, block.data(), block.size());
  return kMarkSize + kStoredOverhead + block.size();
}

}  // namespace kw::cabinet
