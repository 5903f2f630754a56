#include "base/text.h"
#include "formats/reg_file.h"
#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
// The registry editor continues on a new line behind the byte that reaches this column.
constexpr size_t kWrapColumn = 77;

std::string Quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '\\' || c == '"') out += '\\';
    out += c;
  }
  return out += '"';
}

std::string NamePart(std::string_view name) {
  if (name.empty()) return "@=";
  std::string quoted = Quoted(name);
  if (name.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) {
    quoted = ReplaceAll(ReplaceAll(quoted, "\r", "\\r"), "\n", "\\n");
    quoted = ReplaceAll(quoted, std::string_view("\0", 1), "\\0");
  }
  return quoted + "=";
}

// Text that stands in quotes: one terminator, at the end, and nothing that a line-based reader stumbles over.
bool IsPlainText(std::string_view data) {
  if (data.empty() || data.find('\0') != data.size() - 1) return false;
  return data.find_first_of("\r\n") == std::string_view::npos && IsValidUtf8(data);
}

std::string HexPrefix(uint32_t type) {
  if (type == 3) return "hex:";
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  do {
    digits.insert(digits.begin(), kDigits[type & 15]);
    type >>= 4;
  } while (type != 0);
  return "hex(" + digits + "):";
}

void AppendHex(std::string_view bytes, size_t column, std::string& out) {
  constexpr char kDigits[] = "0123456789abcdef";
  for (size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    out += kDigits[byte >> 4];
    out += kDigits[byte & 15];
    if (i + 1 == bytes.size()) break;
    out += ',';
    column += 3;
    if (column >= kWrapColumn) {
      out += "\\\r\n  ";
      column = 2;
    }
  }
}

}  // namespace

bool RegTypeIsText(uint32_t type) { return type == 1 || type == 2 || type == 7; }

void RegFileWriter::AddKey(std::string_view path) {
  lines_.append(kLineEnd).append("[").append(path).append("]").append(kLineEnd);
}

void RegFileWriter::AddKeyDeletion(std::string_view path) {
  lines_.append(kLineEnd).append("[-").append(path).append("]").append(kLineEnd);
}

void RegFileWriter::AddValue(std::string_view name, uint32_t type, std::string_view data) {
  const size_t line_start = lines_.size();
  lines_ += NamePart(name);
  if (type == 1 && IsPlainText(data)) {
    lines_ += Quoted(data.substr(0, data.size() - 1));
  } else if (type == 4 && data.size() == 4) {
    lines_ += "dword:";
    for (size_t i = 4; i-- > 0;) {
      constexpr char kDigits[] = "0123456789abcdef";
      lines_ += kDigits[static_cast<unsigned char>(data[i]) >> 4];
      lines_ += kDigits[static_cast<unsigned char>(data[i]) & 15];
    }
  } else {
    lines_ += HexPrefix(type);
    const size_t column = CharacterCount(std::string_view(lines_).substr(line_start));
    AppendHex(RegTypeIsText(type) ? Utf8ToUtf16LeBytes(data) : std::string(data), column, lines_);
  }
  lines_ += kLineEnd;
}

void RegFileWriter::AddValueDeletion(std::string_view name) {
  lines_.append(NamePart(name)).append("-").append(kLineEnd);
}

std::string RegFileWriter::File() const {
  return std::string(kUtf16LittleMark) +
         Utf8ToUtf16LeBytes("Windows Registry Editor Version 5.00\r\n" + lines_ + "\r\n");
}

}  // namespace kw::formats
