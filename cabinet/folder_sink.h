#ifndef KITWRIGHT_CABINET_FOLDER_SINK_H_
#define KITWRIGHT_CABINET_FOLDER_SINK_H_

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/storage.h"
#include "cabinet/cabinet_reader.h"
#include "cabinet/file_maker.h"

namespace kw::cabinet {

/// Writes entries as files below a host folder that exists. An entry whose content comes at once is written
/// at its place if nothing is there; any other grows under a name of its own and takes its place only when it
/// is whole, replacing a file whose name differs at most in case. No link is followed. Folders in entry names
/// are made. Refused: names that SafeParts refuses, and a name that differs from an earlier entry's at most
/// in case.
class FolderSink : public EntrySink {
 public:
  enum class Making {
    kOneByOne,
    kTogether  ///< small new files are made by several threads, and Settle must be called at the end
  };
  /// `folder` is a host path in UTF-8. `storage` must outlive the sink.
  FolderSink(Storage& storage, std::string folder, Making making = Making::kOneByOne);
  ~FolderSink() override;

  Status Begin(const CabinetEntry& entry) override;
  Status Write(std::span<const std::byte> data) override;
  Status End(const CabinetEntry& entry, const Status& outcome) override;
  std::vector<EntryFailure> Settle() override;
  /// Removes the files that were made where nothing was, as far as that can be done. After Settle.
  void TakeBack();

 private:
  Result<std::string> TakeName(const std::vector<std::string>& parts);
  Result<std::string> EnterFolder(const std::string& parent, const std::string& name);
  Result<FolderNames*> NamesIn(const std::string& folder);
  bool ForMaker() const;
  Status OpenFile(bool whole);
  Status OpenPart();
  void DropPart();

  Storage& storage_;
  std::string folder_;
  std::unordered_map<std::string, FolderNames> names_;  // by host folder; those in it are no links
  std::unordered_set<std::string> written_;             // entry names in upper case
  std::unordered_set<std::string> entered_;             // and those of the folders in them
  std::unique_ptr<StorageFile> file_;
  std::string part_path_;   // of the file that is being written, which may be the final one
  std::string final_path_;  // of the present entry
  std::string final_folder_;
  std::vector<std::pair<const std::string*, const std::string*>> made_;  // folders and names in names_
  uint64_t size_ = 0;                                                    // of the present entry
  const std::string* final_name_ = nullptr;                              // in names_
  bool place_is_free_ = false;                                           // nothing is at final_path_
  uint64_t position_ = 0;
  std::unique_ptr<FileMaker> maker_;  // when files are made together
  std::vector<std::byte> for_maker_;  // the whole content of the present entry, unless it has a file_
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_FOLDER_SINK_H_
