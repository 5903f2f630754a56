#include "formats/reg_file.h"

#include <optional>

#include "base/text.h"
#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr int kUtf8Page = 65001;

std::string_view TrimLeft(std::string_view text) {
  const size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Hands out the lines of a text, with hexadecimal continuations joined.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : rest_(text) {}

  std::optional<std::string_view> Next() {
    if (rest_.empty()) return std::nullopt;
    const size_t end = rest_.find_first_of("\r\n");
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (end != std::string_view::npos && rest_.starts_with('\n') && line.data()[line.size()] == '\r') {
      rest_.remove_prefix(1);
    }
    return line;
  }

 private:
  std::string_view rest_;
};

// Appends the text up to the closing quote to `out` and moves `rest` behind it; false without a closing
// quote.
bool TakeToQuote(std::string_view& rest, std::string& out) {
  for (size_t i = 0; i < rest.size(); ++i) {
    char c = rest[i];
    if (c == '"') {
      rest.remove_prefix(i + 1);
      return true;
    }
    if (c == '\\' && i + 1 < rest.size()) {
      c = rest[++i];
      if (c == 'n') c = '\n';
      if (c == 'r') c = '\r';
      if (c == '0') c = '\0';
    }
    out += c;
  }
  return false;
}

std::optional<uint32_t> TakeNumber(std::string_view text) {
  text = TrimBlanks(text.substr(0, text.find(';')));
  if (text.empty() || text.size() > 8) return std::nullopt;
  uint32_t number = 0;
  for (const char c : text) {
    if (HexDigit(c) < 0) return std::nullopt;
    number = number << 4 | static_cast<uint32_t>(HexDigit(c));
  }
  return number;
}

class Parser {
 public:
  // `wide_text` says how hexadecimal data of text types is meant: UTF-16LE, or 8-bit in `code_page`.
  Parser(std::string_view text, bool wide_text, int code_page)
      : lines_(text), wide_text_(wide_text), code_page_(code_page) {}

  RegFile Parse() {
    while (const auto line = lines_.Next()) {
      const std::string_view text = TrimLeft(*line);
      if (text.empty() || text.front() == ';' || text.front() == '#') continue;
      if (!(text.front() == '[' ? ParseKey(text) : ParseValue(text))) ++file_.bad_lines;
    }
    return std::move(file_);
  }

 private:
  bool ParseKey(std::string_view text) {
    has_key_ = false;
    const size_t end = text.rfind(']');
    if (end == std::string_view::npos) return false;
    std::string_view path = text.substr(1, end - 1);
    RegFileKey key;
    key.deleted = path.starts_with('-');
    if (key.deleted) path.remove_prefix(1);
    if (path.empty()) return false;
    key.path = std::string(path);
    has_key_ = !key.deleted;
    file_.keys.push_back(std::move(key));
    return true;
  }

  bool ParseValue(std::string_view text) {
    RegFileValue value;
    if (text.front() == '@') {
      text.remove_prefix(1);
    } else {
      if (text.front() != '"') return false;
      text.remove_prefix(1);
      if (!TakeToQuote(text, value.name)) return false;
    }
    text = TrimLeft(text);
    if (!text.starts_with('=')) return false;
    text = TrimLeft(text.substr(1));
    // The data is read even below no key, so that its continuation lines are not taken for lines.
    if (!ParseData(text, value) || !has_key_) return false;
    file_.keys.back().values.push_back(std::move(value));
    return true;
  }

  bool ParseData(std::string_view text, RegFileValue& value) {
    if (text.starts_with('-')) {
      value.deleted = true;
      const std::string_view rest = TrimLeft(text.substr(1));
      return rest.empty() || rest.front() == ';';
    }
    if (text.starts_with('"')) return ParseString(text, value);
    if (StartsWithNoCase(text, "dword:")) {
      const auto number = TakeNumber(text.substr(6));
      if (!number) return false;
      value.type = 4;
      for (int shift = 0; shift < 32; shift += 8) value.data += static_cast<char>(*number >> shift & 0xFF);
      return true;
    }
    if (!StartsWithNoCase(text, "hex")) return false;
    text.remove_prefix(3);
    value.type = 3;
    if (text.starts_with('(')) {
      const size_t close = text.find(')');
      if (close == std::string_view::npos) return false;
      const auto type = TakeNumber(text.substr(1, close - 1));
      if (!type) return false;
      value.type = *type;
      text.remove_prefix(close + 1);
    }
    return text.starts_with(':') && ParseHex(text.substr(1), value);
  }

  // A text may go over several lines: some editors write its line breaks as they are.
  bool ParseString(std::string_view text, RegFileValue& value) {
    LineReader ahead = lines_;
    text.remove_prefix(1);
    while (!TakeToQuote(text, value.data)) {
      const auto next = ahead.Next();
      // A new key or value means that the quote was forgotten, not that the text goes on.
      if (!next || next->starts_with('[') || next->find("\"=") != std::string_view::npos) return false;
      value.data += "\r\n";
      text = *next;
    }
    text = TrimLeft(text);
    if (!text.empty() && text.front() != ';') return false;
    lines_ = ahead;
    value.type = 1;
    value.data += '\0';
    return true;
  }

  bool ParseHex(std::string_view text, RegFileValue& value) {
    std::string bytes;
    while (true) {
      text = TrimLeft(text);
      if (text.empty() || text.front() == ';') break;
      if (text.front() == '\\') {
        const auto next = lines_.Next();
        if (!next) break;
        text = *next;
        continue;
      }
      int number = HexDigit(text.front());
      if (number < 0) return false;
      text.remove_prefix(1);
      if (!text.empty() && HexDigit(text.front()) >= 0) {
        number = number << 4 | HexDigit(text.front());
        text.remove_prefix(1);
      }
      bytes += static_cast<char>(number);
      text = TrimLeft(text);
      if (text.starts_with(',')) {
        text.remove_prefix(1);
      } else if (!text.empty() && text.front() != '\\' && text.front() != ';') {
        return false;
      }
    }
    if (!RegTypeIsText(value.type)) {
      value.data = std::move(bytes);
    } else {
      value.data = wide_text_ ? Utf16LeBytesToUtf8(bytes) : CodePageToUtf8(bytes, code_page_);
    }
    return true;
  }

  LineReader lines_;
  bool wide_text_;
  int code_page_;
  bool has_key_ = false;
  RegFile file_;
};

}  // namespace

Result<RegFile> ParseRegFile(std::string_view bytes, int code_page) {
  std::string text;
  bool decoded = true;
  if (bytes.starts_with(kUtf16LittleMark)) {
    text = Utf16LeBytesToUtf8(bytes.substr(kUtf16LittleMark.size()));
  } else if (bytes.starts_with(kUtf16BigMark)) {
    text = Utf16LeBytesToUtf8(SwapBytePairs(bytes.substr(kUtf16BigMark.size())));
  } else if (bytes.starts_with(kUtf8Mark)) {
    text = CodePageToUtf8(bytes.substr(kUtf8Mark.size()), kUtf8Page);
  } else {
    text = std::string(bytes);
    decoded = false;
  }
  const size_t end = text.find_first_of("\r\n");
  const std::string_view header = TrimBlanks(std::string_view(text).substr(0, end));
  const bool old_format = header == "REGEDIT4" || header == "REGEDIT";
  if (!old_format && !header.starts_with("Windows Registry Editor Version 5")) {
    return {kErrorInvalidData, "The text is no file of the registry editor."};
  }
  text.erase(0, end);
  if (!decoded && (old_format || !IsValidUtf8(text))) text = CodePageToUtf8(text, code_page);
  return Parser(text, !old_format, code_page).Parse();
}

RegFile ParseRegLines(std::string_view utf8) { return Parser(utf8, true, kUtf8Page).Parse(); }

}  // namespace kw::formats
