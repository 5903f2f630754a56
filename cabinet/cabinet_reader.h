#ifndef KITWRIGHT_CABINET_CABINET_READER_H_
#define KITWRIGHT_CABINET_CABINET_READER_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/result.h"
#include "base/storage.h"
#include "cabinet/format.h"
#include "cabinet/host_file.h"

namespace kw::cabinet {

/// One file of a cabinet, as its record tells it.
struct CabinetEntry {
  std::string name;     ///< UTF-8; what does not convert is U+FFFD
  uint32_t size = 0;    ///< bytes, unpacked
  uint32_t offset = 0;  ///< of the first byte in its folder, unpacked
  uint16_t folder = 0;
  FileStamp stamp;            ///< attributes without the mark of the name's encoding
  bool name_is_utf8 = false;  ///< the name stood in UTF-8, not in the code page
};

/// One folder of a cabinet: a stream of data blocks.
struct CabinetFolder {
  uint32_t data_offset = 0;  ///< of the first block in the file
  uint16_t blocks = 0;
  uint16_t type = kStored;  ///< a Compression and, in the upper bits, its parameters
};

/// An entry that could not be kept, and why.
struct EntryFailure {
  std::string entry;
  Status status;
};

/// Takes what Extract unpacks. Calls come one after the other from the thread that called Extract: Begin, any
/// number of Writes, End.
class EntrySink {
 public:
  virtual ~EntrySink() = default;
  /// A failure skips the entry; End is then not called.
  virtual Status Begin(const CabinetEntry& entry) = 0;
  virtual Status Write(std::span<const std::byte> data) = 0;
  /// `outcome` says whether all of the entry's data came; after a failure nothing of it may be kept.
  virtual Status End(const CabinetEntry& entry, const Status& outcome) = 0;
  /// Comes when all entries are through: waits for what goes on behind their End, and tells what failed of
  /// it.
  virtual std::vector<EntryFailure> Settle() { return {}; }
};

/// A cabinet that is read from a host file. Cabinets that are part of a set are refused.
class CabinetReader {
 public:
  /// Reads the header and all records. `code_page` is that of entry names without the UTF mark.
  static Result<CabinetReader> Open(Storage& storage, const std::string& path, int code_page);
  CabinetReader(CabinetReader&&) = default;
  CabinetReader& operator=(CabinetReader&&) = default;

  const std::vector<CabinetEntry>& entries() const { return entries_; }
  const std::vector<CabinetFolder>& folders() const { return folders_; }
  /// Bytes reserved in the header, in each folder record and in each data block.
  uint16_t reserved_header() const { return reserved_header_; }
  uint8_t reserved_folder() const { return reserved_folder_; }
  uint8_t reserved_data() const { return reserved_data_; }
  /// Size that the header tells.
  uint32_t size() const { return size_; }

  using Wanted = std::function<bool(const CabinetEntry&)>;
  /// Unpacks the entries that `wanted` (all when empty) picks, folder by folder, with `threads` threads (0:
  /// one for each processor). An entry that fails does not keep the others from coming; the first failure,
  /// which names its entry, is the result, but one of the machine goes before those of the cabinet.
  Status Extract(EntrySink& sink, const Wanted& wanted = {}, unsigned threads = 0);

 private:
  explicit CabinetReader(std::string path) : path_(std::move(path)) {}
  Status ReadHead(int code_page);
  Status CheckFolders() const;
  Status ReadEntries(int code_page, uint64_t file_size, uint32_t offset, size_t count);
  Status ExtractFolder(size_t folder, const std::vector<const CabinetEntry*>& entries, EntrySink& sink,
                       unsigned threads);

  std::string path_;
  std::unique_ptr<StorageFile> file_;
  std::vector<CabinetEntry> entries_;
  std::vector<CabinetFolder> folders_;
  uint32_t size_ = 0;
  uint16_t reserved_header_ = 0;
  uint8_t reserved_folder_ = 0;
  uint8_t reserved_data_ = 0;
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_CABINET_READER_H_
