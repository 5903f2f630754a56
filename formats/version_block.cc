#include "formats/version_block.h"

#include <algorithm>
#include <optional>

#include "base/text.h"
#include "formats/little_endian.h"
#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

constexpr size_t kFixedSize = 52;
constexpr uint32_t kFixedSignature = 0xFEEF04BD;

size_t Align(size_t offset) { return (offset + 3) & ~size_t{3}; }

// One block of the resource: a key, a value and child blocks. Offsets count from the start of the resource,
// to which everything is aligned.
struct Block {
  std::string key;
  size_t value = 0;
  size_t value_length = 0;  // as stored: bytes, or characters for text
  bool is_text = false;
  size_t end = 0;
};

// The block at `begin`, which may go up to `limit`.
std::optional<Block> ReadBlock(std::string_view bytes, size_t begin, size_t limit) {
  if (begin + 6 > limit) return std::nullopt;
  const size_t length = Get16(bytes, begin);
  if (length < 6 || begin + length > limit) return std::nullopt;
  Block block;
  block.value_length = Get16(bytes, begin + 2);
  block.is_text = Get16(bytes, begin + 4) == 1;
  block.end = begin + length;
  size_t at = begin + 6;
  while (at + 2 <= block.end && Get16(bytes, at) != 0) at += 2;
  block.key = Utf16LeBytesToUtf8(bytes.substr(begin + 6, at - begin - 6));
  block.value = std::min(Align(at + 2), block.end);
  return block;
}

// Calls `visit` with each child block between `begin` and `end`.
template <typename Visit>
void ForEachChild(std::string_view bytes, size_t begin, size_t end, Visit visit) {
  while (const auto child = ReadBlock(bytes, begin, end)) {
    visit(*child);
    begin = Align(child->end);
  }
}

// A text ends at its terminator or with its block: its stored length counts bytes in the blocks of some
// compilers and characters in others.
std::string TextOf(std::string_view bytes, const Block& block) {
  size_t end = block.value;
  while (end + 2 <= block.end && Get16(bytes, end) != 0) end += 2;
  return Utf16LeBytesToUtf8(bytes.substr(block.value, end - block.value));
}

std::array<uint16_t, 4> VersionAt(std::string_view bytes, size_t at) {
  return {Get16(bytes, at + 2), Get16(bytes, at), Get16(bytes, at + 6), Get16(bytes, at + 4)};
}

}  // namespace

Result<VersionBlock> ParseVersionBlock(std::string_view resource) {
  const auto root = ReadBlock(resource, 0, resource.size());
  if (!root || !EqualsNoCase(root->key, "VS_VERSION_INFO")) {
    return {kErrorInvalidData, "The version resource is damaged."};
  }
  VersionBlock version;
  const size_t value_end = std::min(root->value + root->value_length, root->end);
  if (value_end - root->value >= kFixedSize && Get32(resource, root->value) == kFixedSignature) {
    version.has_fixed = true;
    version.file = VersionAt(resource, root->value + 8);
    version.product = VersionAt(resource, root->value + 16);
  }
  ForEachChild(resource, Align(value_end), root->end, [&](const Block& info) {
    if (EqualsNoCase(info.key, "StringFileInfo")) {
      ForEachChild(resource, info.value, info.end, [&](const Block& table) {
        VersionBlock::Table& added = version.tables.emplace_back();
        added.digits = table.key;
        ForEachChild(resource, table.value, table.end, [&](const Block& string) {
          added.strings.emplace_back(string.key, TextOf(resource, string));
        });
      });
    } else if (EqualsNoCase(info.key, "VarFileInfo")) {
      ForEachChild(resource, info.value, info.end, [&](const Block& variable) {
        if (!EqualsNoCase(variable.key, "Translation")) return;
        const size_t end = std::min(variable.value + variable.value_length, variable.end);
        for (size_t at = variable.value; at + 4 <= end; at += 4) {
          version.translations.emplace_back(Get16(resource, at), Get16(resource, at + 2));
        }
      });
    }
  });
  return version;
}

}  // namespace kw::formats
