#ifndef KITWRIGHT_CABINET_ENTRY_SPLITTER_H_
#define KITWRIGHT_CABINET_ENTRY_SPLITTER_H_

#include <span>
#include <string>
#include <vector>

#include "cabinet/cabinet_reader.h"

namespace kw::cabinet {

/// `failure` of an entry of `cabinet`, in a sentence that names both.
Status EntryError(const std::string& entry, const std::string& cabinet, const Status& failure);

/// Whether the cabinet is to blame, of which all that is sound shall come, and not the machine.
bool IsFaultOfTheCabinet(const Status& failure);
/// Makes `kept` tell of the first failure, but of the machine's before those of the cabinet.
void KeepFailure(Status& kept, const Status& next);

/// Hands the unpacked stream of one folder to a sink, entry by entry. The entries are those wanted, ordered
/// by offset and not overlapping.
class EntrySplitter {
 public:
  EntrySplitter(std::string cabinet, std::vector<const CabinetEntry*> entries, EntrySink& sink);

  /// The next bytes of the folder.
  void Take(std::span<const std::byte> data);
  /// No more bytes come: whatever is still open or to come fails with `outcome`, or for want of data.
  void Finish(const Status& outcome);
  /// True when no entry is left.
  bool done() const { return next_ == entries_.size(); }
  /// The failure of any entry that KeepFailure prefers.
  const Status& first_failure() const { return first_failure_; }

 private:
  void Close(Status outcome);
  void Fail(const CabinetEntry& entry, const Status& failure);

  std::string cabinet_;
  std::vector<const CabinetEntry*> entries_;
  EntrySink& sink_;
  size_t next_ = 0;
  uint64_t position_ = 0;
  bool open_ = false;     // the sink has begun entries_[next_]
  bool skipped_ = false;  // entries_[next_] has failed already; its data is passed over
  Status write_outcome_;
  Status first_failure_;
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_ENTRY_SPLITTER_H_
