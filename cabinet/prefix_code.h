#ifndef KITWRIGHT_CABINET_PREFIX_CODE_H_
#define KITWRIGHT_CABINET_PREFIX_CODE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kw::cabinet {

inline constexpr size_t kMaxSymbols = 288;

/// A prefix code as DEFLATE declares it: by the length of each symbol's code.
struct PrefixCode {
  std::array<uint8_t, kMaxSymbols> lengths;  ///< bits; 0 for a symbol without a code
  std::array<uint16_t, kMaxSymbols> codes;   ///< first bit lowest, as the stream takes them
  size_t symbols = 0;                        ///< how many of the arrays are meant

  /// Symbols up to the last one with a code, but `least` at the least.
  size_t Used(size_t least) const;
};

/// The best code for symbols that occur `counts` times (at most 65,535 each), with no code longer than
/// `limit` bits (at most 15). Where fewer than two symbols occur, others get codes as well: wide-spread
/// readers refuse a declaration of fewer than two.
PrefixCode BestCode(std::span<const uint32_t> counts, unsigned limit);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_PREFIX_CODE_H_
