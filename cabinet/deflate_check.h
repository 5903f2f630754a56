#ifndef KITWRIGHT_CABINET_DEFLATE_CHECK_H_
#define KITWRIGHT_CABINET_DEFLATE_CHECK_H_

#include <cstddef>
#include <span>

namespace kw::cabinet {

/// True if a DEFLATE stream may hold a block of literals alone that declares no distance code. That is sound
/// by the letter of the format, but wide-spread cabinet readers refuse it. Looks for the head of such a block
/// at every bit, so it never misses one and is wrong about others next to never.
bool MayLackDistanceCodes(std::span<const std::byte> stream);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_DEFLATE_CHECK_H_
