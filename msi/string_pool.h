#ifndef KITWRIGHT_MSI_STRING_POOL_H_
#define KITWRIGHT_MSI_STRING_POOL_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/large_memory.h"
#include "base/result.h"

namespace kw::msi {

/// The texts of a database, each kept once and named by a number; 0 is the empty text, which is null. Text is
/// UTF-8 here and in the database's code page in the file. Two counts of uses are kept for each: of cells
/// that go to the file, and of temporary ones, so that temporary text never reaches the file.
class StringPool {
 public:
  using Id = uint32_t;

  StringPool() = default;
  ~StringPool();
  StringPool(const StringPool&) = delete;
  StringPool& operator=(const StringPool&) = delete;

  /// Reads the streams `_StringPool` and `_StringData`. Fails when they do not fit together.
  Status Load(std::string_view pool, std::string data);
  using Uses = std::vector<uint32_t, LargeAllocator<uint32_t>>;
  /// The counted uses by cells, by id, which replace what the file says of them. Fails when an id is in use
  /// that names no text.
  Status SetUses(Uses uses);
  /// The two streams for the present content.
  void Save(std::string* pool, std::string* data) const;

  int code_page() const { return code_page_; }
  /// Changes the code page; fails with kErrorUnrepresentableText when a text in use has no place in it.
  Status SetCodePage(int code_page);
  /// Bytes of a reference in the tables: 2, or 3 in large databases.
  int reference_bytes() const { return reference_bytes_; }

  /// Number of ids in use or once used; all valid ids are below.
  size_t size() const { return entries_.size(); }
  /// The text of `id`; valid as long as somebody uses it.
  std::string_view Text(Id id) const { return entries_[id].text(); }
  /// The id of `text`, or false when no cell holds it.
  bool Find(std::string_view text, Id* id) const;
  /// Says that `text` will be looked for soon: memory begins to fetch its place in a large index.
  void Expect(std::string_view text) const;
  /// The same of the text of `id`, which may be about to lose its last use.
  void ExpectById(Id id) const;
  /// The id of `text`, which is added when it is new, with no uses counted yet. Fails with
  /// kErrorUnrepresentableText when the code page does not have all characters.
  Result<Id> Intern(std::string_view text);
  /// Counts a use, `temporary` when the cell stays out of the file.
  void AddUse(Id id, bool temporary);
  /// Takes a use back; a text without uses is forgotten.
  void DropUse(Id id, bool temporary);
  /// Forgets `id` if nothing uses it; for texts that were interned for a change that was then refused.
  void DropIfUnused(Id id);
  /// The smallest id with the same text; differs from `id` only in files that keep a text twice.
  Id Canonical(Id id) const;
  /// True if the file keeps some text twice.
  bool has_doubles() const { return has_doubles_; }
  /// Must be called before Find, Intern or Canonical; cheap from the second time on.
  void BuildIndex();
  /// Widens references to 3 bytes if the ids ask for it; true if that changed.
  bool WidenIfNeeded();
  bool dirty() const { return dirty_; }
  void ClearDirty() { dirty_ = false; }

 private:
  // Kept small: a database has some hundred thousand, and they are all touched when it is opened.
  struct Entry {
    const char* data = nullptr;  // UTF-8; null for an id that is not in use
    uint32_t length : 31 = 0;
    uint32_t own : 1 = 0;  // data was made here and is not a part of data_
    uint32_t hash = 0;

    std::string_view text() const { return {data, length}; }
  };

  // A place of the index: the id, and above it eight bits of the hash, which spare most looks at the texts of
  // others.
  static uint32_t Slot(Id id, uint32_t hash) { return id | (hash & 0xFF000000); }
  static uint32_t Hash(std::string_view text);
  bool FindHashed(std::string_view text, uint32_t hash, Id* id) const;
  void RebuildIndex(Id without);
  void IndexInsert(Id id);
  void IndexErase(Id id);
  void Forget(Id id);
  void Keep(std::string_view text, Entry& entry);
  Status CheckRepresentable(std::string_view text) const;

  int code_page_ = 0;
  int reference_bytes_ = 2;
  std::string data_;                                   // `_StringData` as loaded
  std::vector<Entry, LargeAllocator<Entry>> entries_;  // by id
  Uses uses_;                                          // by id
  size_t own_texts_ = 0;                               // entries whose text was made here
  std::unordered_map<Id, uint32_t> temporary_uses_;
  // The bytes of the file for texts that are not the same there, so that they go back as they came.
  std::unordered_map<Id, std::string_view> raw_;
  std::vector<Id> free_ids_;
  std::vector<uint32_t, LargeAllocator<uint32_t>> index_;  // open addressing; 0 is empty, kGone a removed one
  size_t index_used_ = 0;
  bool indexed_ = false;
  bool has_doubles_ = false;
  bool dirty_ = false;
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_STRING_POOL_H_
