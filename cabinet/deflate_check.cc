#include "cabinet/deflate_check.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kw::cabinet {
namespace {

// A block's head: one bit "final", two bits of type (2: own codes, so the bits 0 and 1), five bits for the
// number of literal and length codes beyond 257, five for the distance codes beyond 1. Without matches both
// numbers are 0.
constexpr size_t kFixedBits = 13;
constexpr int kLiteralCodes = 257;
constexpr int kCodes = kLiteralCodes + 1;

// Bits from a place in the stream, lowest first; zeros behind its end.
class Bits {
 public:
  Bits(std::span<const std::byte> stream, size_t position) : stream_(stream), position_(position) {}
  unsigned Take(unsigned count) {
    unsigned value = 0;
    for (unsigned i = 0; i < count; ++i, ++position_) {
      const size_t at = position_ >> 3;
      if (at < stream_.size()) value |= ((static_cast<unsigned>(stream_[at]) >> (position_ & 7)) & 1u) << i;
    }
    return value;
  }

 private:
  std::span<const std::byte> stream_;
  size_t position_;
};

// Codes of at most seven bits that name code lengths.
class LengthCodes {
 public:
  // False when the lengths do not fill the code space, as those of a real block do.
  bool Read(Bits& bits) {
    static constexpr std::array<uint8_t, 19> kOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                       11, 4,  12, 3, 13, 2, 14, 1, 15};
    const unsigned count = bits.Take(4) + 4;
    std::array<uint8_t, 19> lengths{};
    unsigned filled = 0;
    for (unsigned i = 0; i < count; ++i) {
      lengths[kOrder[i]] = static_cast<uint8_t>(bits.Take(3));
      if (lengths[kOrder[i]] != 0) filled += 128u >> lengths[kOrder[i]];
    }
    if (filled != 128) return false;
    unsigned next = 0;
    for (uint8_t length = 1; length <= 7; ++length) {
      first_[length] = static_cast<uint16_t>(next);
      for (uint8_t symbol = 0; symbol < lengths.size(); ++symbol) {
        if (lengths[symbol] != length) continue;
        symbols_[length][next - first_[length]] = symbol;
        ++next;
      }
      count_[length] = static_cast<uint16_t>(next - first_[length]);
      next <<= 1;
    }
    return true;
  }

  unsigned Symbol(Bits& bits) const {
    unsigned code = 0;
    for (unsigned length = 1; length <= 7; ++length) {
      code = (code << 1) | bits.Take(1);
      if (code - first_[length] < count_[length]) return symbols_[length][code - first_[length]];
    }
    return 0;
  }

 private:
  std::array<uint16_t, 8> first_{};
  std::array<uint16_t, 8> count_{};
  std::array<std::array<uint8_t, 19>, 8> symbols_{};
};

// True if a whole block head without distance codes stands at `position`, the place of its number of length
// codes.
bool IsHead(std::span<const std::byte> stream, size_t position) {
  Bits bits(stream, position);
  LengthCodes codes;
  if (!codes.Read(bits)) return false;
  unsigned filled = 0;
  unsigned last = 0;
  for (int done = 0; done < kCodes;) {
    const unsigned symbol = codes.Symbol(bits);
    int repeat = 1;
    unsigned length = symbol;
    if (symbol == 16) {
      if (done == 0) return false;
      repeat = static_cast<int>(3 + bits.Take(2));
      length = last;
    } else if (symbol >= 17) {
      repeat = static_cast<int>(symbol == 17 ? 3 + bits.Take(3) : 11 + bits.Take(7));
      length = 0;
    }
    if (done + repeat > kCodes) return false;
    if (length != 0) filled += static_cast<unsigned>(repeat) * (32768u >> length);
    done += repeat;
    last = length;
  }
  // The 258th length is the one distance code's; "no code" fills the literals' space alone.
  return last == 0 && filled == 32768;
}

}  // namespace

bool MayLackDistanceCodes(std::span<const std::byte> stream) {
  // Each step looks at 64 bits for the fixed ones: 0, 1 and ten zeros. They start one bit behind a block's
  // start.
  constexpr size_t kStep = 6;  // bytes; places whose bits end in the next word are seen again there
  for (size_t at = 0; at < stream.size(); at += kStep) {
    uint64_t word = 0;
    std::memcpy(&word, stream.data() + at, std::min(sizeof word, stream.size() - at));
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    uint64_t zeros = ~word;
    const uint64_t first = zeros;
    zeros &= zeros >> 1;
    zeros &= zeros >> 2;
    zeros &= zeros >> 4;
    zeros &= zeros >> 2;
    uint64_t found = first & (word >> 1) & (zeros >> 2) & ((uint64_t{1} << (8 * kStep)) - 1);
    for (; found != 0; found &= found - 1) {
      const size_t type = at * 8 + static_cast<size_t>(std::countr_zero(found));
      if (type > 0 && IsHead(stream, type + kFixedBits - 1)) return true;
    }
  }
  return false;
}

}  // namespace kw::cabinet
