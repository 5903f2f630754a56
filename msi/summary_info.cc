#include "msi/summary_info.h"

#include <algorithm>

#include "base/text.h"
#include "msi/bytes.h"
#include "msi/core.h"

namespace kw::msi {
namespace {

const std::u16string kStreamName = u"\u0005SummaryInformation";

constexpr uint32_t kTypeShort = 2;
constexpr uint32_t kTypeLong = 3;
constexpr uint32_t kTypeText = 30;
constexpr uint32_t kTypeTime = 64;
constexpr int kCodePageId = 1;
constexpr size_t kHeadSize = 48;
constexpr uint32_t kMaxProperties = 256;

// The class of the property section.
constexpr unsigned char kSection[16] = {0xE0, 0x85, 0x9F, 0xF2, 0xF9, 0x4F, 0x68, 0x10,
                                        0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9};

Error Damaged() {
  return Error{kErrorInstallPackageInvalid, "The summary information of the database is damaged."};
}

}  // namespace

Result<std::unique_ptr<SummaryInfo>> SummaryInfo::Open(std::shared_ptr<Core> core, int updates) {
  if (updates > 0) KW_RETURN_IF_ERROR(core->CheckWritable());
  std::unique_ptr<SummaryInfo> info(new SummaryInfo(core, updates));
  const std::shared_ptr<CfStream> stream = core->file().Find(kStreamName);
  if (stream && stream->size() > 0) {
    KW_ASSIGN_OR_RETURN(const std::string bytes, core->file().ReadAll(*stream));
    KW_RETURN_IF_ERROR(info->Parse(bytes));
    return info;
  }
  std::string& head = info->head_;
  AppendU16(head, 0xFFFE);
  AppendU16(head, 0);
  AppendU32(head, 0x00020105);  // the system that wrote it: Windows
  head.append(16, '\0');
  AppendU32(head, 1);
  head.append(reinterpret_cast<const char*>(kSection), sizeof kSection);
  AppendU32(head, kHeadSize);
  return info;
}

Status SummaryInfo::Parse(const std::string& bytes) {
  if (bytes.size() < kHeadSize + 8 || GetU16(bytes.data()) != 0xFFFE || GetU32(bytes.data() + 24) < 1)
    return Damaged();
  const size_t section = GetU32(bytes.data() + 44);
  if (section < kHeadSize || section > bytes.size() - 8) return Damaged();
  head_ = bytes.substr(0, kHeadSize);
  PutU32(head_.data() + 24, 1);
  PutU32(head_.data() + 44, kHeadSize);
  const size_t size = std::min<size_t>(GetU32(bytes.data() + section), bytes.size() - section);
  const std::string_view body = std::string_view(bytes).substr(section, size);
  if (body.size() < 8) return Damaged();
  const uint32_t count = GetU32(body.data() + 4);
  if (count > kMaxProperties || count > (body.size() - 8) / 8) return Damaged();
  for (uint32_t i = 0; i < count; ++i) {
    const int id = static_cast<int>(GetU32(body.data() + 8 + 8 * i));
    const size_t at = GetU32(body.data() + 12 + 8 * i);
    if (at > body.size() || body.size() - at < 8) return Damaged();
    Property property;
    property.type = GetU32(body.data() + at);
    const std::string_view rest = body.substr(at + 4);
    if (property.type == kTypeShort || property.type == kTypeLong) {
      property.content = rest.substr(0, 4);
    } else if (property.type == kTypeTime) {
      if (rest.size() < 8) return Damaged();
      property.content = rest.substr(0, 8);
    } else if (property.type == kTypeText) {
      const size_t length = GetU32(rest.data());
      if (length > rest.size() - 4) return Damaged();
      property.content = rest.substr(4, length);
      while (!property.content.empty() && property.content.back() == '\0') property.content.pop_back();
    } else {
      continue;  // kinds that the format of these databases does not use
    }
    properties_[id] = std::move(property);
  }
  return {};
}

std::vector<int> SummaryInfo::PropertyIds() const {
  std::vector<int> ids;
  for (const auto& [id, property] : properties_) ids.push_back(id);
  return ids;
}

int32_t SummaryInfo::IntegerProperty(int id) const {
  const auto found = properties_.find(id);
  if (found == properties_.end()) return 0;
  if (found->second.type == kTypeShort) return static_cast<int16_t>(GetU16(found->second.content.data()));
  return found->second.type == kTypeLong ? static_cast<int32_t>(GetU32(found->second.content.data())) : 0;
}

int SummaryInfo::CodePage() const {
  const int code_page = IntegerProperty(kCodePageId);
  return code_page < 0 ? code_page + 0x10000 : code_page;
}

std::string SummaryInfo::TextProperty(int id) const {
  const auto found = properties_.find(id);
  if (found == properties_.end() || found->second.type != kTypeText) return {};
  return CodePageToUtf8(found->second.content, CodePage() == 0 ? 1252 : CodePage());
}

uint64_t SummaryInfo::TimeProperty(int id) const {
  const auto found = properties_.find(id);
  return found != properties_.end() && found->second.type == kTypeTime ? GetU64(found->second.content.data())
                                                                       : 0;
}

Status SummaryInfo::CountUpdate() {
  if (updates_ <= 0) {
    return {kErrorFunctionFailed, "No more changes of the summary information are allowed."};
  }
  --updates_;
  changed_ = true;
  return {};
}

Status SummaryInfo::SetInteger(int id, int32_t value) {
  KW_RETURN_IF_ERROR(CountUpdate());
  Property& property = properties_[id];
  // The code page is the one property that is a short integer.
  property.type = id == kCodePageId ? kTypeShort : kTypeLong;
  property.content.assign(4, '\0');
  PutU32(property.content.data(),
         id == kCodePageId ? static_cast<uint32_t>(value & 0xFFFF) : static_cast<uint32_t>(value));
  return {};
}

Status SummaryInfo::SetText(int id, std::string_view value) {
  KW_ASSIGN_OR_RETURN(std::string bytes, Utf8ToCodePage(value, CodePage()));
  KW_RETURN_IF_ERROR(CountUpdate());
  properties_[id] = {kTypeText, std::move(bytes)};
  return {};
}

Status SummaryInfo::SetTime(int id, uint64_t file_time) {
  KW_RETURN_IF_ERROR(CountUpdate());
  Property& property = properties_[id];
  property.type = kTypeTime;
  property.content.assign(8, '\0');
  PutU64(property.content.data(), file_time);
  return {};
}

Status SummaryInfo::RemoveProperty(int id) {
  KW_RETURN_IF_ERROR(CountUpdate());
  properties_.erase(id);
  return {};
}

std::string SummaryInfo::Build() const {
  std::string list;
  std::string contents;
  const size_t first = 8 + 8 * properties_.size();
  for (const auto& [id, property] : properties_) {
    AppendU32(list, static_cast<uint32_t>(id));
    AppendU32(list, static_cast<uint32_t>(first + contents.size()));
    AppendU32(contents, property.type);
    if (property.type == kTypeText) {
      AppendU32(contents, static_cast<uint32_t>(property.content.size() + 1));
      contents += property.content;
      contents.push_back('\0');
      contents.resize((contents.size() + 3) & ~size_t{3}, '\0');
    } else {
      contents += property.content;
    }
  }
  std::string bytes = head_;
  AppendU32(bytes, static_cast<uint32_t>(first + contents.size()));
  AppendU32(bytes, static_cast<uint32_t>(properties_.size()));
  return bytes + list + contents;
}

Status SummaryInfo::Persist() {
  KW_RETURN_IF_ERROR(core_->CheckWritable());
  if (changed_) {
    KW_ASSIGN_OR_RETURN(auto stream, core_->file().WriteBytes(Build()));
    core_->file().Put(kStreamName, std::move(stream));
    changed_ = false;
  }
  return core_->EndStatement();
}

}  // namespace kw::msi
