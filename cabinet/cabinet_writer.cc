#include "cabinet/cabinet_writer.h"

#include <algorithm>
#include <cstring>

#include "cabinet/block_encoder.h"
#include "cabinet/cabinet_plan.h"
#include "cabinet/workers.h"

namespace kw::cabinet {
namespace {

// Blocks that one task packs, and the number of blocks after which one stands alone, so that batches can be
// packed and unpacked beside each other. Fixed, since the bytes must not depend on the threads.
constexpr size_t kBlocksInBatch = 16;
constexpr size_t kBatchSize = kBlocksInBatch * kBlockSize;
constexpr size_t kPackedBlockRoom = kDataRecordSize + kMaxCompressedBlock;

// Some blocks of a folder on their way from the files to the cabinet.
struct Batch {
  std::vector<std::byte> content = std::vector<std::byte>(kBatchSize);
  size_t content_size = 0;
  std::vector<std::byte> packed = std::vector<std::byte>(kBlocksInBatch * kPackedBlockRoom);
  size_t packed_size = 0;
  BlockEncoder encoder;
  Workers::Task task;

  void Pack(bool compress) {
    packed_size = 0;
    encoder.Restart();
    for (size_t pos = 0; pos < content_size; pos += kBlockSize) {
      const std::span block(content.data() + pos, std::min(kBlockSize, content_size - pos));
      std::byte* record = packed.data() + packed_size;
      std::byte* data = record + kDataRecordSize;
      size_t size = block.size();
      if (compress) {
        size = encoder.Encode(content.data(), pos, block.size(), {data, kMaxCompressedBlock});
      } else {
        std::memcpy(data, block.data(), size);
      }
      PutU16(record + 4, static_cast<uint16_t>(size));
      PutU16(record + 6, static_cast<uint16_t>(block.size()));
      PutU32(record, Checksum({record + 4, 4}, Checksum({data, size}, 0)));
      packed_size += kDataRecordSize + size;
    }
  }
};

class Writer {
 public:
  Writer(Storage& storage, StorageFile& out, const WriterOptions& options, const CabinetPlan& plan)
      : storage_(storage),
        out_(out),
        options_(options),
        plan_(plan),
        end_(plan.head_size),
        folder_offsets_(plan.folders.size(), plan.head_size),
        batches_(2 * Threads() + 1),
        workers_(Threads()) {
    for (Batch& batch : batches_) {
      batch.task.run = [&batch, compress = options.compress] { batch.Pack(compress); };
    }
  }

  Result<uint64_t> Write(const std::vector<CabinetFile>& files) {
    size_t folder = 0;
    for (size_t i = 0; i < files.size(); ++i) {
      const PlannedFile& planned = plan_.files[i];
      if (planned.folder != folder) {
        KW_RETURN_IF_ERROR(Flush());
        folder = planned.folder;
        folder_offsets_[folder] = end_;
      }
      if (planned.size > 0) KW_RETURN_IF_ERROR(Append(files[i].host_path, planned.size));
    }
    KW_RETURN_IF_ERROR(Flush());
    const std::vector<std::byte> head = HeadOf(plan_, options_, folder_offsets_, end_);
    KW_RETURN_IF_ERROR(out_.WriteAt(0, head));
    return end_;
  }

 private:
  unsigned Threads() const {
    return options_.threads == 0 ? DefaultThreads() : std::min(options_.threads, 8u);
  }

  Status Append(const std::string& path, uint32_t size) {
    KW_ASSIGN_OR_RETURN(auto file, storage_.Open(path, Storage::Mode::kRead));
    for (uint32_t pos = 0; pos < size;) {
      Batch& batch = batches_[filling_ % batches_.size()];
      const size_t want = std::min<size_t>(kBatchSize - batch.content_size, size - pos);
      KW_ASSIGN_OR_RETURN(const size_t got,
                          file->ReadAt(pos, {batch.content.data() + batch.content_size, want}));
      if (got != want) return {kErrorIo, path + " became shorter while it was read."};
      batch.content_size += got;
      pos += static_cast<uint32_t>(got);
      if (batch.content_size == kBatchSize) KW_RETURN_IF_ERROR(StartBatch());
    }
    return {};
  }

  Status StartBatch() {
    workers_.Start(batches_[filling_ % batches_.size()].task);
    ++filling_;
    // The next place in the ring must be free before it is filled.
    return filling_ - written_ == batches_.size() ? WriteOldest() : Status();
  }

  Status WriteOldest() {
    Batch& batch = batches_[written_ % batches_.size()];
    workers_.Wait(batch.task);
    ++written_;
    batch.content_size = 0;
    if (end_ + batch.packed_size > std::min<uint64_t>(options_.max_size, kMaxCabinetSize)) {
      return {kErrorUnsupported, "The files are too large for one cabinet."};
    }
    KW_RETURN_IF_ERROR(out_.WriteAt(end_, {batch.packed.data(), batch.packed_size}));
    end_ += batch.packed_size;
    return {};
  }

  // Packs and writes all that was read so far.
  Status Flush() {
    if (batches_[filling_ % batches_.size()].content_size > 0) KW_RETURN_IF_ERROR(StartBatch());
    while (written_ < filling_) KW_RETURN_IF_ERROR(WriteOldest());
    return {};
  }

  Storage& storage_;
  StorageFile& out_;
  const WriterOptions& options_;
  const CabinetPlan& plan_;
  uint64_t end_;
  std::vector<uint64_t> folder_offsets_;
  std::vector<Batch> batches_;
  size_t filling_ = 0;  // batches started so far; the next one is being filled
  size_t written_ = 0;  // batches written so far
  Workers workers_;     // last, so that no task outlives what it works on
};

}  // namespace

Result<WrittenCabinet> WritePlannedCabinet(Storage& storage, const std::string& path,
                                           const std::vector<CabinetFile>& files,
                                           const WriterOptions& options, const CabinetPlan& plan) {
  const std::string beside = path + ".new";
  WrittenCabinet written;
  Status status = [&]() -> Status {
    KW_ASSIGN_OR_RETURN(auto out, OpenAnew(storage, beside));
    KW_ASSIGN_OR_RETURN(written.size, Writer(storage, *out, options, plan).Write(files));
    return {};
  }();
  if (status.ok()) status = storage.Rename(beside, path);
  if (!status.ok()) {
    storage.Remove(beside).IgnoreError();
    return status;
  }
  written.content_size = plan.content_size;
  written.folders = plan.folders.size();
  for (const PlannedFile& file : plan.files) written.sizes.push_back(file.size);
  return written;
}

Result<WrittenCabinet> WriteCabinet(Storage& storage, const std::string& path,
                                    const std::vector<CabinetFile>& files, const WriterOptions& options) {
  KW_ASSIGN_OR_RETURN(const CabinetPlan plan, PlanCabinet(storage, files, options));
  return WritePlannedCabinet(storage, path, files, options, plan);
}

}  // namespace kw::cabinet
