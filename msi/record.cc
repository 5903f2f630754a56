#include "msi/record.h"

#include <algorithm>
#include <charconv>

#include "base/text.h"
#include "msi/core.h"

namespace kw::msi {

bool ParseInteger(std::string_view text, int32_t* value) {
  std::string_view digits = TrimBlanks(text);
  if (!digits.empty() && digits[0] == '+' && (digits.size() < 2 || digits[1] != '-')) digits.remove_prefix(1);
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), *value);
  return error == std::errc() && end == digits.data() + digits.size() && !digits.empty();
}

Status StreamField::Open() {
  if (file_ || !storage_) return {};
  KW_ASSIGN_OR_RETURN(file_, storage_->Open(path_, Storage::Mode::kRead));
  return {};
}

Result<uint64_t> StreamField::Size() {
  if (stream_) return stream_->size();
  KW_RETURN_IF_ERROR(Open());
  return file_->Size();
}

Result<size_t> StreamField::ReadAt(uint64_t offset, std::span<std::byte> buffer) {
  if (stream_) return core_->file().Read(*stream_, offset, buffer);
  KW_RETURN_IF_ERROR(Open());
  return file_->ReadAt(offset, buffer);
}

Result<std::string> StreamField::Next(size_t length) {
  KW_ASSIGN_OR_RETURN(const uint64_t size, Size());
  const uint64_t left = size > position_ ? size - position_ : 0;
  std::string bytes(static_cast<size_t>(std::min<uint64_t>(length, left)), '\0');
  KW_ASSIGN_OR_RETURN(const size_t got, ReadAt(position_, std::as_writable_bytes(std::span(bytes))));
  bytes.resize(got);
  position_ += got;
  return bytes;
}

Status Record::CheckField(int field) const {
  if (Has(field)) return {};
  return {kErrorInvalidParameter, "A record of " + std::to_string(FieldCount()) + " fields has no field " +
                                      std::to_string(field) + "."};
}

bool Record::IsNull(int field) const { return !Has(field) || value(field).IsNull(); }

std::string Record::StringData(int field) const {
  if (IsNull(field)) return {};
  const Value& content = value(field);
  return content.kind == Value::Kind::kInteger ? std::to_string(content.integer) : content.text;
}

int32_t Record::IntegerData(int field) const {
  if (IsNull(field)) return kNullInteger;
  const Value& content = value(field);
  if (content.kind == Value::Kind::kInteger) return content.integer;
  int32_t number = 0;
  return content.kind == Value::Kind::kText && ParseInteger(content.text, &number) ? number : kNullInteger;
}

Status Record::SetString(int field, std::string_view text) {
  KW_RETURN_IF_ERROR(CheckField(field));
  value(field) = Value::Text(std::string(text));
  return {};
}

Status Record::SetInteger(int field, int32_t number) {
  KW_RETURN_IF_ERROR(CheckField(field));
  value(field) = Value::Integer(number);
  return {};
}

Status Record::SetNull(int field) {
  KW_RETURN_IF_ERROR(CheckField(field));
  value(field) = Value{};
  return {};
}

Status Record::SetStream(int field, Storage& storage, const std::string& path) {
  KW_RETURN_IF_ERROR(CheckField(field));
  auto stream = std::make_shared<StreamField>(storage, path);
  KW_RETURN_IF_ERROR(stream->Size().status());
  value(field) = Value::Stream(std::move(stream));
  return {};
}

Result<std::string> Record::ReadStream(int field, size_t length) {
  KW_RETURN_IF_ERROR(CheckField(field));
  if (value(field).kind != Value::Kind::kStream) {
    return {kErrorInvalidParameter, "Field " + std::to_string(field) + " of the record is no stream."};
  }
  return value(field).stream->Next(length);
}

Result<uint64_t> Record::DataSize(int field) const {
  if (IsNull(field)) return uint64_t{0};
  const Value& content = value(field);
  if (content.kind == Value::Kind::kStream) return content.stream->Size();
  return content.kind == Value::Kind::kInteger ? uint64_t{4} : static_cast<uint64_t>(content.text.size());
}

void Record::ClearData() { std::fill(values_.begin(), values_.end(), Value{}); }

}  // namespace kw::msi
