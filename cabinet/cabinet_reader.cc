#include "cabinet/cabinet_reader.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "cabinet/block_decoder.h"
#include "cabinet/entry_splitter.h"
#include "cabinet/mspack_folder.h"

namespace kw::cabinet {
namespace {

constexpr size_t kFirstSpecialFolder = 0xFFFD;

// Reads a file from front to back in large pieces.
class Cursor {
 public:
  // Keeps no more than `file_size` bytes at once, which no piece of the file can exceed.
  Cursor(StorageFile& file, uint64_t file_size, uint64_t offset)
      : file_(file), next_(offset), buffer_(static_cast<size_t>(std::min(file_size, kMostKept))) {}

  // Makes `count` bytes ready; a shorter file is an error.
  Result<const std::byte*> Get(size_t count) {
    if (available() < count) KW_RETURN_IF_ERROR(Refill());
    if (available() < count) return {kErrorInvalidData, "it is cut off."};
    const std::byte* at = buffer_.data() + begin_;
    begin_ += count;
    return at;
  }

  // Text up to a zero byte.
  Result<std::string> GetText() {
    if (available() <= kMaxNameSize) KW_RETURN_IF_ERROR(Refill());
    const auto* from = buffer_.data() + begin_;
    const size_t most = std::min(available(), kMaxNameSize + 1);
    const auto* zero = std::find(from, from + most, std::byte{0});
    if (zero == from + most) return {kErrorInvalidData, "a name in it has no end."};
    begin_ += static_cast<size_t>(zero - from) + 1;
    return std::string(reinterpret_cast<const char*>(from), static_cast<size_t>(zero - from));
  }

 private:
  static constexpr uint64_t kMostKept = 64 * 1024;

  size_t available() const { return end_ - begin_; }

  Status Refill() {
    std::copy(buffer_.begin() + static_cast<ptrdiff_t>(begin_),
              buffer_.begin() + static_cast<ptrdiff_t>(end_), buffer_.begin());
    end_ -= begin_;
    begin_ = 0;
    KW_ASSIGN_OR_RETURN(const size_t got, file_.ReadAt(next_, std::span(buffer_).subspan(end_)));
    next_ += got;
    end_ += got;
    return {};
  }

  StorageFile& file_;
  uint64_t next_;
  std::vector<std::byte> buffer_;
  size_t begin_ = 0;
  size_t end_ = 0;
};

}  // namespace

Result<CabinetReader> CabinetReader::Open(Storage& storage, const std::string& path, int code_page) {
  CabinetReader reader(path);
  KW_ASSIGN_OR_RETURN(reader.file_, storage.Open(path, Storage::Mode::kRead));
  const Status status = reader.ReadHead(code_page);
  if (!status.ok()) return {status.number(), "Could not read the cabinet " + path + ": " + status.message()};
  return reader;
}

Status CabinetReader::ReadHead(int code_page) {
  KW_ASSIGN_OR_RETURN(const uint64_t file_size, file_->Size());
  Cursor cursor(*file_, file_size, 0);
  KW_ASSIGN_OR_RETURN(const std::byte* head, cursor.Get(kHeaderSize));
  if (GetU32(head) != kSignature) return {kErrorInvalidData, "it is not a cabinet."};
  if (head[25] != std::byte{1}) return {kErrorUnsupported, "its version is not known."};
  size_ = GetU32(head + 8);
  const uint32_t files_offset = GetU32(head + 16);
  const size_t folder_count = GetU16(head + 26);
  const size_t file_count = GetU16(head + 28);
  const uint16_t flags = GetU16(head + 30);
  if ((flags & (kFlagPrevious | kFlagNext)) != 0) {
    return {kErrorUnsupported, "it is part of a set of cabinets, which is not supported."};
  }
  if ((flags & kFlagReserve) != 0) {
    KW_ASSIGN_OR_RETURN(const std::byte* reserve, cursor.Get(kReserveFieldsSize));
    reserved_header_ = GetU16(reserve);
    reserved_folder_ = static_cast<uint8_t>(reserve[2]);
    reserved_data_ = static_cast<uint8_t>(reserve[3]);
    // Larger than any piece that the cursor hands out at once.
    KW_RETURN_IF_ERROR(cursor.Get(reserved_header_ / 2).status());
    KW_RETURN_IF_ERROR(cursor.Get(reserved_header_ - reserved_header_ / 2).status());
  }
  for (size_t i = 0; i < folder_count; ++i) {
    KW_ASSIGN_OR_RETURN(const std::byte* record, cursor.Get(kFolderRecordSize + reserved_folder_));
    folders_.push_back({GetU32(record), GetU16(record + 4), GetU16(record + 6)});
    if ((folders_.back().type & kCompressionMask) > kLzx) {
      return {kErrorUnsupported, "it is compressed in a way that is not known."};
    }
  }
  KW_RETURN_IF_ERROR(CheckFolders());
  return ReadEntries(code_page, file_size, files_offset, file_count);
}

// Folders that share their data would let a small cabinet unpack to any size. Here the records of their
// blocks must have room beside each other, which bounds what can come out by the size of the cabinet.
Status CabinetReader::CheckFolders() const {
  std::vector<std::pair<uint64_t, uint64_t>> places;
  for (const CabinetFolder& folder : folders_) {
    if (folder.blocks == 0) continue;
    const uint64_t least = uint64_t{folder.blocks} * (kDataRecordSize + reserved_data_);
    places.emplace_back(folder.data_offset, folder.data_offset + least);
  }
  std::sort(places.begin(), places.end());
  for (size_t i = 1; i < places.size(); ++i) {
    if (places[i - 1].second > places[i].first) return {kErrorInvalidData, "two folders in it share data."};
  }
  return {};
}

Status CabinetReader::ReadEntries(int code_page, uint64_t file_size, uint32_t offset, size_t count) {
  Cursor cursor(*file_, file_size, offset);
  for (size_t i = 0; i < count; ++i) {
    KW_ASSIGN_OR_RETURN(const std::byte* record, cursor.Get(kFileRecordSize));
    CabinetEntry entry;
    entry.size = GetU32(record);
    entry.offset = GetU32(record + 4);
    entry.folder = GetU16(record + 8);
    entry.stamp = {GetU16(record + 10), GetU16(record + 12), GetU16(record + 14)};
    entry.name_is_utf8 = (entry.stamp.attributes & kNameIsUtf8) != 0;
    entry.stamp.attributes &= static_cast<uint16_t>(~kNameIsUtf8);
    if (entry.folder >= kFirstSpecialFolder) {
      return {kErrorUnsupported, "a file in it goes on in another cabinet, which is not supported."};
    }
    if (entry.folder >= folders_.size()) return {kErrorInvalidData, "a file in it has no folder."};
    KW_ASSIGN_OR_RETURN(const std::string name, cursor.GetText());
    entry.name = CodePageToUtf8(name, entry.name_is_utf8 ? 65001 : code_page);
    entries_.push_back(std::move(entry));
  }
  return {};
}

Status CabinetReader::Extract(EntrySink& sink, const Wanted& wanted, unsigned threads) {
  std::vector<std::vector<const CabinetEntry*>> by_folder(folders_.size());
  for (const CabinetEntry& entry : entries_) {
    if (!wanted || wanted(entry)) by_folder[entry.folder].push_back(&entry);
  }
  Status first_failure;
  for (size_t i = 0; i < by_folder.size(); ++i) {
    if (by_folder[i].empty()) continue;
    KeepFailure(first_failure, ExtractFolder(i, by_folder[i], sink, threads));
  }
  for (const EntryFailure& late : sink.Settle()) {
    KeepFailure(first_failure, EntryError(late.entry, path_, late.status));
  }
  return first_failure;
}

Status CabinetReader::ExtractFolder(size_t folder, const std::vector<const CabinetEntry*>& entries,
                                    EntrySink& sink, unsigned threads) {
  std::vector<const CabinetEntry*> ordered = entries;
  std::stable_sort(ordered.begin(), ordered.end(), [](const CabinetEntry* a, const CabinetEntry* b) {
    return a->offset != b->offset ? a->offset < b->offset : a->size == 0 && b->size != 0;
  });
  uint64_t end = 0;
  for (const CabinetEntry* entry : ordered) {
    if (entry->size == 0) continue;  // wherever it says that it lies
    // Shared bytes would let a small cabinet unpack to any size.
    if (end > entry->offset) {
      return {kErrorInvalidData, "Could not unpack \"" + entry->name + "\" from " + path_ +
                                     ": it overlaps another file of the cabinet."};
    }
    end = uint64_t{entry->offset} + entry->size;
  }
  EntrySplitter splitter(path_, std::move(ordered), sink);
  const TakeBytes take = [&splitter](std::span<const std::byte> data) {
    splitter.Take(data);
    return !splitter.done();
  };
  const int compression = folders_[folder].type & kCompressionMask;
  splitter.Finish(compression == kLzx || compression == kQuantum
                      ? DecodeFolderWithMspack(*file_, folders_[folder], reserved_data_, end, take)
                      : DecodeFolder(*file_, folders_[folder], reserved_data_, threads, take));
  return splitter.first_failure();
}

}  // namespace kw::cabinet
