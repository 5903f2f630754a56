#ifndef KITWRIGHT_CABINET_FILE_MAKER_H_
#define KITWRIGHT_CABINET_FILE_MAKER_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "base/storage.h"
#include "cabinet/cabinet_reader.h"
#include "cabinet/workers.h"

namespace kw::cabinet {

/// Makes many small files, several at once: making a file takes longer than unpacking it. One thread adds
/// them.
class FileMaker {
 public:
  /// Content that is worth handing over; larger files do not come in such numbers.
  static constexpr size_t kLargest = 128 * 1024;

  /// `storage` must outlive the maker and be fit for several threads.
  explicit FileMaker(Storage& storage);
  ~FileMaker();

  /// Makes the new file `path` for `entry`, later, with `content` (kLargest bytes at most) and the entry's
  /// stamp. Nothing of a file that fails stays.
  void Add(const CabinetEntry& entry, std::string path, std::vector<std::byte> content);

  /// Waits until all files are made, and gives those that could not be since the last call, in no order.
  std::vector<EntryFailure> Settle();

 private:
  struct Batch;
  Batch& Filling() { return *batches_[filling_ % batches_.size()]; }
  void Start();
  void Collect(Batch& batch);

  Storage& storage_;
  std::vector<std::unique_ptr<Batch>> batches_;
  size_t filling_ = 0;  // batches started so far; the next one is being filled
  std::vector<EntryFailure> failures_;
  std::unique_ptr<Workers> workers_;  // made when first needed; last, so that no task outlives its batch
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_FILE_MAKER_H_
