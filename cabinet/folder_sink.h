#ifndef KITWRIGHT_CABINET_FOLDER_SINK_H_
#define KITWRIGHT_CABINET_FOLDER_SINK_H_

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/storage.h"
#include "cabinet/cabinet_reader.h"

namespace kw::cabinet {

/// Writes entries as files below a host folder that exists. An entry grows under a name of its own and takes
/// its place only when it is whole, replacing a file whose name differs at most in case, and no link is
/// followed. Folders in entry names are made. Refused: names that SafeParts refuses, and a name that differs
/// from an earlier entry's at most in case.
class FolderSink : public EntrySink {
 public:
  /// `folder` is a host path in UTF-8. `storage` must outlive the sink.
  FolderSink(Storage& storage, std::string folder);
  ~FolderSink() override;

  Status Begin(const CabinetEntry& entry) override;
  Status Write(std::span<const std::byte> data) override;
  Status End(const CabinetEntry& entry, const Status& outcome) override;

 private:
  Result<std::string> EnterFolder(const std::string& parent, const std::string& name);
  Result<FolderNames*> NamesIn(const std::string& folder);
  Status OpenPart(const std::string& folder);
  void DropPart();

  Storage& storage_;
  std::string folder_;
  std::unordered_map<std::string, FolderNames> names_;  // by host folder; those in it are no links
  std::unordered_set<std::string> written_;             // entry names in upper case
  std::unique_ptr<StorageFile> file_;
  std::string part_path_;
  std::string final_path_;
  uint64_t position_ = 0;
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_FOLDER_SINK_H_
