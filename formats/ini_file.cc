#include "formats/ini_file.h"

#include "base/text.h"
#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

constexpr size_t kNone = static_cast<size_t>(-1);
constexpr std::string_view kLineEnd = "\r\n";

// Blanks as the profile calls see them: the end-of-file mark of old editors is one, too.
std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n\v\f\x1A";
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::string_view StripQuotes(std::string_view value) {
  if (value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'')) {
    value.remove_prefix(1);
    value.remove_suffix(1);
  }
  return value;
}

// A line ends in LF, CR LF or CR alone, as for the profile calls.
size_t LineLength(std::string_view bytes) {
  const size_t end = bytes.find_first_of("\r\n");
  if (end == std::string_view::npos) return bytes.size();
  return end + (bytes.substr(end).starts_with(kLineEnd) ? kLineEnd.size() : 1);
}

bool HasLineBreak(std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; }

}  // namespace

IniFile IniFile::Parse(std::string_view bytes, int code_page) {
  IniFile file;
  file.code_page_ = code_page;
  std::string converted;
  if (bytes.starts_with(kUtf16LittleMark)) {
    file.encoding_ = Encoding::kUtf16WithMark;
    converted = Utf16LeBytesToUtf8(bytes.substr(kUtf16LittleMark.size()));
    bytes = converted;
  } else if (bytes.starts_with(kUtf8Mark)) {
    file.encoding_ = Encoding::kUtf8WithMark;
    bytes.remove_prefix(kUtf8Mark.size());
  }
  while (!bytes.empty()) {
    const size_t length = LineLength(bytes);
    file.lines_.push_back(file.MakeLine(bytes.substr(0, length)));
    bytes.remove_prefix(length);
  }
  return file;
}

std::string IniFile::Decode(std::string_view raw) const {
  return encoding_ == Encoding::kCodePage ? CodePageToUtf8(raw, code_page_) : std::string(raw);
}

Result<std::string> IniFile::Encode(std::string_view text) const {
  if (encoding_ == Encoding::kCodePage) return Utf8ToCodePage(text, code_page_);
  return std::string(text);
}

// The structure is read from the decoded text: in double-byte code pages a trail byte can look like a
// bracket.
IniFile::Line IniFile::MakeLine(std::string_view raw) const {
  Line line;
  line.raw = std::string(raw);
  const std::string decoded = Decode(raw);
  const std::string_view text = Trim(decoded);
  if (text.empty()) {
    line.kind = Line::Kind::kBlank;
  } else if (text.front() == '[' && text.rfind(']') != std::string_view::npos) {
    line.kind = Line::Kind::kSection;
    line.name = std::string(Trim(text.substr(1, text.rfind(']') - 1)));
  } else if (const size_t equals = text.find('='); text.front() != ';' && equals != std::string_view::npos) {
    line.kind = Line::Kind::kKey;
    line.name = std::string(Trim(text.substr(0, equals)));
    line.value = std::string(Trim(text.substr(equals + 1)));
  }
  return line;
}

size_t IniFile::FindSection(std::string_view section) const {
  section = Trim(section);
  for (size_t i = 0; i < lines_.size(); ++i) {
    if (lines_[i].kind == Line::Kind::kSection && EqualsNoCase(lines_[i].name, section)) return i;
  }
  return kNone;
}

size_t IniFile::SectionEnd(size_t header) const {
  size_t end = header + 1;
  while (end < lines_.size() && lines_[end].kind != Line::Kind::kSection) ++end;
  return end;
}

size_t IniFile::FindKey(size_t header, std::string_view key) const {
  if (header == kNone) return kNone;
  key = Trim(key);
  const size_t end = SectionEnd(header);
  for (size_t i = header + 1; i < end; ++i) {
    if (lines_[i].kind == Line::Kind::kKey && EqualsNoCase(lines_[i].name, key)) return i;
  }
  return kNone;
}

std::optional<std::string> IniFile::Read(std::string_view section, std::string_view key) const {
  const size_t at = FindKey(FindSection(section), key);
  if (at == kNone) return std::nullopt;
  return std::string(StripQuotes(lines_[at].value));
}

std::vector<std::string> IniFile::SectionNames() const {
  std::vector<std::string> names;
  for (const Line& line : lines_) {
    if (line.kind == Line::Kind::kSection) names.push_back(line.name);
  }
  return names;
}

void IniFile::EndLastLine() {
  if (!lines_.empty() && !HasLineBreak(lines_.back().raw)) lines_.back().raw += kLineEnd;
}

Status IniFile::Write(std::string_view section, std::string_view key, std::string_view value) {
  if (HasLineBreak(section) || HasLineBreak(key) || HasLineBreak(value)) {
    return {kErrorInvalidParameter, "The entry \"" + std::string(key) + "\" holds a line break."};
  }
  const size_t header = FindSection(section);
  const size_t at = FindKey(header, key);
  // A replaced key keeps its spelling.
  std::string text(at == kNone ? Trim(key) : std::string_view(lines_[at].name));
  text.append("=").append(Trim(value)).append(kLineEnd);
  KW_ASSIGN_OR_RETURN(const std::string raw, Encode(text));
  if (at != kNone) {
    lines_[at] = MakeLine(raw);
    return {};
  }
  if (header == kNone) {
    KW_ASSIGN_OR_RETURN(const std::string raw_header,
                        Encode("[" + std::string(Trim(section)) + "]" + std::string(kLineEnd)));
    EndLastLine();
    lines_.push_back(MakeLine(raw_header));
    lines_.push_back(MakeLine(raw));
    return {};
  }
  EndLastLine();
  size_t end = SectionEnd(header);
  while (lines_[end - 1].kind == Line::Kind::kBlank) --end;
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(end), MakeLine(raw));
  return {};
}

void IniFile::DeleteKey(std::string_view section, std::string_view key) {
  const size_t at = FindKey(FindSection(section), key);
  if (at != kNone) lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(at));
}

void IniFile::DeleteSection(std::string_view section) {
  const size_t header = FindSection(section);
  if (header == kNone) return;
  lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(header),
               lines_.begin() + static_cast<std::ptrdiff_t>(SectionEnd(header)));
}

std::string IniFile::Serialize() const {
  std::string text;
  for (const Line& line : lines_) text += line.raw;
  switch (encoding_) {
    case Encoding::kUtf16WithMark:
      return std::string(kUtf16LittleMark) + Utf8ToUtf16LeBytes(text);
    case Encoding::kUtf8WithMark:
      return std::string(kUtf8Mark) + text;
    case Encoding::kCodePage:
      break;
  }
  return text;
}

}  // namespace kw::formats
