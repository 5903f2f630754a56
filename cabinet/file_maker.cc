#include "cabinet/file_maker.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kw::cabinet {
namespace {

constexpr size_t kFilesInBatch = 64;
constexpr size_t kBytesInBatch = 256 * 1024;
constexpr size_t kBatches = 6;
// More threads would wait for each other at the folders.
constexpr unsigned kMostThreads = 4;

}  // namespace

struct FileMaker::Batch {
  struct File {
    std::string entry;
    std::string path;
    std::vector<std::byte> content;
    FileStamp stamp;
  };

  static Status Make(Storage& storage, const File& file) {
    KW_ASSIGN_OR_RETURN(auto made, storage.Open(file.path, Storage::Mode::kCreateNew));
    Status status = made->WriteAt(0, file.content);
    made.reset();
    if (status.ok()) status = StampHostFile(file.path, file.stamp);
    if (!status.ok()) storage.Remove(file.path).IgnoreError();
    return status;
  }

  void MakeAll(Storage& storage) {
    for (const File& file : files) {
      const Status status = Make(storage, file);
      if (!status.ok()) failures.push_back({file.entry, status});
    }
    files.clear();
    bytes = 0;
  }

  std::vector<File> files;
  size_t bytes = 0;
  std::vector<EntryFailure> failures;
  Workers::Task task;
};

FileMaker::FileMaker(Storage& storage) : storage_(storage) {
  for (size_t i = 0; i < kBatches; ++i) {
    Batch& batch = *batches_.emplace_back(std::make_unique<Batch>());
    batch.task.run = [this, &batch] { batch.MakeAll(storage_); };
  }
}

FileMaker::~FileMaker() = default;

void FileMaker::Add(const CabinetEntry& entry, std::string path, std::vector<std::byte> content) {
  Batch& batch = Filling();
  batch.bytes += content.size();
  batch.files.push_back({entry.name, std::move(path), std::move(content), entry.stamp});
  if (batch.files.size() >= kFilesInBatch || batch.bytes >= kBytesInBatch) Start();
}

void FileMaker::Start() {
  if (workers_ == nullptr) workers_ = std::make_unique<Workers>(std::min(DefaultThreads(), kMostThreads));
  workers_->Start(Filling().task);
  ++filling_;
  Collect(Filling());
}

// Takes back a batch that may still be worked on.
void FileMaker::Collect(Batch& batch) {
  if (workers_ != nullptr) workers_->Wait(batch.task);
  std::move(batch.failures.begin(), batch.failures.end(), std::back_inserter(failures_));
  batch.failures.clear();
}

std::vector<EntryFailure> FileMaker::Settle() {
  if (workers_ == nullptr) {
    Filling().MakeAll(storage_);
  } else if (!Filling().files.empty()) {
    Start();
  }
  for (const auto& batch : batches_) Collect(*batch);
  return std::move(failures_);
}

}  // namespace kw::cabinet
