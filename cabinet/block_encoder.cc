#include "cabinet/block_encoder.h"

#include "cabinet/deflate_block.h"

namespace kw::cabinet {
namespace {

constexpr size_t kMarkSize = 2;
static_assert(kMarkSize + kBlockSize + kStoredOverhead + kWriteAhead <= kMaxCompressedBlock);

}  // namespace

size_t BlockEncoder::Encode(const std::byte* content, size_t offset, size_t size, std::span<std::byte> out) {
  out[0] = std::byte{'C'};
  out[1] = std::byte{'K'};
  const Steps& steps =
      finder_.Cut(content, static_cast<uint32_t>(offset), static_cast<uint32_t>(offset + size));
  return kMarkSize + WriteDeflateBlock({content + offset, size}, steps, &out[kMarkSize]);
}

}  // namespace kw::cabinet
