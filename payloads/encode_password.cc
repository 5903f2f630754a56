#include <array>
#include <cstddef>

#include "base/text.h"
#include "payloads/frm_beaconry_server.h"

namespace kw {
namespace {

// All codes lie between 1 and 31, so that no printable character becomes a NUL. The first one is position 1.
constexpr std::array<unsigned char, 16> kKeyCodes = {19, 6,  27, 11, 30, 3,  22, 13,
                                                     8,  25, 17, 4,  29, 10, 21, 15};

}  // namespace

std::string EncodePassword(const std::string& clear, int code_page) {
  auto bytes = Utf8ToCodePage(clear, code_page);
  if (!bytes.ok()) return {};
  size_t position = 1;
  for (char& c : *bytes) {
    // Position 0 has no character: the sixteenth ends with nothing.
    if (position == 0) return {};
    c = static_cast<char>(static_cast<unsigned char>(c) ^ kKeyCodes[position - 1]);
    position = (position + 1) % kKeyCodes.size();
  }
  return CodePageToUtf8(*bytes, code_page);
}

}  // namespace kw
