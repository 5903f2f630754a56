#ifndef KITWRIGHT_CABINET_FORMAT_H_
#define KITWRIGHT_CABINET_FORMAT_H_

#include <cstddef>
#include <cstdint>
#include <span>

namespace kw::cabinet {

// The cabinet file: a header, one record for each folder (a stream of data blocks), one for each file, and
// the data blocks. All numbers are little-endian.

inline constexpr uint32_t kSignature = 0x4643534D;  // "MSCF"
inline constexpr size_t kHeaderSize = 36;
inline constexpr size_t kReserveFieldsSize = 4;
inline constexpr size_t kFolderRecordSize = 8;
inline constexpr size_t kFileRecordSize = 16;
inline constexpr size_t kDataRecordSize = 8;

inline constexpr uint16_t kFlagPrevious = 1;
inline constexpr uint16_t kFlagNext = 2;
inline constexpr uint16_t kFlagReserve = 4;

/// Uncompressed bytes that one data block holds at most.
inline constexpr size_t kBlockSize = 32768;
/// Compressed bytes that one data block holds at most; stored and MSZIP blocks of bad data grow a little.
inline constexpr size_t kMaxCompressedBlock = kBlockSize + 6144;
inline constexpr size_t kMaxEntries = 65535;
inline constexpr size_t kMaxBlocksInFolder = 65535;
/// Uncompressed bytes that a folder holds at most, and a file.
inline constexpr uint32_t kMaxFolderSize = 0x7FFF8000;
inline constexpr uint32_t kMaxCabinetSize = 0x7FFFFFFF;
/// Longest entry name in bytes, without the closing zero.
inline constexpr size_t kMaxNameSize = 255;
/// Largest header space that can be reserved.
inline constexpr size_t kMaxReservedHeader = 60000;

enum Compression : uint16_t { kStored = 0, kMszip = 1, kQuantum = 2, kLzx = 3 };
inline constexpr uint16_t kCompressionMask = 0x000F;

enum Attribute : uint16_t {
  kReadOnly = 0x01,
  kHidden = 0x02,
  kSystem = 0x04,
  kArchive = 0x20,
  kExecute = 0x40,
  kNameIsUtf8 = 0x80
};

inline uint16_t GetU16(const std::byte* at) {
  return static_cast<uint16_t>(static_cast<uint16_t>(at[0]) | (static_cast<uint16_t>(at[1]) << 8));
}
inline uint32_t GetU32(const std::byte* at) {
  return GetU16(at) | (static_cast<uint32_t>(GetU16(at + 2)) << 16);
}
inline void PutU16(std::byte* at, uint16_t value) {
  at[0] = static_cast<std::byte>(value);
  at[1] = static_cast<std::byte>(value >> 8);
}
inline void PutU32(std::byte* at, uint32_t value) {
  PutU16(at, static_cast<uint16_t>(value));
  PutU16(at + 2, static_cast<uint16_t>(value >> 16));
}

/// The checksum of `data` on top of `seed`. A block's checksum covers its data first and then, with that as
/// seed, its two size fields and what is reserved in its record.
uint32_t Checksum(std::span<const std::byte> data, uint32_t seed);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_FORMAT_H_
