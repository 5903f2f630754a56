#ifndef KITWRIGHT_MSI_COMPOUND_FILE_H_
#define KITWRIGHT_MSI_COMPOUND_FILE_H_

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/result.h"
#include "base/storage.h"

namespace kw::msi {

/// The bytes of one stream of a compound file. Who holds one can read it as long as the file object lives,
/// also after the stream was removed or replaced.
class CfStream {
 public:
  /// Size in bytes.
  uint64_t size() const { return size_; }

 private:
  friend class CompoundFile;
  enum class Place { kMemory, kMini, kSectors };
  Place place_ = Place::kMemory;
  uint64_t size_ = 0;
  std::string bytes_;            // kMemory: the content
  std::vector<uint32_t> chain_;  // kMini, kSectors: where it lies
  std::string known_;            // kSectors: the content, where the engine keeps it to find what changed
};

/// One entry of the directory.
struct CfEntry {
  std::u16string name;
  uint8_t type = 0;
  std::array<char, 16> class_id{};
  uint32_t state_bits = 0;
  uint64_t created = 0;
  uint64_t modified = 0;
  uint32_t id = 0;
  std::shared_ptr<CfStream> stream;
  std::map<std::u16string, std::unique_ptr<CfEntry>> children;
};

/// A compound file of 512- or 4096-byte sectors. Changes are written into sectors that the last committed
/// state does not use; Commit writes the sector tables the same way and switches over with one write of the
/// header, so that the file holds the old or the new state at every moment. Text of names is UTF-16 as
/// stored.
class CompoundFile {
 public:
  /// Gives bytes of a new stream: fills the buffer or as much as is left.
  using Source = std::function<Result<size_t>(std::span<std::byte> buffer)>;

  /// Reads and checks the structure of `file`. Fails with kErrorInstallPackageInvalid on anything that does
  /// not hold together. Takes memory in proportion to the file's size at most.
  static Result<std::unique_ptr<CompoundFile>> Open(std::unique_ptr<StorageFile> file);
  /// An empty compound file of 512-byte sectors on an empty `file`; nothing is written before the first
  /// Commit.
  static std::unique_ptr<CompoundFile> Create(std::unique_ptr<StorageFile> file, int sector_shift = 9);
  ~CompoundFile();

  /// The root entry; its children are the streams and storages of the top level.
  const CfEntry& root() const { return root_; }
  /// Goes up whenever a name of the top level comes or goes.
  uint64_t names_version() const { return names_version_; }
  /// The stream `name` of the top level, or null.
  std::shared_ptr<CfStream> Find(const std::u16string& name) const;
  /// Sets the class of the root entry, which tells what kind of file this is.
  void SetRootClass(const std::array<char, 16>& class_id);

  /// Reads up to `buffer.size()` bytes of `stream` at `offset`; fewer only at its end.
  Result<size_t> Read(CfStream& stream, uint64_t offset, std::span<std::byte> buffer);
  /// The whole content.
  Result<std::string> ReadAll(CfStream& stream);

  /// Brings `size` bytes of `source` into the file as a stream without a name yet. Large ones go to free
  /// sectors at once, so that they are never held in memory. Fails before anything is written when the file
  /// would pass 2 GiB.
  Result<std::shared_ptr<CfStream>> Write(uint64_t size, const Source& source);
  /// The same in memory alone, for streams that never go to the file.
  Result<std::shared_ptr<CfStream>> Hold(uint64_t size, const Source& source);
  /// A stream of these bytes without a name yet.
  Result<std::shared_ptr<CfStream>> WriteBytes(std::string_view bytes);
  /// Makes `stream` the content of the top-level entry `name`, in place of the stream or storage that it was.
  void Put(const std::u16string& name, std::shared_ptr<CfStream> stream);
  /// Gives the top-level entry `name` the content `bytes`; of a large stream only changed sectors are
  /// written.
  Status Update(const std::u16string& name, std::string_view bytes);
  /// Removes the stream or storage `name` of the top level, with its content.
  void Remove(const std::u16string& name);
  /// Lets go of a stream that was never put.
  void Discard(std::shared_ptr<CfStream> stream) { Release(std::move(stream)); }

  /// True if something changed since the last commit.
  bool dirty() const { return dirty_; }
  /// Writes the present state. `durable` synchronises around the switch and gives back the space of what was
  /// removed; without it the change is visible to every reader but not yet safe from a power loss. After a
  /// failure the file holds the old or the new state, and Commit may be tried again; it fails for good when
  /// the system could not bring to the disk what it had taken.
  Status Commit(bool durable);

 private:
  explicit CompoundFile(std::unique_ptr<StorageFile> file) : file_(std::move(file)) {}

  // compound_file.cc: reading
  Status Load();
  Status LoadHeader(uint64_t file_size);
  Status LoadFat(uint32_t fat_sectors, uint32_t difat_start, uint32_t difat_sectors);
  Status LoadDirectory(uint32_t start);
  Status LoadMini(uint32_t minifat_start, uint32_t container_start, uint64_t container_size);
  Status LoadTree();
  Status LoadStream(CfEntry& entry, uint32_t start, uint64_t size);
  Result<std::vector<uint32_t>> WalkChain(uint32_t start, uint64_t min_sectors, const char* what);
  Result<std::string> ReadChain(const std::vector<uint32_t>& chain, uint64_t size);
  Status ReadSectors(const std::vector<uint32_t>& chain, uint64_t offset, std::span<std::byte> buffer);
  Status ReadMini(const std::vector<uint32_t>& chain, uint64_t offset, std::span<std::byte> buffer);
  uint64_t SectorOffset(uint32_t sector) const { return (static_cast<uint64_t>(sector) + 1) << shift_; }
  uint32_t SectorSize() const { return 1u << shift_; }

  // compound_write.cc: the next state
  void SetFat(uint32_t sector, uint32_t value);
  Result<uint32_t> Allocate();
  Status CheckRoom(uint64_t bytes) const;
  void Free(uint32_t sector);
  void Link(const std::vector<uint32_t>& chain);
  void Release(std::shared_ptr<CfStream> stream);
  void FreeContent(CfStream& stream);
  Status EditChain(std::vector<uint32_t>& chain, std::string_view bytes, const std::string* known);
  Result<uint32_t> AllocateMini();
  Result<std::string*> MiniBlock(uint32_t container_index);
  Status PlaceMini(CfStream& stream);
  void FreeMini(uint32_t mini_sector);

  // compound_commit.cc: writing it down
  Status WriteMini();
  Status CompactMini();
  Status MoveMini(uint32_t from, uint32_t to);
  void CompactDirectory();
  std::string BuildDirectory();
  Status WriteDirectory();
  Status WriteTables(bool durable);
  size_t UsedEnd() const;
  Status PlaceFat();
  Status WriteFat();
  Status Sync();
  Status SwitchHeader(bool durable);
  void Settle();
  Status Compact();
  Status MoveDown(std::vector<uint32_t>& chain, uint32_t limit);
  void TrimEnd();
  void SweepZombies();
  std::string BuildHeader() const;
  std::vector<CfEntry*> AllEntries();

  std::unique_ptr<StorageFile> file_;
  int shift_ = 9;
  std::string header_;  // the committed header, empty before the first commit
  bool dirty_ = false;
  bool unsynced_ = false;  // the committed state may not have reached the disk
  bool untidy_ = false;    // there may be space to give back
  bool broken_ = false;    // it is not known which header is on the disk: nothing may be overwritten any more
  uint64_t written_end_ = 0;  // how far the file has been written

  std::vector<uint32_t> fat_;
  std::vector<uint32_t> fat_sectors_;  // where the blocks of the table lie
  std::vector<bool> fat_dirty_;
  std::vector<uint32_t> difat_sectors_;
  bool difat_dirty_ = false;
  std::vector<bool> fresh_;      // written since the last commit
  std::vector<bool> available_;  // free in the committed state and in the next one
  size_t next_available_ = 0;    // no available sector lies before this one
  size_t available_count_ = 0;
  std::vector<uint32_t> pending_free_;              // free in the next state, still used by the committed one
  std::vector<std::shared_ptr<CfStream>> zombies_;  // removed, but somebody still reads them

  std::vector<uint32_t> directory_chain_;
  std::string directory_bytes_;  // what the unchanged sectors of the chain hold
  CfEntry root_;
  uint64_t names_version_ = 1;
  uint32_t next_entry_id_ = 1;
  std::vector<uint32_t> free_entry_ids_;

  std::vector<uint32_t> minifat_;
  std::vector<uint32_t> minifat_chain_;
  std::string minifat_bytes_;
  std::vector<uint32_t> mini_chain_;  // the container of the small streams
  std::vector<uint32_t> mini_free_;
  std::map<uint32_t, std::string> mini_dirty_;  // changed sectors of the container
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_COMPOUND_FILE_H_
