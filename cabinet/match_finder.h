#ifndef KITWRIGHT_CABINET_MATCH_FINDER_H_
#define KITWRIGHT_CABINET_MATCH_FINDER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "cabinet/deflate_symbols.h"
#include "cabinet/format.h"

namespace kw::cabinet {

/// Some literals and the match behind them; the last step of a block has no match.
struct Step {
  uint32_t literals = 0;
  uint16_t length = 0;  ///< of the match; 0 means none
  uint16_t distance = 0;
};

/// A block cut into literals and matches, and how often each symbol occurs.
struct Steps {
  std::vector<Step> steps;
  std::array<uint32_t, kLiteralSymbols> literals{};  ///< literals, lengths and the end of the block
  std::array<uint32_t, kDistanceGroups> distances{};
};

/// Finds what a block repeats of itself and of the 32 KiB before it. A table keeps, for each hash of five
/// bytes, the two places where they stood last, and a smaller one the last place for three bytes; the longest
/// match among them is taken. Both live on from block to block, so that the bytes before need not be looked
/// at again.
class MatchFinder {
 public:
  MatchFinder();

  /// Forgets everything: the next block is the first of a new content.
  void Restart();

  /// Cuts the bytes `from` up to `to` of `content` (at most kBlockSize of them), which must be the bytes
  /// behind those of the call before. The result is good until the next call.
  const Steps& Cut(const std::byte* content, uint32_t from, uint32_t to);

 private:
  class Scan;

  // Places count modulo 65,536; a place that is too far away or was never set is noticed when its bytes
  // differ.
  struct Tables {
    std::array<uint32_t, 1 << 13> pairs;  // the last place in the lower half, the one before in the upper
    std::array<uint16_t, 1 << 12> near;
  };

  std::unique_ptr<Tables> tables_;
  Steps steps_;
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_MATCH_FINDER_H_
