#ifndef KITWRIGHT_CABINET_BLOCK_ENCODER_H_
#define KITWRIGHT_CABINET_BLOCK_ENCODER_H_

#include <cstddef>
#include <span>

#include "cabinet/match_finder.h"

namespace kw::cabinet {

/// Packs consecutive blocks as MSZIP: the mark "CK" and one DEFLATE stream each, which may refer to the block
/// before. The bytes depend on nothing but the blocks since the last Restart. docs/cabinets.md holds the
/// measurements behind the way of packing. One encoder serves one thread at a time.
class BlockEncoder {
 public:
  /// The next block must be understood without what came before it.
  void Restart() { finder_.Restart(); }

  /// Packs the `size` (at most kBlockSize) bytes at `offset` of `content` into `out`, which holds at least
  /// kMaxCompressedBlock bytes; gives the packed size. All blocks since Restart lie in front of it in
  /// `content`, all but the last of full size. Data that does not shrink is stored inside the stream.
  size_t Encode(const std::byte* content, size_t offset, size_t size, std::span<std::byte> out);

 private:
  MatchFinder finder_;
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_BLOCK_ENCODER_H_
