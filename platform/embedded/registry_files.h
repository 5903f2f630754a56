#ifndef KITWRIGHT_PLATFORM_EMBEDDED_REGISTRY_FILES_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_REGISTRY_FILES_H_

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "base/storage.h"
#include "platform/embedded/file_lock.h"
#include "platform/shared/stored_registry.h"

namespace kw::platform::embedded {

/// The hives of a machine as files in a folder of the host, shared with other processes.
///
/// At rest a hive is one plain registry-editor file, "HKEY_CURRENT_USER.reg" or "HKEY_LOCAL_MACHINE.reg",
/// replaced as a whole. A change is not worth a whole file: it is appended as one record to a journal beside
/// it ("HKEY_CURRENT_USER.journal"), which every process reads on top of the file, and which is folded into
/// the file when the store closes, at Flush and when it has grown long. A record is registry-editor lines
/// behind a comment with their length and checksum, so that a record cut off by a kill does not count. The
/// journal begins with size and time of the file it stands on; with any other file it does not count either,
/// so neither a kill between the replacement of the file and the removal of the journal does harm, nor a
/// registry that is laid out anew beside a left-over journal.
class RegistryFiles : public RegistryStore {
 public:
  /// `folder` is a host folder, made at the first change; `code_page` that of 8-bit files. `storage` writes
  /// the files and must outlive the store.
  RegistryFiles(std::string folder, int code_page, Storage& storage);
  /// Folds the journals in, as Flush. What cannot be written stays in the journal.
  ~RegistryFiles() override;

  Result<const RegistryTree*> Read(Hive hive) override;
  Status Change(Hive hive, const Decide& decide) override;
  /// Leaves both hives as plain registry-editor files, without a journal.
  Status Flush();

 private:
  struct HiveState {
    std::string file;
    std::string journal;
    bool loaded = false;
    FileIdentity file_seen;
    FileIdentity journal_seen;
    uint64_t journal_end = 0;                     // behind the last whole record
    std::unique_ptr<StorageFile> journal_writer;  // to the journal seen, once this store has appended to it
    RegistryTree tree;
  };

  HiveState& State(Hive hive) { return hives_[hive == Hive::kCurrentUser ? 0 : 1]; }
  static bool IsPresent(const HiveState& state);
  static bool JournalIsAsSeen(const HiveState& state, const FileIdentity& journal);
  Status Refresh(Hive hive);
  Status LoadFile(Hive hive);
  Status ReplayJournal(HiveState& state);
  Status Append(HiveState& state, std::string_view record);
  Status Fold(Hive hive);

  std::string folder_;
  int code_page_;
  Storage& storage_;
  FileLock lock_;
  std::array<HiveState, 2> hives_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_REGISTRY_FILES_H_
