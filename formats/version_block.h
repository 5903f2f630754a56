#ifndef KITWRIGHT_FORMATS_VERSION_BLOCK_H_
#define KITWRIGHT_FORMATS_VERSION_BLOCK_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/result.h"

namespace kw::formats {

/// The content of a version resource.
struct VersionBlock {
  struct Table {
    std::string digits;                                        ///< language and code page, eight digits
    std::vector<std::pair<std::string, std::string>> strings;  ///< names and values, UTF-8, in order
  };
  bool has_fixed = false;
  std::array<uint16_t, 4> file{};     ///< most significant part first
  std::array<uint16_t, 4> product{};  ///< likewise
  std::vector<std::pair<uint16_t, uint16_t>> translations;
  std::vector<Table> tables;
};

/// Bytes at any place of a file, so that a large program need not be held in memory.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Up to `length` bytes from `offset` on; fewer only at the end.
  virtual Result<std::string> Read(uint64_t offset, size_t length) = 0;
};

/// The bytes of the version resource of a PE file of 32 or 64 bits: the first language of resource 1, or of
/// the first one there is. kErrorResourceDataNotFound when the file is no PE file or has none,
/// kErrorInvalidData when its headers point out of the file.
Result<std::string> FindVersionResource(ByteSource& source);

/// Reads a version resource. kErrorInvalidData when it is none; blocks in it that are cut off are left out.
Result<VersionBlock> ParseVersionBlock(std::string_view resource);

}  // namespace kw::formats

#endif  // KITWRIGHT_FORMATS_VERSION_BLOCK_H_
