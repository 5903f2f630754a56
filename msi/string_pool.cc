#include "msi/string_pool.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "base/text.h"
#include "msi/bytes.h"

namespace kw::msi {
namespace {

constexpr uint32_t kLongReferences = 0x80000000;
constexpr uint32_t kGone = 0xFFFFFFFF;
constexpr uint32_t kIdMask = 0x00FFFFFF;
constexpr uint32_t kTagMask = 0xFF000000;
constexpr uint32_t kMaxLength = 0x7FFFFFFF;  // more than a database may hold in all
constexpr size_t kMaxShortLength = 0xFFFF;
constexpr size_t kMaxIds = 0xFFFFFF;
// So many texts are prepared at a time when the index is made: their places come from memory meanwhile.
constexpr size_t kBatch = 32;
// Entries of an index that the processor's nearest memory does not hold.
constexpr size_t kBeyondCache = 65536;
// The neutral code page is shown as Western European, which is what such files hold in practice; new text in
// a neutral database must be ASCII.
constexpr int kShownForNeutral = 1252;

bool IsAscii(std::string_view text) {
  unsigned char all = 0;
  for (const char c : text) all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
  return all < 0x80;
}

Error Damaged(const char* what) {
  return Error{kErrorInstallPackageInvalid,
               std::string("The texts of the database are damaged: ") + what + "."};
}

}  // namespace

uint32_t StringPool::Hash(std::string_view text) {
  const size_t hash = std::hash<std::string_view>()(text);
  return static_cast<uint32_t>(hash ^ (hash >> 32));
}

StringPool::~StringPool() {
  if (own_texts_ == 0) return;
  for (const Entry& entry : entries_) {
    if (entry.own) delete[] entry.data;
  }
}

void StringPool::Keep(std::string_view text, Entry& entry) {
  char* data = new char[text.size() + 1];
  std::memcpy(data, text.data(), text.size());
  entry.data = data;
  entry.length = static_cast<uint32_t>(text.size()) & kMaxLength;
  entry.own = 1;
  ++own_texts_;
}

Status StringPool::SetUses(Uses uses) {
  for (size_t id = 1; id < entries_.size(); ++id) {
    if (uses[id] != 0 && entries_[id].data == nullptr) return Damaged("a table names one that is not there");
  }
  uses_ = std::move(uses);
  return {};
}

Status StringPool::Load(std::string_view pool, std::string data) {
  entries_.assign(1, Entry{});
  uses_.assign(1, 0);
  data_ = std::move(data);
  if (pool.empty()) return {};
  if (pool.size() < 4) return Damaged("the list is cut short");
  const uint32_t head = GetU32(pool.data());
  reference_bytes_ = (head & kLongReferences) != 0 ? 3 : 2;
  code_page_ = static_cast<int>(head & ~kLongReferences);
  const size_t count = pool.size() / 4;
  if (count > kMaxIds) return Damaged("the list is too long");
  entries_.reserve(count);
  const bool ascii = IsAscii(data_);
  size_t at = 0;
  for (size_t i = 1; i < count; ++i) {
    const char* slot = pool.data() + 4 * i;
    size_t length = GetU16(slot);
    Entry& entry = entries_.emplace_back();
    const size_t uses = GetU16(slot + 2);
    if (length == 0 && uses != 0) {
      // A long text: this slot holds the upper half of its length, the next one the rest and the uses. The
      // text has the number of the first of the two.
      if (i + 1 >= count) return Damaged("a long text is cut short");
      length = (uses << 16) + GetU16(slot + 4);
      ++i;
    } else if (length == 0) {
      free_ids_.push_back(static_cast<Id>(entries_.size() - 1));
      continue;
    }
    if (length > data_.size() - at || length > kMaxLength) return Damaged("a text is cut short");
    const std::string_view raw = std::string_view(data_).substr(at, length);
    at += length;
    if (ascii || IsAscii(raw) || (code_page_ == 65001 && IsValidUtf8(raw))) {
      entry.data = raw.data();
      entry.length = static_cast<uint32_t>(length) & kMaxLength;
    } else {
      Keep(CodePageToUtf8(raw, code_page_ == 0 ? kShownForNeutral : code_page_), entry);
      raw_[static_cast<Id>(entries_.size() - 1)] = raw;
    }
  }
  std::reverse(free_ids_.begin(), free_ids_.end());
  return {};
}

void StringPool::Save(std::string* pool, std::string* data) const {
  pool->clear();
  data->clear();
  pool->reserve(entries_.size() * 4);
  data->reserve(data_.size());
  AppendU32(*pool, static_cast<uint32_t>(code_page_) | (reference_bytes_ == 3 ? kLongReferences : 0));
  size_t end = entries_.size();
  while (end > 1 && uses_[end - 1] == 0) --end;
  for (size_t id = 1; id < end; ++id) {
    const Entry& entry = entries_[id];
    if (entry.data == nullptr || uses_[id] == 0) {
      AppendU32(*pool, 0);
      continue;
    }
    std::string converted;
    std::string_view bytes = entry.text();
    if (code_page_ != 65001 || !raw_.empty()) {
      const auto raw = raw_.find(static_cast<Id>(id));
      if (raw != raw_.end()) {
        bytes = raw->second;
      } else if (code_page_ != 65001 && !IsAscii(bytes)) {
        // Every text was tried when it came in, so that this cannot fail.
        converted = Utf8ToCodePage(bytes, code_page_).value_or("");
        bytes = converted;
      }
    }
    if (bytes.size() > kMaxShortLength) {
      AppendU16(*pool, 0);
      AppendU16(*pool, static_cast<uint16_t>(bytes.size() >> 16));
    }
    AppendU16(*pool, static_cast<uint16_t>(bytes.size()));
    AppendU16(*pool, static_cast<uint16_t>(std::min<uint32_t>(uses_[id], 0xFFFF)));
    data->append(bytes);
  }
}

Status StringPool::CheckRepresentable(std::string_view text) const {
  if (IsAscii(text)) return {};
  if (!IsValidUtf8(text)) return {kErrorUnrepresentableText, "A text is not well-formed UTF-8."};
  if (code_page_ == 65001) return {};
  return Utf8ToCodePage(text, code_page_).status();
}

Status StringPool::SetCodePage(int code_page) {
  if (code_page == code_page_) return {};
  if (code_page != 0 && !CodePageIsKnown(code_page)) {
    return {kErrorUnsupported, "Code page " + std::to_string(code_page) + " is not known to this system."};
  }
  const int old = std::exchange(code_page_, code_page);
  for (const Entry& entry : entries_) {
    const Status status = CheckRepresentable(entry.text());
    if (!status.ok()) {
      code_page_ = old;
      return status;
    }
  }
  raw_.clear();
  dirty_ = true;
  return {};
}

void StringPool::BuildIndex() {
  if (indexed_) return;
  indexed_ = true;
  for (Entry& entry : entries_) {
    if (entry.data != nullptr) entry.hash = Hash(entry.text());
  }
  RebuildIndex(0);
}

// Puts every text into a new index, but `without`.
void StringPool::RebuildIndex(Id without) {
  size_t capacity = 64;
  while (capacity < entries_.size() * 2) capacity *= 2;
  index_.assign(capacity, 0);
  index_used_ = 0;
  const size_t mask = capacity - 1;
  for (size_t first = 1; first < entries_.size(); first += kBatch) {
    const size_t last = std::min(first + kBatch, entries_.size());
    for (size_t id = first; id < last; ++id) __builtin_prefetch(&index_[entries_[id].hash & mask], 1);
    for (size_t id = first; id < last; ++id) {
      const Entry& entry = entries_[id];
      if (entry.data == nullptr || id == without) continue;
      Id other = 0;
      if (!has_doubles_ && FindHashed(entry.text(), entry.hash, &other)) has_doubles_ = true;
      IndexInsert(static_cast<Id>(id));
    }
  }
}

bool StringPool::Find(std::string_view text, Id* id) const {
  if (text.empty()) {
    *id = 0;
    return true;
  }
  return FindHashed(text, Hash(text), id);
}

bool StringPool::FindHashed(std::string_view text, uint32_t hash, Id* id) const {
  const size_t mask = index_.size() - 1;
  for (size_t slot = hash & mask; index_[slot] != 0; slot = (slot + 1) & mask) {
    const uint32_t found = index_[slot];
    if (((found ^ hash) & kTagMask) != 0 || found == kGone) continue;
    const Entry& entry = entries_[found & kIdMask];
    if (entry.hash == hash && entry.text() == text) {
      *id = found & kIdMask;
      return true;
    }
  }
  return false;
}

void StringPool::Expect(std::string_view text) const {
  if (index_.size() < kBeyondCache) return;
  __builtin_prefetch(&index_[Hash(text) & (index_.size() - 1)]);
}

void StringPool::ExpectById(Id id) const {
  if (index_.size() < kBeyondCache) return;
  __builtin_prefetch(&index_[entries_[id].hash & (index_.size() - 1)]);
}

StringPool::Id StringPool::Canonical(Id id) const {
  Id first = id;
  return has_doubles_ && id != 0 && entries_[id].data != nullptr && Find(entries_[id].text(), &first) ? first
                                                                                                      : id;
}

void StringPool::IndexInsert(Id id) {
  if ((index_used_ + 1) * 4 > index_.size() * 3) RebuildIndex(id);
  const size_t mask = index_.size() - 1;
  const uint32_t hash = entries_[id].hash;
  size_t slot = hash & mask;
  while (index_[slot] != 0 && index_[slot] != kGone) slot = (slot + 1) & mask;
  if (index_[slot] == 0) ++index_used_;
  index_[slot] = Slot(id, hash);
}

void StringPool::IndexErase(Id id) {
  const size_t mask = index_.size() - 1;
  const uint32_t wanted = Slot(id, entries_[id].hash);
  for (size_t slot = entries_[id].hash & mask; index_[slot] != 0; slot = (slot + 1) & mask) {
    if (index_[slot] != wanted) continue;
    if (index_[(slot + 1) & mask] != 0) {
      index_[slot] = kGone;
      return;
    }
    // Nothing was ever put behind it, so that no search has to pass here.
    while (index_[slot] == wanted || index_[slot] == kGone) {
      index_[slot] = 0;
      --index_used_;
      slot = (slot - 1) & mask;
    }
    return;
  }
}

Result<StringPool::Id> StringPool::Intern(std::string_view text) {
  if (text.empty()) return Id{0};
  Id id = 0;
  const uint32_t hash = Hash(text);
  if (FindHashed(text, hash, &id)) return id;
  if (text.size() > kMaxLength) return {kErrorDiskFull, "A text is too long for a database."};
  KW_RETURN_IF_ERROR(CheckRepresentable(text));
  if (text.find('\0') != std::string_view::npos) {
    return {kErrorUnrepresentableText, "A text with a zero character cannot be kept in a database."};
  }
  if (free_ids_.empty()) {
    if (entries_.size() >= kMaxIds) return {kErrorDiskFull, "The database holds too many different texts."};
    id = static_cast<Id>(entries_.size());
    entries_.emplace_back();
    uses_.push_back(0);
  } else {
    id = free_ids_.back();
    free_ids_.pop_back();
  }
  Entry& entry = entries_[id];
  entry = Entry{};
  Keep(text, entry);
  entry.hash = hash;
  IndexInsert(id);
  return id;
}

void StringPool::AddUse(Id id, bool temporary) {
  if (id == 0) return;
  ++(temporary ? temporary_uses_[id] : uses_[id]);
  dirty_ = dirty_ || !temporary;
}

void StringPool::DropUse(Id id, bool temporary) {
  if (id == 0) return;
  if (temporary) {
    const auto found = temporary_uses_.find(id);
    if (found != temporary_uses_.end() && --found->second == 0) temporary_uses_.erase(found);
  } else {
    if (uses_[id] > 0) --uses_[id];
    dirty_ = true;
  }
  DropIfUnused(id);
}

void StringPool::DropIfUnused(Id id) {
  if (id == 0 || entries_[id].data == nullptr || uses_[id] != 0) return;
  if (temporary_uses_.empty() || temporary_uses_.count(id) == 0) Forget(id);
}

void StringPool::Forget(Id id) {
  if (indexed_) IndexErase(id);
  if (entries_[id].own) {
    delete[] entries_[id].data;
    --own_texts_;
  }
  if (!raw_.empty()) raw_.erase(id);
  entries_[id] = Entry{};
  uses_[id] = 0;
  free_ids_.push_back(id);
}

bool StringPool::WidenIfNeeded() {
  if (reference_bytes_ == 3 || entries_.size() <= 0x10000) return false;
  reference_bytes_ = 3;
  dirty_ = true;
  return true;
}

}  // namespace kw::msi
