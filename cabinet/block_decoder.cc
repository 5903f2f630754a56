#include "cabinet/block_decoder.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cabinet/history_inflater.h"
#include "cabinet/workers.h"

namespace kw::cabinet {
namespace {

constexpr size_t kBlocksInBatch = 16;
// Bytes that are read at once; more only where a batch needs them.
constexpr size_t kReadSize = 192 * 1024;
constexpr size_t kPackedBlockRoom = kDataRecordSize + 255 + kMaxCompressedBlock;
constexpr size_t kHistory = kBlockSize;

enum class BlockState { kWaiting, kDone, kNeedsHistory, kBadChecksum, kBadData };

struct Block {
  std::span<const std::byte> record;  // checksum, sizes and what is reserved
  std::span<const std::byte> data;
  size_t out_offset = 0;
  size_t out_size = 0;
  bool may_look_back = true;
  BlockState state = BlockState::kWaiting;

  // Some writers leave what is reserved out of the checksum.
  bool MatchesItsChecksum() const {
    const uint32_t told = GetU32(record.data());
    if (told == 0) return true;
    const uint32_t sum = Checksum(data, 0);
    return told == Checksum(record.subspan(4), sum) || told == Checksum(record.subspan(4, 4), sum);
  }
};

// Some consecutive blocks of a folder. `content` is the history that they may refer to, and then what they
// unpack to. Both buffers grow to what the blocks at hand take, so that a small cabinet cannot claim much
// memory.
struct Batch {
  std::vector<std::byte> packed;
  size_t packed_size = 0;
  std::vector<std::byte> content;
  size_t content_size = 0;
  bool try_alone = true;
  size_t first_block = 0;
  size_t needed_history = 0;
  std::vector<Block> blocks;
  HistoryInflater inflater;
  Workers::Task task;

  std::span<std::byte> OutOf(const Block& block) {
    return {content.data() + kHistory + block.out_offset, block.out_size};
  }
};

class Decoder {
 public:
  Decoder(StorageFile& file, uint64_t file_size, const CabinetFolder& folder, uint8_t reserved,
          unsigned threads)
      : file_(file),
        folder_(folder),
        record_size_(kDataRecordSize + reserved),
        mszip_((folder.type & kCompressionMask) == kMszip),
        position_(folder.data_offset),
        room_(std::min<size_t>(kBlocksInBatch, folder.blocks)),
        packed_room_(static_cast<size_t>(
            std::min<uint64_t>(room_ * kPackedBlockRoom, file_size - std::min(file_size, position_)))),
        workers_(folder.blocks <= kBlocksInBatch ? 1 : threads) {
    const size_t needed = folder.blocks / kBlocksInBatch + 2;
    batches_.reserve(std::min<size_t>(needed, 2 * threads + 2));
    while (batches_.size() < batches_.capacity()) batches_.emplace_back();
    for (size_t i = 0; i < batches_.size(); ++i) {
      Batch* before = &batches_[(i + batches_.size() - 1) % batches_.size()];
      batches_[i].task.run = [this, i, before] { Unpack(batches_[i], before); };
    }
  }

  Status Run(const TakeBytes& take) {
    while (true) {
      // A batch is filled anew only when the one behind it, which may still read its history there, was
      // delivered.
      while (blocks_read_ < folder_.blocks && filled_ - delivered_ + 1 < batches_.size() &&
             read_outcome_.ok()) {
        Batch& batch = batches_[filled_ % batches_.size()];
        if (filled_ > 0) batch.try_alone = !expect_history_;
        read_outcome_ = Fill(batch);
        if (batch.blocks.empty()) break;
        if (batch.content.size() < kHistory + batch.content_size) {
          batch.content.resize(kHistory + batch.content_size);
        }
        ++filled_;
        workers_.Start(batch.task);
      }
      if (delivered_ == filled_) return read_outcome_;
      Batch& batch = batches_[delivered_ % batches_.size()];
      workers_.Wait(batch.task);
      expect_history_ = batch.needed_history * 2 > batch.blocks.size();
      bool more = true;
      KW_RETURN_IF_ERROR(Deliver(batch, take, more));
      if (!more) return {};
      ++delivered_;
    }
  }

 private:
  // Reads as many whole blocks as have room.
  Status Fill(Batch& batch) {
    batch.blocks.clear();
    batch.content_size = 0;
    batch.first_block = blocks_read_;
    batch.packed.resize(packed_room_);
    std::copy(carry_.begin(), carry_.end(), batch.packed.begin());
    batch.packed_size = carry_.size();
    size_t at = 0;
    bool more = true;
    while (more && blocks_read_ < folder_.blocks && batch.blocks.size() < room_) {
      const size_t want = std::min(kReadSize, batch.packed.size() - batch.packed_size);
      KW_ASSIGN_OR_RETURN(const size_t got,
                          file_.ReadAt(position_, std::span(batch.packed).subspan(batch.packed_size, want)));
      position_ += got;
      batch.packed_size += got;
      more = got > 0;
      KW_RETURN_IF_ERROR(TakeBlocks(batch, at));
    }
    carry_.assign(batch.packed.begin() + static_cast<ptrdiff_t>(at),
                  batch.packed.begin() + static_cast<ptrdiff_t>(batch.packed_size));
    if (batch.blocks.empty()) return BlockError(blocks_read_, "is cut off");
    return {};
  }

  // Takes the whole blocks that lie at `at` of what was read, as far as there is room, and moves `at` behind
  // them.
  Status TakeBlocks(Batch& batch, size_t& at) {
    while (blocks_read_ < folder_.blocks && batch.blocks.size() < room_) {
      if (batch.packed_size - at < record_size_) break;
      const std::byte* record = batch.packed.data() + at;
      const size_t packed = GetU16(record + 4);
      const size_t unpacked = GetU16(record + 6);
      if (packed > kMaxCompressedBlock || unpacked > kBlockSize || unpacked == 0 ||
          (!mszip_ && packed != unpacked)) {
        return BlockError(blocks_read_, "has impossible sizes");
      }
      if (batch.packed_size - at < record_size_ + packed) break;
      Block& block = batch.blocks.emplace_back();
      block.record = {record, record_size_};
      block.data = {record + record_size_, packed};
      block.out_offset = batch.content_size;
      block.out_size = unpacked;
      block.may_look_back = !short_block_read_;
      short_block_read_ |= unpacked < kBlockSize;
      batch.content_size += unpacked;
      at += record_size_ + packed;
      ++blocks_read_;
    }
    return {};
  }

  // Runs in a worker. `before` is the batch before this one, unless this is the first.
  void Unpack(Batch& batch, Batch* before) {
    batch.needed_history = 0;
    bool looks_outside = batch.content_size < kHistory;  // a short batch hands on bytes of the one before
    for (Block& block : batch.blocks) {
      if (!block.MatchesItsChecksum()) {
        block.state = BlockState::kBadChecksum;
      } else if (!mszip_) {
        std::copy(block.data.begin(), block.data.end(), batch.OutOf(block).begin());
        block.state = BlockState::kDone;
      } else {
        UnpackAlone(batch, block);
      }
      if (block.state != BlockState::kNeedsHistory) continue;
      ++batch.needed_history;
      looks_outside |= block.out_offset < kHistory;
    }
    if (looks_outside) FetchHistory(batch, before);
    for (Block& block : batch.blocks) {
      if (block.state != BlockState::kNeedsHistory) continue;
      const size_t history = batch.first_block > 0 ? kHistory : std::min(block.out_offset, kHistory);
      std::byte* start = batch.content.data() + kHistory + block.out_offset - history;
      const bool good =
          batch.inflater.InflateBehind(block.data.subspan(2), history, {start, history + block.out_size});
      block.state = good ? BlockState::kDone : BlockState::kBadData;
    }
  }

  static void UnpackAlone(Batch& batch, Block& block) {
    if (block.data.size() < 2 || block.data[0] != std::byte{'C'} || block.data[1] != std::byte{'K'}) {
      block.state = BlockState::kBadData;
      return;
    }
    // A batch whose first block stands alone need not wait for the one before.
    const bool worth_a_try = batch.try_alone || &block == &batch.blocks.front() || !block.may_look_back;
    if (worth_a_try && batch.inflater.InflateAlone(block.data.subspan(2), batch.OutOf(block))) {
      block.state = BlockState::kDone;
    } else {
      // Behind a block that is not full readers differ in what lies how far back.
      block.state = block.may_look_back ? BlockState::kNeedsHistory : BlockState::kBadData;
    }
  }

  void FetchHistory(Batch& batch, const Batch* before) {
    if (batch.first_block == 0) return;
    workers_.Wait(before->task);
    std::copy_n(before->content.begin() + static_cast<ptrdiff_t>(before->content_size), kHistory,
                batch.content.begin());
  }

  Status Deliver(Batch& batch, const TakeBytes& take, bool& more) {
    size_t good = 0;
    while (good < batch.blocks.size() && batch.blocks[good].state == BlockState::kDone) ++good;
    const size_t size = good == batch.blocks.size() ? batch.content_size : batch.blocks[good].out_offset;
    more = take({batch.content.data() + kHistory, size});
    if (!more || good == batch.blocks.size()) return {};
    return BlockError(batch.first_block + good, batch.blocks[good].state == BlockState::kBadChecksum
                                                    ? "does not match its checksum"
                                                    : "is damaged");
  }

  static Status BlockError(size_t block, const char* what) {
    return {kErrorInvalidData, "data block " + std::to_string(block + 1) + " " + what + "."};
  }

  StorageFile& file_;
  const CabinetFolder& folder_;
  const size_t record_size_;
  const bool mszip_;
  uint64_t position_;
  const size_t room_;         // blocks in a batch
  const size_t packed_room_;  // bytes of them, packed, at most
  size_t blocks_read_ = 0;
  bool short_block_read_ = false;
  std::vector<std::byte> carry_;  // read already, but behind the last whole block
  Status read_outcome_;
  bool expect_history_ = false;
  std::vector<Batch> batches_;
  size_t filled_ = 0;
  size_t delivered_ = 0;
  Workers workers_;  // last, so that no task outlives what it works on
};

}  // namespace

Status DecodeFolder(StorageFile& file, const CabinetFolder& folder, uint8_t reserved_data, unsigned threads,
                    const TakeBytes& take) {
  KW_ASSIGN_OR_RETURN(const uint64_t file_size, file.Size());
  return Decoder(file, file_size, folder, reserved_data,
                 threads == 0 ? DefaultThreads() : std::min(threads, 8u))
      .Run(take);
}

}  // namespace kw::cabinet
