#ifndef KITWRIGHT_CABINET_BLOCK_DECODER_H_
#define KITWRIGHT_CABINET_BLOCK_DECODER_H_

#include <functional>
#include <span>

#include "base/result.h"
#include "base/storage.h"
#include "cabinet/cabinet_reader.h"

namespace kw::cabinet {

/// Takes the next unpacked bytes of a folder; false means that no more are wanted.
using TakeBytes = std::function<bool(std::span<const std::byte>)>;

/// Unpacks a stored or MSZIP folder in order, in memory that does not grow with it. Blocks are checked and
/// unpacked by several threads; those that refer to earlier ones wait for them. A failure names the block.
/// `reserved_data` is what each block record reserves.
Status DecodeFolder(StorageFile& file, const CabinetFolder& folder, uint8_t reserved_data, unsigned threads,
                    const TakeBytes& take);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_BLOCK_DECODER_H_
