#include "base/testing/faulty_storage.h"

namespace kw::testing {
namespace {

constexpr size_t kSector = 512;

}  // namespace

void FaultyStorage::Arm(Fault fault, int call, int number, bool forever) {
  fault_ = fault;
  at_ = call;
  number_ = number;
  forever_ = forever || fault == Fault::kKill;
  calls_ = 0;
  failed_sync_ = false;
}

Status FaultyStorage::Call() {
  const std::lock_guard lock(mutex_);
  ++calls_;
  if (fault_ == Fault::kNone || calls_ < at_ || (calls_ > at_ && !forever_)) return {};
  return {number_, "Call " + std::to_string(calls_) + " was made to fail."};
}

class FaultyFile : public StorageFile {
 public:
  FaultyFile(FaultyStorage& storage, std::unique_ptr<StorageFile> inner)
      : storage_(storage), inner_(std::move(inner)) {}

  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
    if (storage_.count_reads) KW_RETURN_IF_ERROR(storage_.Call());
    return inner_->ReadAt(offset, buffer);
  }
  Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
    const Status status = storage_.Call();
    if (status.ok()) return inner_->WriteAt(offset, data);
    if (storage_.fault_ == FaultyStorage::Fault::kShortWrite && data.size() > kSector) {
      KW_RETURN_IF_ERROR(inner_->WriteAt(offset, data.first(data.size() / 2 / kSector * kSector)));
    }
    return status;
  }
  Result<uint64_t> Size() override { return inner_->Size(); }
  Status Truncate(uint64_t size) override {
    KW_RETURN_IF_ERROR(storage_.Call());
    return inner_->Truncate(size);
  }
  Status Sync() override {
    Status status = storage_.Call();
    storage_.failed_sync_ = storage_.failed_sync_ || !status.ok();
    if (!status.ok()) return status;
    return inner_->Sync();
  }

 private:
  FaultyStorage& storage_;
  std::unique_ptr<StorageFile> inner_;
};

Result<std::unique_ptr<StorageFile>> FaultyStorage::Open(const std::string& path, Mode mode) {
  KW_RETURN_IF_ERROR(Call());
  KW_ASSIGN_OR_RETURN(auto file, inner_.Open(path, mode));
  return std::unique_ptr<StorageFile>(std::make_unique<FaultyFile>(*this, std::move(file)));
}

Status FaultyStorage::Rename(const std::string& from, const std::string& to) {
  KW_RETURN_IF_ERROR(Call());
  return inner_.Rename(from, to);
}

Status FaultyStorage::Remove(const std::string& path) {
  KW_RETURN_IF_ERROR(Call());
  return inner_.Remove(path);
}

Status FaultyStorage::CreateFolder(const std::string& path) {
  KW_RETURN_IF_ERROR(Call());
  return inner_.CreateFolder(path);
}

}  // namespace kw::testing
