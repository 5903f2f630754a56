#ifndef KITWRIGHT_FORMATS_VERSION_BLOCK_TEST_SUPPORT_H_
#define KITWRIGHT_FORMATS_VERSION_BLOCK_TEST_SUPPORT_H_

// Makes version resources and the smallest PE files that hold them.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "formats/utf16_bytes.h"
#include "formats/version_block.h"

namespace kw::formats {

inline void Put(std::string& out, uint64_t number, size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) out += static_cast<char>(i < 8 ? number >> (8 * i) & 0xFF : 0);
}

inline void Pad(std::string& out, size_t alignment) {
  while (out.size() % alignment != 0) out += '\0';
}

/// A block whose content (value and children) is given with its own alignment.
inline std::string MakeBlock(std::string_view key, uint16_t value_length, uint16_t type,
                             const std::vector<std::string>& parts) {
  std::string out(6, '\0');
  out += Utf8ToUtf16LeBytes(key) + std::string(2, '\0');
  for (const std::string& part : parts) {
    Pad(out, 4);
    out += part;
  }
  std::string head;
  Put(head, out.size(), 2);
  Put(head, value_length, 2);
  Put(head, type, 2);
  return out.replace(0, 6, head);
}

inline std::string MakeVersionResource(const VersionBlock& version) {
  std::string fixed;
  if (version.has_fixed) {
    Put(fixed, 0xFEEF04BD, 4);
    Put(fixed, 0x10000, 4);
    for (const auto& number : {version.file, version.product}) {
      for (const size_t part : {1u, 0u, 3u, 2u}) Put(fixed, number[part], 2);
    }
    fixed.resize(52);
  }
  std::vector<std::string> children{fixed};
  std::vector<std::string> tables;
  for (const auto& table : version.tables) {
    std::vector<std::string> strings;
    for (const auto& [name, value] : table.strings) {
      const std::string text = Utf8ToUtf16LeBytes(value) + std::string(2, '\0');
      strings.push_back(MakeBlock(name, static_cast<uint16_t>(text.size() / 2), 1, {text}));
    }
    tables.push_back(MakeBlock(table.digits, 0, 1, strings));
  }
  if (!tables.empty()) children.push_back(MakeBlock("StringFileInfo", 0, 1, tables));
  if (!version.translations.empty()) {
    std::string list;
    for (const auto& [language, page] : version.translations) {
      Put(list, language, 2);
      Put(list, page, 2);
    }
    children.push_back(MakeBlock("VarFileInfo", 0, 1,
                                 {MakeBlock("Translation", static_cast<uint16_t>(list.size()), 0, {list})}));
  }
  return MakeBlock("VS_VERSION_INFO", static_cast<uint16_t>(fixed.size()), 0, children);
}

/// A library without code, of 32 or 64 bits, whose only section holds the resource ("" makes one that holds
/// an icon group alone).
inline std::string MakePeFile(bool wide, const std::string& resource) {
  constexpr uint32_t kAddress = 0x1000;
  constexpr uint32_t kRaw = 0x200;
  std::string section;
  const auto directory = [&](uint32_t id, uint32_t target) {
    Put(section, 0, 8);
    Put(section, 0, 4);
    Put(section, 0, 2);
    Put(section, 1, 2);
    Put(section, id, 4);
    Put(section, target, 4);
  };
  directory(resource.empty() ? 14 : 16, 0x80000018);
  directory(1, 0x80000030);
  directory(0x409, 0x48);
  Put(section, kAddress + 0x58, 4);
  Put(section, resource.size(), 4);
  Put(section, 0, 8);
  section += resource;
  const size_t used = section.size();
  Pad(section, 0x200);

  std::string file = "MZ";
  file.resize(60);
  Put(file, 0x40, 4);
  file += std::string("PE\0\0", 4);
  Put(file, wide ? 0x8664 : 0x14C, 2);
  Put(file, 1, 2);
  Put(file, 0, 12);
  Put(file, wide ? 240 : 224, 2);
  Put(file, wide ? 0x2022 : 0x2102, 2);
  const size_t optional = file.size();
  Put(file, wide ? 0x20B : 0x10B, 2);
  Put(file, 14, 2);
  Put(file, 0, 4);
  Put(file, section.size(), 4);
  Put(file, 0, wide ? 12 : 16);
  Put(file, 0x10000000, wide ? 8 : 4);
  Put(file, 0x1000, 4);
  Put(file, 0x200, 4);
  Put(file, 4, 2);
  Put(file, 0, 6);
  Put(file, 4, 2);
  Put(file, 0, 6);
  Put(file, kAddress + 0x1000 * ((used + 0xFFF) / 0x1000), 4);
  Put(file, kRaw, 4);
  Put(file, 0, 4);
  Put(file, 2, 2);
  Put(file, 0, 2);
  Put(file, 0x100000, wide ? 8 : 4);
  Put(file, 0x1000, wide ? 8 : 4);
  Put(file, 0x100000, wide ? 8 : 4);
  Put(file, 0x1000, wide ? 8 : 4);
  Put(file, 0, 4);
  Put(file, 16, 4);
  Put(file, 0, 16);
  Put(file, kAddress, 4);
  Put(file, used, 4);
  file.resize(optional + (wide ? 240 : 224));
  file += std::string(".rsrc\0\0\0", 8);
  Put(file, used, 4);
  Put(file, kAddress, 4);
  Put(file, section.size(), 4);
  Put(file, kRaw, 4);
  Put(file, 0, 12);
  Put(file, 0x40000040, 4);
  Pad(file, kRaw);
  return file + section;
}

}  // namespace kw::formats

#endif  // KITWRIGHT_FORMATS_VERSION_BLOCK_TEST_SUPPORT_H_
