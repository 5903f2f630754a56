#include "cabinet/block_encoder.h"

#include <libdeflate.h>
#include <zlib.h>

#include <cstring>

#include "cabinet/deflate_check.h"
#include "cabinet/format.h"

namespace kw::cabinet {
namespace {

constexpr int kLevel = 5;
// Of the encoder that always declares distance codes, for the few blocks that need it.
constexpr int kCarefulLevel = 6;
constexpr size_t kMarkSize = 2;
constexpr size_t kStoredOverhead = 5;

}  // namespace

void BlockEncoder::Free::operator()(libdeflate_compressor* compressor) const {
  libdeflate_free_compressor(compressor);
}

void BlockEncoder::FreeStream::operator()(z_stream_s* stream) const {
  deflateEnd(stream);
  delete stream;
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
  if (packed != 0 && MayLackDistanceCodes(out.subspan(kMarkSize, packed))) {
    packed = EncodeCarefully(block, out.subspan(kMarkSize, block.size() + kStoredOverhead - 1));
  }
  if (packed != 0) return kMarkSize + packed;
  std::byte* stored = &out[kMarkSize];
  stored[0] = std::byte{1};
  PutU16(stored + 1, static_cast<uint16_t>(block.size()));
  PutU16(stored + 3, static_cast<uint16_t>(~block.size()));
  std::memcpy(stored + kStoredOverhead, block.data(), block.size());
  return kMarkSize + kStoredOverhead + block.size();
}

size_t BlockEncoder::EncodeCarefully(std::span<const std::byte> block, std::span<std::byte> out) {
  if (careful_ == nullptr) {
    auto stream = std::make_unique<z_stream_s>();
    if (deflateInit2(stream.get(), kCarefulLevel, Z_DEFLATED, -MAX_WBITS, MAX_MEM_LEVEL,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
      return 0;
    }
    careful_.reset(stream.release());
  }
  z_stream_s& stream = *careful_;
  if (deflateReset(&stream) != Z_OK) return 0;
  // The library's pointer is not const, but it only reads there.
  stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(block.data()));
  stream.avail_in = static_cast<uInt>(block.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  return deflate(&stream, Z_FINISH) == Z_STREAM_END ? out.size() - stream.avail_out : 0;
}

}  // namespace kw::cabinet
