#ifndef KITWRIGHT_CABINET_DEFLATE_SYMBOLS_H_
#define KITWRIGHT_CABINET_DEFLATE_SYMBOLS_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace kw::cabinet {

// The alphabets of DEFLATE. Lengths and distances are grouped: a symbol names the group, extra bits behind it
// the member.

inline constexpr size_t kLiterals = 256;
inline constexpr size_t kEndOfBlock = 256;
inline constexpr size_t kFirstLengthSymbol = 257;
inline constexpr size_t kLengthGroups = 29;
inline constexpr size_t kDistanceGroups = 30;
inline constexpr size_t kLiteralSymbols = kFirstLengthSymbol + kLengthGroups;
inline constexpr uint32_t kMinMatch = 3;
inline constexpr uint32_t kMaxMatch = 258;
/// Largest distance of a match.
inline constexpr uint32_t kWindow = 32768;

struct SymbolGroup {
  uint16_t first = 0;      ///< its smallest length or distance
  uint8_t extra_bits = 0;  ///< how many bits tell the member
};

/// The groups, and for each length or distance the group it belongs to.
class DeflateSymbols {
 public:
  constexpr DeflateSymbols() {
    uint32_t next = kMinMatch;
    for (uint32_t i = 0; i + 1 < kLengthGroups; ++i) {
      lengths_[i] = {static_cast<uint16_t>(next), static_cast<uint8_t>(i < 8 ? 0 : (i - 4) / 4)};
      for (const uint32_t end = next + (1u << lengths_[i].extra_bits); next < end && next < kMaxMatch;
           ++next) {
        length_groups_[next - kMinMatch] = static_cast<uint8_t>(i);
      }
    }
    // The longest match has a symbol of its own.
    lengths_[kLengthGroups - 1] = {kMaxMatch, 0};
    length_groups_[kMaxMatch - kMinMatch] = kLengthGroups - 1;
    next = 1;
    for (uint32_t i = 0; i < kDistanceGroups; ++i) {
      distances_[i] = {static_cast<uint16_t>(next), static_cast<uint8_t>(i < 4 ? 0 : (i - 2) / 2)};
      for (const uint32_t end = next + (1u << distances_[i].extra_bits); next < end; ++next) {
        distance_groups_[Place(next)] = static_cast<uint8_t>(i);
      }
    }
  }

  constexpr SymbolGroup length(size_t group) const { return lengths_[group]; }
  constexpr SymbolGroup distance(size_t group) const { return distances_[group]; }
  constexpr size_t LengthGroup(uint32_t length) const { return length_groups_[length - kMinMatch]; }
  constexpr size_t DistanceGroup(uint32_t distance) const { return distance_groups_[Place(distance)]; }

 private:
  // Groups of distances over 256 are whole multiples of 128 wide.
  static constexpr size_t Place(uint32_t distance) {
    return distance <= 256 ? distance - 1 : 256 + ((distance - 1) >> 7);
  }

  std::array<SymbolGroup, kLengthGroups> lengths_{};
  std::array<SymbolGroup, kDistanceGroups> distances_{};
  std::array<uint8_t, kMaxMatch - kMinMatch + 1> length_groups_{};
  std::array<uint8_t, 512> distance_groups_{};
};

inline constexpr DeflateSymbols kSymbols;

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_DEFLATE_SYMBOLS_H_
