#include "platform/shared/ini_profile_files.h"

#include "base/text.h"
#include "formats/ini_file.h"

namespace kw::platform {
namespace {

// `text` cut to `limit` bytes of the code page, whole characters only.
std::string CutToBytes(std::string text, size_t limit, int code_page) {
  size_t used = 0;
  size_t end = 0;
  while (end < text.size()) {
    size_t next = end + 1;
    while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xC0) == 0x80) ++next;
    const auto bytes = Utf8ToCodePage(std::string_view(text).substr(end, next - end), code_page);
    used += bytes.ok() ? bytes->size() : 1;
    if (used > limit) break;
    end = next;
  }
  text.resize(end);
  return text;
}

}  // namespace

std::string IniProfileFiles::ReadString(const std::string& path, std::string_view section,
                                        std::string_view key, std::string_view fallback, int buffer_size) {
  const int code_page = system_.CodePage();
  std::string text(fallback.substr(0, fallback.find_last_not_of(' ') + 1));
  if (const auto bytes = files_.ReadFile(path); bytes.ok()) {
    if (auto value = formats::IniFile::Parse(*bytes, code_page).Read(section, key)) text = std::move(*value);
  }
  return CutToBytes(std::move(text), buffer_size > 0 ? static_cast<size_t>(buffer_size) - 1 : 0, code_page);
}

Status IniProfileFiles::WriteString(const std::string& path, std::string_view section,
                                    std::optional<std::string_view> key,
                                    std::optional<std::string_view> value) {
  const auto there = files_.GetFile(path);
  const bool is_new = !there.ok();
  // A file that cannot be looked at must not be taken for a new one.
  if (is_new && there.error().number != kErrorFileNotFound && there.error().number != kErrorPathNotFound)
    return there.status();
  if (is_new && (!key || !value)) return {};
  std::string old;
  if (!is_new) {
    KW_ASSIGN_OR_RETURN(old, files_.ReadFile(path));
  }
  formats::IniFile file = formats::IniFile::Parse(old, system_.CodePage());
  if (!key) {
    file.DeleteSection(section);
  } else if (!value) {
    file.DeleteKey(section, *key);
  } else if (const Status status = file.Write(section, *key, *value); !status.ok()) {
    return {status.number(), status.message() + " It was meant for " + path + "."};
  }
  const std::string bytes = file.Serialize();
  if (bytes == old && !is_new) return {};
  return files_.WriteFile(path, bytes);
}

std::vector<std::string> IniProfileFiles::SectionNames(const std::string& path) {
  const auto bytes = files_.ReadFile(path);
  if (!bytes.ok()) return {};
  return formats::IniFile::Parse(*bytes, system_.CodePage()).SectionNames();
}

}  // namespace kw::platform
