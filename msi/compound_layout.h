#ifndef KITWRIGHT_MSI_COMPOUND_LAYOUT_H_
#define KITWRIGHT_MSI_COMPOUND_LAYOUT_H_

#include <cstddef>
#include <cstdint>

namespace kw::msi::layout {

// The compound file's own numbers.
inline constexpr uint32_t kFree = 0xFFFFFFFF;
inline constexpr uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr uint32_t kFatSector = 0xFFFFFFFD;
inline constexpr uint32_t kDifatSector = 0xFFFFFFFC;
inline constexpr uint32_t kMaxSector = 0xFFFFFFFA;
inline constexpr uint32_t kNoEntry = 0xFFFFFFFF;

inline constexpr size_t kHeaderSize = 512;
inline constexpr size_t kHeaderDifat = 109;
inline constexpr int kMiniShift = 6;
inline constexpr uint32_t kMiniSize = 1u << kMiniShift;
inline constexpr uint64_t kMiniCutoff = 4096;
inline constexpr size_t kEntrySize = 128;

inline constexpr uint8_t kStorageEntry = 1;
inline constexpr uint8_t kStreamEntry = 2;
inline constexpr uint8_t kRootEntry = 5;

inline constexpr unsigned char kSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};

// Positions in the header.
inline constexpr size_t kMajorVersionAt = 26;
inline constexpr size_t kByteOrderAt = 28;
inline constexpr size_t kSectorShiftAt = 30;
inline constexpr size_t kMiniShiftAt = 32;
inline constexpr size_t kDirectorySectorsAt = 40;
inline constexpr size_t kFatSectorsAt = 44;
inline constexpr size_t kDirectoryStartAt = 48;
inline constexpr size_t kMiniCutoffAt = 56;
inline constexpr size_t kMiniFatStartAt = 60;
inline constexpr size_t kMiniFatSectorsAt = 64;
inline constexpr size_t kDifatStartAt = 68;
inline constexpr size_t kDifatSectorsAt = 72;
inline constexpr size_t kDifatAt = 76;

// Positions in a directory entry.
inline constexpr size_t kEntryNameBytes = 64;
inline constexpr size_t kEntryTypeAt = 66;
inline constexpr size_t kEntryColourAt = 67;
inline constexpr size_t kEntryLeftAt = 68;
inline constexpr size_t kEntryRightAt = 72;
inline constexpr size_t kEntryChildAt = 76;
inline constexpr size_t kEntryClassAt = 80;
inline constexpr size_t kEntryStateAt = 96;
inline constexpr size_t kEntryCreatedAt = 100;
inline constexpr size_t kEntryModifiedAt = 108;
inline constexpr size_t kEntryStartAt = 116;
inline constexpr size_t kEntryBytesAt = 120;

/// No file of this kind may pass two gigabytes: readers map the last part of them for locks.
inline constexpr uint64_t kMaxFileSize = 0x7FFFFF00;

}  // namespace kw::msi::layout

#endif  // KITWRIGHT_MSI_COMPOUND_LAYOUT_H_
