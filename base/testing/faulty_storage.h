#ifndef KITWRIGHT_BASE_TESTING_FAULTY_STORAGE_H_
#define KITWRIGHT_BASE_TESTING_FAULTY_STORAGE_H_

#include <memory>
#include <mutex>
#include <string>

#include "base/storage.h"

namespace kw::testing {

/// A Storage in front of another whose calls can be made to fail. Calls that change or open something are
/// counted; so are reads when `count_reads` is set. Several threads may call it at once.
class FaultyStorage : public Storage {
 public:
  enum class Fault {
    kNone,
    kFail,        ///< the call fails and does nothing
    kShortWrite,  ///< a write puts down whole sectors of its first half, then fails; other calls fail
    kKill         ///< from this call on nothing reaches the files any more, and every call fails
  };

  explicit FaultyStorage(Storage& inner) : inner_(inner) {}

  /// Makes call number `call` (from 1, counted from now) fail with `number`; `forever` all later ones too.
  void Arm(Fault fault, int call, int number, bool forever);
  /// Nothing fails any more.
  void Disarm() { fault_ = Fault::kNone; }
  /// True if one of the calls that failed since the last Arm was to bring a file to the disk.
  bool failed_sync() const { return failed_sync_; }
  /// Calls since the last Arm.
  int calls() const { return calls_; }

  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override;
  Status Rename(const std::string& from, const std::string& to) override;
  Status Remove(const std::string& path) override;
  bool Exists(const std::string& path) override { return inner_.Exists(path); }
  Status CreateFolder(const std::string& path) override;

  bool count_reads = false;

 private:
  friend class FaultyFile;
  Status Call();

  Storage& inner_;
  std::mutex mutex_;  // of what a call counts
  Fault fault_ = Fault::kNone;
  int at_ = 0;
  int number_ = 0;
  bool forever_ = false;
  int calls_ = 0;
  bool failed_sync_ = false;
};

}  // namespace kw::testing

#endif  // KITWRIGHT_BASE_TESTING_FAULTY_STORAGE_H_
