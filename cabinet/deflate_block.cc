#include "cabinet/deflate_block.h"

#include <bit>
#include <cstring>

#include "cabinet/format.h"
#include "cabinet/prefix_code.h"

namespace kw::cabinet {
namespace {

// Four literals and what is left of a byte fit into 64 bits.
constexpr unsigned kLiteralLimit = 14;
constexpr unsigned kDistanceLimit = 15;
constexpr unsigned kLengthsLimit = 7;

constexpr size_t kLengthsSymbols = 19;
constexpr uint8_t kRepeatLast = 16;
constexpr uint8_t kFewZeros = 17;
constexpr uint8_t kManyZeros = 18;
// The order in which the code of the code lengths is declared.
constexpr std::array<uint8_t, kLengthsSymbols> kDeclared = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                            11, 4,  12, 3, 13, 2, 14, 1, 15};

// Bits into bytes, lowest first.
class BitWriter {
 public:
  explicit BitWriter(std::byte* out) : out_(out) {}

  // At most 57 bits between two calls of Flush.
  void Put(uint64_t bits, unsigned count) {
    bits_ |= bits << count_;
    count_ += count;
  }
  void Flush() {
    uint64_t bits = bits_;
    if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
    std::memcpy(out_, &bits, sizeof bits);
    out_ += count_ / 8;
    bits_ >>= count_ & ~7u;
    count_ &= 7;
  }
  // The place behind the last byte.
  std::byte* Finish() {
    Flush();
    return out_ + (count_ > 0 ? 1 : 0);
  }

 private:
  uint64_t bits_ = 0;
  unsigned count_ = 0;
  std::byte* out_;
};

unsigned ExtraBitsOfRepeat(size_t symbol) {
  return symbol == kRepeatLast ? 2 : symbol == kFewZeros ? 3 : symbol == kManyZeros ? 7 : 0;
}

// The declaration of both codes: their lengths in a row, repetitions shortened, in a code of their own.
class Declaration {
 public:
  Declaration(const PrefixCode& literals, const PrefixCode& distances)
      : literals_(literals.Used(kFirstLengthSymbol)), distances_(distances.Used(1)) {
    std::array<uint8_t, kLiteralSymbols + kDistanceGroups> lengths;
    std::memcpy(lengths.data(), literals.lengths.data(), literals_);
    std::memcpy(lengths.data() + literals_, distances.lengths.data(), distances_);
    const size_t count = literals_ + distances_;
    for (size_t at = 0; at < count;) {
      size_t run = 1;
      while (at + run < count && lengths[at + run] == lengths[at]) ++run;
      AddRun(lengths[at], run);
      at += run;
    }
    code_ = BestCode(counts_, kLengthsLimit);
    declared_ = kLengthsSymbols;
    while (declared_ > 4 && code_.lengths[kDeclared[declared_ - 1]] == 0) --declared_;
  }

  size_t Bits() const {
    size_t bits = 5 + 5 + 4 + 3 * declared_;
    for (size_t i = 0; i < kLengthsSymbols; ++i)
      bits += counts_[i] * (code_.lengths[i] + ExtraBitsOfRepeat(i));
    return bits;
  }

  void Write(BitWriter& out) const {
    out.Put(literals_ - kFirstLengthSymbol, 5);
    out.Put(distances_ - 1, 5);
    out.Put(declared_ - 4, 4);
    for (size_t i = 0; i < declared_; ++i) {
      out.Flush();
      out.Put(code_.lengths[kDeclared[i]], 3);
    }
    for (size_t i = 0; i < size_; ++i) {
      out.Flush();
      out.Put(code_.codes[items_[i].symbol], code_.lengths[items_[i].symbol]);
      out.Put(items_[i].extra, ExtraBitsOfRepeat(items_[i].symbol));
    }
    out.Flush();
  }

 private:
  struct Item {
    uint8_t symbol;
    uint8_t extra;
  };

  void Add(size_t symbol, size_t extra) {
    items_[size_++] = {static_cast<uint8_t>(symbol), static_cast<uint8_t>(extra)};
    ++counts_[symbol];
  }

  void AddRun(uint8_t length, size_t run) {
    if (length == 0) {
      for (; run >= 11; run -= std::min<size_t>(run, 138)) Add(kManyZeros, std::min<size_t>(run, 138) - 11);
      if (run >= 3) {
        Add(kFewZeros, run - 3);
        run = 0;
      }
    } else {
      Add(length, 0);
      for (--run; run >= 3; run -= std::min<size_t>(run, 6)) Add(kRepeatLast, std::min<size_t>(run, 6) - 3);
    }
    for (; run > 0; --run) Add(length, 0);
  }

  size_t literals_;
  size_t distances_;
  std::array<Item, kLiteralSymbols + kDistanceGroups> items_;
  size_t size_ = 0;
  std::array<uint32_t, kLengthsSymbols> counts_{};
  PrefixCode code_;
  size_t declared_ = 0;
};

size_t ContentBits(const Steps& steps, const PrefixCode& literals, const PrefixCode& distances) {
  size_t bits = 0;
  for (size_t i = 0; i < kLiteralSymbols; ++i) {
    const unsigned extra = i < kFirstLengthSymbol ? 0u : kSymbols.length(i - kFirstLengthSymbol).extra_bits;
    bits += size_t{steps.literals[i]} * (literals.lengths[i] + extra);
  }
  for (size_t i = 0; i < kDistanceGroups; ++i) {
    bits += size_t{steps.distances[i]} * (distances.lengths[i] + kSymbols.distance(i).extra_bits);
  }
  return bits;
}

struct Bits {
  uint32_t bits;
  uint32_t count;
};

// For each match length the bits that tell it: its group's code and which of the group it is.
std::array<Bits, kMaxMatch + 1> BitsOfLengths(const PrefixCode& literals) {
  std::array<Bits, kMaxMatch + 1> all;
  for (uint32_t length = kMinMatch; length <= kMaxMatch; ++length) {
    const size_t group = kSymbols.LengthGroup(length);
    const SymbolGroup& range = kSymbols.length(group);
    const uint32_t code_length = literals.lengths[kFirstLengthSymbol + group];
    all[length] = {literals.codes[kFirstLengthSymbol + group] | ((length - range.first) << code_length),
                   code_length + range.extra_bits};
  }
  return all;
}

void WriteContent(const std::byte* content, const Steps& steps, const PrefixCode& literals,
                  const PrefixCode& distances, BitWriter& out) {
  const auto lengths = BitsOfLengths(literals);
  std::array<Bits, kLiterals> single;
  for (size_t i = 0; i < kLiterals; ++i) single[i] = {literals.codes[i], literals.lengths[i]};
  const auto put_literal = [&] {
    const Bits& bits = single[static_cast<uint8_t>(*content++)];
    out.Put(bits.bits, bits.count);
  };
  for (const Step& step : steps.steps) {
    uint32_t left = step.literals;
    for (; left >= 4; left -= 4) {
      for (int i = 0; i < 4; ++i) put_literal();
      out.Flush();
    }
    for (; left > 0; --left) put_literal();
    out.Flush();
    if (step.length == 0) continue;
    out.Put(lengths[step.length].bits, lengths[step.length].count);
    const size_t group = kSymbols.DistanceGroup(step.distance);
    const SymbolGroup& range = kSymbols.distance(group);
    out.Put(distances.codes[group], distances.lengths[group]);
    out.Put(uint64_t{step.distance} - range.first, range.extra_bits);
    out.Flush();
    content += step.length;
  }
  out.Put(literals.codes[kEndOfBlock], literals.lengths[kEndOfBlock]);
}

size_t Store(std::span<const std::byte> block, std::byte* out) {
  out[0] = std::byte{1};
  PutU16(out + 1, static_cast<uint16_t>(block.size()));
  PutU16(out + 3, static_cast<uint16_t>(~block.size()));
  std::memcpy(out + kStoredOverhead, block.data(), block.size());
  return kStoredOverhead + block.size();
}

}  // namespace

size_t WriteDeflateBlock(std::span<const std::byte> block, const Steps& steps, std::byte* out) {
  constexpr unsigned kLastWithOwnCodes = 1 | (2 << 1);
  const PrefixCode literals = BestCode(steps.literals, kLiteralLimit);
  const PrefixCode distances = BestCode(steps.distances, kDistanceLimit);
  const Declaration declaration(literals, distances);
  const size_t bits = 3 + declaration.Bits() + ContentBits(steps, literals, distances);
  if (bits > 8 * (kStoredOverhead + block.size())) return Store(block, out);
  BitWriter writer(out);
  writer.Put(kLastWithOwnCodes, 3);
  declaration.Write(writer);
  WriteContent(block.data(), steps, literals, distances, writer);
  return static_cast<size_t>(writer.Finish() - out);
}

}  // namespace kw::cabinet
