#include "cabinet/block_encoder.h"

#include <gtest/gtest.h>

#include "cabinet/format.h"
#include "cabinet/history_inflater.h"
#include "cabinet/prefix_code.h"
#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

std::vector<std::string> Packed(const std::string& content) {
  BlockEncoder encoder;
  std::vector<std::string> blocks;
  for (size_t at = 0; at < content.size(); at += kBlockSize) {
    std::string& out = blocks.emplace_back(kMaxCompressedBlock, '\0');
    out.resize(encoder.Encode(reinterpret_cast<const std::byte*>(content.data()), at,
                              std::min(kBlockSize, content.size() - at),
                              std::as_writable_bytes(std::span(out))));
  }
  return blocks;
}

// What the blocks unpack to; `size` is what they must give together.
std::string Unpacked(const std::vector<std::string>& blocks, size_t size) {
  HistoryInflater inflater;
  std::string content(size, '?');
  for (size_t i = 0, at = 0; i < blocks.size(); ++i, at += kBlockSize) {
    const size_t history = i == 0 ? 0 : kBlockSize;
    const auto out = std::as_writable_bytes(std::span(content)).subspan(at - history);
    EXPECT_EQ(blocks[i].substr(0, 2), "CK");
    EXPECT_TRUE(inflater.InflateBehind(std::as_bytes(std::span(blocks[i])).subspan(2), history,
                                       out.first(history + std::min(kBlockSize, size - at))))
        << "block " << i << " of " << size;
  }
  return content;
}

TEST(BlockEncoder, WhateverIsPackedUnpacksToTheSame) {
  const std::string noise = Noise(kBlockSize);
  const std::string literals = LiteralsAlone(kBlockSize);
  std::string few_bytes;
  for (const char c : noise) few_bytes += static_cast<char>('a' + (c & 3));
  for (const std::string& content :
       {Prose(300000), Noise(100000), literals, literals + Prose(40000) + literals, std::string(200000, '\0'),
        std::string(kBlockSize, 'a') + "b", noise + noise + noise, few_bytes + noise + few_bytes,
        noise.substr(0, 1000) + Prose(70000) + noise + std::string(1000, 'x') + noise}) {
    EXPECT_EQ(Unpacked(Packed(content), content.size()), content) << content.size();
  }
  for (size_t size = 1; size < 300; ++size) {
    for (const std::string& content : {Prose(size), std::string(size, 'z'), Noise(size)}) {
      EXPECT_EQ(Unpacked(Packed(content), size), content) << size;
    }
  }
}

TEST(BlockEncoder, MoreThan64KiBOfPlacesAreNotMixedUp) {
  std::string content;
  for (uint32_t seed = 1; content.size() < 16 * kBlockSize; ++seed) {
    content += Prose(1000 + seed * 37 % 5000, seed % 7) + Noise(seed * 91 % 3000, seed % 5);
  }
  content.resize(16 * kBlockSize);
  EXPECT_EQ(Unpacked(Packed(content), content.size()), content);
}

TEST(BlockEncoder, ABlockMayReferToTheOneBefore) {
  const std::string noise = Noise(kBlockSize);
  const std::vector<std::string> blocks = Packed(noise + noise);
  EXPECT_GT(blocks[0].size(), kBlockSize);
  EXPECT_LT(blocks[1].size(), kBlockSize / 4);
}

TEST(BlockEncoder, BehindARestartABlockStandsAloneAndGivesTheSameBytes) {
  BlockEncoder encoder;
  const std::string text = Prose(kBlockSize);
  std::string out[2];
  for (std::string& packed : out) {
    encoder.Restart();
    packed.resize(kMaxCompressedBlock);
    packed.resize(encoder.Encode(reinterpret_cast<const std::byte*>(text.data()), 0, text.size(),
                                 std::as_writable_bytes(std::span(packed))));
  }
  EXPECT_EQ(out[0], out[1]);
  std::string content(text.size(), '\0');
  HistoryInflater inflater;
  EXPECT_TRUE(inflater.InflateAlone(std::as_bytes(std::span(out[1])).subspan(2),
                                    std::as_writable_bytes(std::span(content))));
  EXPECT_EQ(content, text);
}

// Wide-spread readers refuse a block that declares no distance code, sound as it is by the format's letter.
TEST(BlockEncoder, EveryBlockDeclaresTwoDistanceCodesOrMore) {
  for (uint32_t seed = 1; seed < 20; ++seed) {
    const std::string packed = Packed(LiteralsAlone(16000, seed))[0];
    const auto bits = static_cast<unsigned>(static_cast<uint8_t>(packed[2])) |
                      (static_cast<unsigned>(static_cast<uint8_t>(packed[3])) << 8);
    EXPECT_EQ(bits & 7, 5u) << "the last block, with codes of its own";
    EXPECT_GE((bits >> 8) & 31, 1u);
  }
}

TEST(BlockEncoder, BadDataIsStored) {
  for (const size_t size : {size_t{1}, size_t{100}, kBlockSize}) {
    EXPECT_LE(Packed(Noise(size))[0].size(), size + 7);
  }
}

TEST(BlockEncoder, WhatAnyPlaceRefersToIsCheckedWhenUnpacking) {
  HistoryInflater inflater;
  const std::string noise = Noise(kBlockSize);
  const std::string second = Packed(noise + noise)[1];
  std::string content(kBlockSize, '\0');
  EXPECT_FALSE(inflater.InflateAlone(std::as_bytes(std::span(second)).subspan(2),
                                     std::as_writable_bytes(std::span(content))));
  EXPECT_FALSE(inflater.InflateBehind({}, 0, std::as_writable_bytes(std::span(content))));
}

// The sum of what codes of these lengths take of the code space, of 2 to the 15th.
uint32_t SpaceOf(const PrefixCode& code) {
  uint32_t space = 0;
  for (size_t i = 0; i < code.symbols; ++i) space += code.lengths[i] == 0 ? 0 : 32768u >> code.lengths[i];
  return space;
}

TEST(PrefixCodeTest, CommonSymbolsGetTheShorterCodes) {
  const std::array<uint32_t, 6> counts = {1, 0, 8, 2, 4, 1};
  const PrefixCode code = BestCode(counts, 15);
  const std::vector<int> lengths(code.lengths.begin(), code.lengths.begin() + 6);
  EXPECT_EQ(lengths, (std::vector<int>{4, 0, 1, 3, 2, 4}));
  // Codes of one length count up, and stand with their first bit lowest.
  EXPECT_EQ(code.codes[2], 0b0);
  EXPECT_EQ(code.codes[4], 0b01);
  EXPECT_EQ(code.codes[3], 0b011);
  EXPECT_EQ(code.codes[0], 0b0111);
  EXPECT_EQ(code.codes[5], 0b1111);
}

TEST(PrefixCodeTest, NoCodeIsLongerThanTheLimitAndTheSpaceIsFilled) {
  std::array<uint32_t, 24> counts = {1, 1};
  for (size_t i = 2; i < counts.size(); ++i) counts[i] = std::min(counts[i - 1] + counts[i - 2], 32768u);
  for (const unsigned limit : {5u, 7u, 14u, 15u}) {
    const PrefixCode code = BestCode(counts, limit);
    EXPECT_LE(*std::max_element(code.lengths.begin(), code.lengths.begin() + 24), limit);
    EXPECT_EQ(SpaceOf(code), 32768u) << limit;
  }
}

TEST(PrefixCodeTest, ThereAreNeverFewerThanTwoCodes) {
  for (const std::array<uint32_t, 4>& counts :
       {std::array<uint32_t, 4>{0, 0, 0, 0}, {0, 0, 9, 0}, {9, 0, 0, 0}, {0, 9, 0, 0}}) {
    const PrefixCode code = BestCode(counts, 15);
    EXPECT_EQ(SpaceOf(code), 32768u);
    for (size_t i = 0; i < counts.size(); ++i) EXPECT_TRUE(counts[i] == 0 || code.lengths[i] == 1);
  }
}

}  // namespace
}  // namespace kw::cabinet
