#ifndef KITWRIGHT_CABINET_MSPACK_FOLDER_H_
#define KITWRIGHT_CABINET_MSPACK_FOLDER_H_

#include "cabinet/block_decoder.h"

namespace kw::cabinet {

/// DecodeFolder for LZX and Quantum, by libmspack. Unpacks up to byte `end` of the folder.
Status DecodeFolderWithMspack(StorageFile& file, const CabinetFolder& folder, uint8_t reserved_data,
                              uint64_t end, const TakeBytes& take);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_MSPACK_FOLDER_H_
