#ifndef KITWRIGHT_MSI_RECORD_H_
#define KITWRIGHT_MSI_RECORD_H_

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "base/storage.h"

namespace kw::msi {

class CfStream;
class Core;

/// What a null integer reads as.
inline constexpr int32_t kNullInteger = std::numeric_limits<int32_t>::min();

/// The integer that `text` says in decimal (blanks around it do not matter); false when it says none or one
/// that does not fit into 32 bits.
bool ParseInteger(std::string_view text, int32_t* value);

/// A stream in a record: a host file that is read when it is wanted, or a stream of a database.
class StreamField {
 public:
  StreamField(Storage& storage, std::string path) : storage_(&storage), path_(std::move(path)) {}
  StreamField(std::shared_ptr<Core> core, std::shared_ptr<CfStream> stream)
      : core_(std::move(core)), stream_(std::move(stream)) {}

  /// Size in bytes.
  Result<uint64_t> Size();
  /// The next `length` bytes; fewer at the end, none behind it.
  Result<std::string> Next(size_t length);
  /// Copies up to `buffer.size()` bytes from `offset` on; fewer only at the end.
  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer);
  /// The stream of a database that this is, or null.
  const CfStream* stream() const { return stream_.get(); }

 private:
  Status Open();

  Storage* storage_ = nullptr;
  std::string path_;
  std::unique_ptr<StorageFile> file_;
  std::shared_ptr<Core> core_;
  std::shared_ptr<CfStream> stream_;
  uint64_t position_ = 0;
};

/// The content of a field.
struct Value {
  enum class Kind { kNull, kInteger, kText, kStream };
  Kind kind = Kind::kNull;
  int32_t integer = 0;
  std::string text;
  std::shared_ptr<StreamField> stream;

  static Value Integer(int32_t value) { return {Kind::kInteger, value, {}, {}}; }
  static Value Text(std::string value) { return {Kind::kText, 0, std::move(value), {}}; }
  static Value Stream(std::shared_ptr<StreamField> value) { return {Kind::kStream, 0, {}, std::move(value)}; }
  /// Null, an empty text and the null integer are the same.
  bool IsNull() const {
    return kind == Kind::kNull || (kind == Kind::kText && text.empty()) ||
           (kind == Kind::kInteger && integer == kNullInteger);
  }
};

/// A row, or the parameters of a statement. Fields count from 1. Text is UTF-8.
class Record {
 public:
  explicit Record(int field_count) : values_(field_count > 0 ? static_cast<size_t>(field_count) : 0) {}

  int FieldCount() const { return static_cast<int>(values_.size()); }
  /// True for null, for an empty text and for a field that does not exist.
  bool IsNull(int field) const;
  /// The text of a field; an integer in decimal; "" for null and for streams.
  std::string StringData(int field) const;
  /// The integer of a field; a text that says an integer is converted; kNullInteger for everything else.
  int32_t IntegerData(int field) const;
  /// Fails with kErrorInvalidParameter when the field does not exist; so do all that set.
  Status SetString(int field, std::string_view value);
  Status SetInteger(int field, int32_t value);
  Status SetNull(int field);
  /// Makes the field a stream of the host file `path`, whose bytes are read when the record is used. Fails
  /// when the file cannot be opened now.
  Status SetStream(int field, Storage& storage, const std::string& path);
  /// The next `length` bytes of a stream; fewer at its end, none behind it. Fails on a field that is no
  /// stream.
  Result<std::string> ReadStream(int field, size_t length);
  /// Size of the content in bytes: of a stream, of the text, 4 for an integer, 0 for null.
  Result<uint64_t> DataSize(int field) const;
  /// Sets every field to null and lets go of streams.
  void ClearData();

  /// The content of a field that exists.
  const Value& value(int field) const { return values_[static_cast<size_t>(field - 1)]; }
  Value& value(int field) { return values_[static_cast<size_t>(field - 1)]; }

 private:
  friend class View;
  bool Has(int field) const { return field >= 1 && field <= FieldCount(); }
  Status CheckField(int field) const;

  std::vector<Value> values_;
  uint64_t view_ = 0;           // the view that fetched it, 0 for none
  std::vector<uint32_t> rows_;  // and its row in each table of that view
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_RECORD_H_
