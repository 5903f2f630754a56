#include "cabinet/block_encoder.h"

#include <gtest/gtest.h>
#include <libdeflate.h>

#include "cabinet/deflate_check.h"
#include "cabinet/format.h"
#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

std::span<const std::byte> BytesOf(const std::string& text) { return std::as_bytes(std::span(text)); }

std::string Packed(const std::string& text) {
  BlockEncoder encoder;
  std::string out(kMaxCompressedBlock, '\0');
  out.resize(encoder.Encode(BytesOf(text), std::as_writable_bytes(std::span(out))));
  return out;
}

std::string RawDeflate(const std::string& text) {
  libdeflate_compressor* compressor = libdeflate_alloc_compressor(5);
  std::string out(text.size() + 100, '\0');
  out.resize(libdeflate_deflate_compress(compressor, text.data(), text.size(), out.data(), out.size()));
  libdeflate_free_compressor(compressor);
  return out;
}

// `stream` behind `count` empty blocks of ten bits each.
std::string BehindEmptyBlocks(const std::string& stream, size_t count) {
  std::string out(stream.size() + count * 10 / 8 + 2, '\0');
  const auto set = [&out](size_t bit) {
    out[bit / 8] = static_cast<char>(static_cast<unsigned char>(out[bit / 8]) | (1u << (bit % 8)));
  };
  for (size_t i = 0; i < count; ++i) set(i * 10 + 1);
  for (size_t bit = 0; bit < stream.size() * 8; ++bit) {
    if ((static_cast<unsigned char>(stream[bit / 8]) >> (bit % 8)) & 1u) set(count * 10 + bit);
  }
  return out;
}

TEST(BlockEncoder, ABlockWithoutDistanceCodesIsNoticedWhereverItStarts) {
  const std::string lacking = RawDeflate(LiteralsAlone(20000, 5));
  const std::string having = RawDeflate(Prose(32768));
  for (size_t count = 0; count < 100; ++count) {
    EXPECT_TRUE(MayLackDistanceCodes(BytesOf(BehindEmptyBlocks(lacking, count)))) << count;
    EXPECT_FALSE(MayLackDistanceCodes(BytesOf(BehindEmptyBlocks(having, count)))) << count;
  }
  EXPECT_FALSE(MayLackDistanceCodes({}));
}

TEST(BlockEncoder, NoPackedBlockLacksDistanceCodes) {
  for (uint32_t seed = 1; seed < 40; ++seed) {
    const std::string block = Prose(seed * 200, seed) + LiteralsAlone(16000, seed) + Prose(seed * 300, seed);
    const std::string packed = Packed(block);
    EXPECT_FALSE(MayLackDistanceCodes(BytesOf(packed).subspan(2))) << seed;
    EXPECT_LT(packed.size(), block.size()) << seed;
  }
}

TEST(BlockEncoder, BadDataIsStored) {
  for (const size_t size : {size_t{1}, size_t{100}, kBlockSize}) {
    const std::string noise = Noise(size);
    const std::string packed = Packed(noise);
    EXPECT_LE(packed.size(), size + 7);
    EXPECT_EQ(packed.substr(0, 2), "CK");
  }
}

}  // namespace
}  // namespace kw::cabinet
