#include <algorithm>
#include <optional>
#include <vector>

#include "formats/little_endian.h"
#include "formats/version_block.h"

namespace kw::formats {
namespace {

constexpr uint32_t kVersionType = 16;
constexpr uint32_t kVersionName = 1;
constexpr uint32_t kSubdirectory = 0x80000000;
// A version resource states its length in 16 bits.
constexpr size_t kMostVersionBytes = 0xFFFF;

Error Damaged() { return {kErrorInvalidData, "The program's headers are damaged."}; }
Error NoVersion() { return {kErrorResourceDataNotFound, "The file has no version information."}; }

struct Section {
  uint32_t address = 0;
  uint32_t raw_size = 0;
  uint32_t raw_offset = 0;
};

class PeFile {
 public:
  explicit PeFile(ByteSource& source) : source_(source) {}

  Result<std::string> VersionResource() {
    KW_RETURN_IF_ERROR(ReadHeaders());
    KW_ASSIGN_OR_RETURN(const auto type, FindEntry(0, kVersionType, false));
    if (!type) return NoVersion();
    if (!(*type & kSubdirectory)) return Damaged();
    KW_ASSIGN_OR_RETURN(const auto name, FindEntry(*type & ~kSubdirectory, kVersionName, true));
    if (!name) return NoVersion();
    if (!(*name & kSubdirectory)) return Damaged();
    KW_ASSIGN_OR_RETURN(const auto language, FindEntry(*name & ~kSubdirectory, std::nullopt, true));
    if (!language) return NoVersion();
    if (*language & kSubdirectory) return Damaged();
    KW_ASSIGN_OR_RETURN(const std::string data, Exactly(resources_ + *language, 16));
    const auto offset = OffsetOf(Get32(data, 0));
    if (!offset) return Damaged();
    return Exactly(*offset, std::min<size_t>(Get32(data, 4), kMostVersionBytes));
  }

 private:
  Result<std::string> Exactly(uint64_t offset, size_t length) {
    KW_ASSIGN_OR_RETURN(std::string bytes, source_.Read(offset, length));
    if (bytes.size() != length) return Damaged();
    return bytes;
  }

  Status ReadHeaders() {
    KW_ASSIGN_OR_RETURN(const std::string dos, source_.Read(0, 64));
    if (dos.size() < 64 || !dos.starts_with("MZ")) return NoVersion();
    const uint64_t pe = Get32(dos, 60);
    KW_ASSIGN_OR_RETURN(const std::string coff, source_.Read(pe, 24));
    if (coff.size() < 24 || !coff.starts_with(std::string_view("PE\0\0", 4))) return NoVersion();
    const size_t section_count = Get16(coff, 6);
    const size_t optional_size = Get16(coff, 20);
    KW_ASSIGN_OR_RETURN(const std::string optional, Exactly(pe + 24, optional_size));
    const uint16_t magic = Get16(optional, 0);
    if (magic != 0x10B && magic != 0x20B) return NoVersion();
    const size_t directories = magic == 0x10B ? 96 : 112;
    const uint32_t resources = Get32(optional, directories + 16);
    if (Get32(optional, directories - 4) < 3 || resources == 0) return NoVersion();
    KW_ASSIGN_OR_RETURN(const std::string table, Exactly(pe + 24 + optional_size, section_count * 40));
    for (size_t i = 0; i < section_count; ++i) {
      sections_.push_back({Get32(table, i * 40 + 12), Get32(table, i * 40 + 16), Get32(table, i * 40 + 20)});
    }
    const auto offset = OffsetOf(resources);
    if (!offset) return Damaged();
    resources_ = *offset;
    return {};
  }

  // The place in the file of an address in memory.
  std::optional<uint64_t> OffsetOf(uint32_t address) const {
    for (const Section& section : sections_) {
      if (address >= section.address && address - section.address < section.raw_size) {
        return uint64_t{section.raw_offset} + (address - section.address);
      }
    }
    return std::nullopt;
  }

  // What the entry `id` of the resource directory at `offset` points to; the first entry when there is no
  // such one and `or_first`.
  Result<std::optional<uint32_t>> FindEntry(uint32_t offset, std::optional<uint32_t> id, bool or_first) {
    KW_ASSIGN_OR_RETURN(const std::string head, Exactly(resources_ + offset, 16));
    const size_t count = size_t{Get16(head, 12)} + Get16(head, 14);
    KW_ASSIGN_OR_RETURN(const std::string entries, Exactly(resources_ + offset + 16, count * 8));
    for (size_t i = 0; i < count; ++i) {
      if (id && Get32(entries, i * 8) == *id) return std::optional(Get32(entries, i * 8 + 4));
    }
    if (!or_first || count == 0) return std::optional<uint32_t>();
    return std::optional(Get32(entries, 4));
  }

  ByteSource& source_;
  std::vector<Section> sections_;
  uint64_t resources_ = 0;
};

}  // namespace

Result<std::string> FindVersionResource(ByteSource& source) { return PeFile(source).VersionResource(); }

}  // namespace kw::formats
