#ifndef KITWRIGHT_CABINET_DEFLATE_BLOCK_H_
#define KITWRIGHT_CABINET_DEFLATE_BLOCK_H_

#include <cstddef>
#include <span>

#include "cabinet/match_finder.h"

namespace kw::cabinet {

/// Bytes beyond a stream's end that WriteDeflateBlock may write.
inline constexpr size_t kWriteAhead = 8;
/// Bytes that a stored block takes beside its content.
inline constexpr size_t kStoredOverhead = 5;

/// Writes `block`, cut into `steps`, as a whole DEFLATE stream of one block, with its own codes or stored,
/// whichever is smaller; gives the stream's size. `out` holds block.size() + kStoredOverhead + kWriteAhead
/// bytes.
size_t WriteDeflateBlock(std::span<const std::byte> block, const Steps& steps, std::byte* out);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_DEFLATE_BLOCK_H_
