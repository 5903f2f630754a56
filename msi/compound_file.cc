#include "msi/compound_file.h"

#include <algorithm>
#include <cstring>

#include "msi/bytes.h"
#include "msi/compound_layout.h"

namespace kw::msi {
namespace {

using namespace layout;

// Deeper nesting is taken for an attack; what walks storages, or lets go of them, may then recurse.
constexpr size_t kMaxDepth = 200;
constexpr size_t kRoomToGrow = 4096;  // sectors

Error Damaged(const std::string& what) {
  return Error{kErrorInstallPackageInvalid, "The file is not a sound database: " + what + "."};
}

std::span<std::byte> WritableBytes(std::string& text) { return std::as_writable_bytes(std::span(text)); }

}  // namespace

Result<std::unique_ptr<CompoundFile>> CompoundFile::Open(std::unique_ptr<StorageFile> file) {
  std::unique_ptr<CompoundFile> compound(new CompoundFile(std::move(file)));
  KW_RETURN_IF_ERROR(compound->Load());
  return compound;
}

Status CompoundFile::Load() {
  KW_ASSIGN_OR_RETURN(const uint64_t file_size, file_->Size());
  KW_RETURN_IF_ERROR(LoadHeader(file_size));
  const char* header = header_.data();
  KW_RETURN_IF_ERROR(LoadFat(GetU32(header + kFatSectorsAt), GetU32(header + kDifatStartAt),
                             GetU32(header + kDifatSectorsAt)));
  KW_RETURN_IF_ERROR(LoadDirectory(GetU32(header + kDirectoryStartAt)));
  const char* root = directory_bytes_.data();
  uint64_t container = GetU64(root + kEntryBytesAt);
  if (shift_ == 9) container &= 0xFFFFFFFF;
  KW_RETURN_IF_ERROR(LoadMini(GetU32(header + kMiniFatStartAt), GetU32(root + kEntryStartAt), container));
  KW_RETURN_IF_ERROR(LoadTree());
  // What no chain reaches is free, whatever the table says of it.
  available_.assign(fat_.size(), false);
  for (size_t sector = 0; sector < fat_.size(); ++sector) {
    if (fresh_[sector]) continue;
    fat_[sector] = kFree;
    available_[sector] = true;
    ++available_count_;
  }
  fresh_.assign(fat_.size(), false);
  std::vector<bool> used(minifat_.size(), false);
  for (const CfEntry* entry : AllEntries()) {
    if (!entry->stream || entry->stream->place_ != CfStream::Place::kMini) continue;
    const std::vector<uint32_t>& chain = entry->stream->chain_;
    for (size_t i = 0; i < chain.size(); ++i) {
      if (used[chain[i]]) return Damaged("two small streams share a sector");
      used[chain[i]] = true;
      // A chain is only as long as its stream, whatever the table says behind its end.
      minifat_[chain[i]] = i + 1 < chain.size() ? chain[i + 1] : kEndOfChain;
    }
  }
  for (size_t sector = minifat_.size(); sector-- > 0;) {
    if (used[sector]) continue;
    minifat_[sector] = kFree;
    mini_free_.push_back(static_cast<uint32_t>(sector));
  }
  return {};
}

Status CompoundFile::LoadHeader(uint64_t file_size) {
  header_.resize(kHeaderSize);
  KW_ASSIGN_OR_RETURN(const size_t got, file_->ReadAt(0, WritableBytes(header_)));
  if (got < kHeaderSize || std::memcmp(header_.data(), kSignature, sizeof kSignature) != 0) {
    return Damaged("it does not begin like one");
  }
  shift_ = GetU16(header_.data() + kSectorShiftAt);
  const int version = GetU16(header_.data() + kMajorVersionAt);
  if (GetU16(header_.data() + kByteOrderAt) != 0xFFFE ||
      !((version == 3 && shift_ == 9) || (version == 4 && shift_ == 12)) ||
      GetU16(header_.data() + kMiniShiftAt) != kMiniShift ||
      GetU32(header_.data() + kMiniCutoffAt) != kMiniCutoff) {
    return Damaged("its header holds unknown sizes");
  }
  const uint64_t sectors = ((file_size + SectorSize() - 1) >> shift_) - 1;
  if (file_size <= SectorSize() || sectors >= kMaxSector) return Damaged("its size is impossible");
  written_end_ = file_size;
  // A small change needs a few sectors more, which must not cost a copy of the whole table.
  fat_.reserve(static_cast<size_t>(sectors) + kRoomToGrow);
  fat_.assign(static_cast<size_t>(sectors), kFree);
  fresh_.assign(fat_.size(), false);  // while loading: the sectors that some chain has claimed
  return {};
}

Status CompoundFile::LoadFat(uint32_t fat_sectors, uint32_t difat_start, uint32_t difat_sectors) {
  const size_t per_sector = SectorSize() / 4;
  if (fat_sectors > fat_.size() || difat_sectors > fat_.size()) return Damaged("its table is cut short");
  const auto claim = [&](uint32_t sector) {
    if (sector >= fat_.size() || fresh_[sector]) return false;
    fresh_[sector] = true;
    return true;
  };
  fat_sectors_.reserve(fat_sectors);
  for (size_t i = 0; i < kHeaderDifat && fat_sectors_.size() < fat_sectors; ++i) {
    fat_sectors_.push_back(GetU32(header_.data() + kDifatAt + 4 * i));
  }
  std::string block(SectorSize(), '\0');
  uint32_t next = difat_start;
  while (fat_sectors_.size() < fat_sectors) {
    if (!claim(next)) return Damaged("the list of its table is broken");
    difat_sectors_.push_back(next);
    KW_ASSIGN_OR_RETURN(const size_t got, file_->ReadAt(SectorOffset(next), WritableBytes(block)));
    if (got < block.size()) return Damaged("the list of its table is cut short");
    for (size_t i = 0; i + 1 < per_sector && fat_sectors_.size() < fat_sectors; ++i) {
      fat_sectors_.push_back(GetU32(block.data() + 4 * i));
    }
    next = GetU32(block.data() + block.size() - 4);
  }
  for (const uint32_t sector : fat_sectors_) {
    if (!claim(sector)) return Damaged("the list of its table is broken");
  }
  fat_dirty_.assign(fat_sectors_.size(), false);
  // The table is read in runs of neighbouring blocks, for speed.
  std::string run;
  for (size_t first = 0; first < fat_sectors_.size();) {
    size_t last = first + 1;
    while (last < fat_sectors_.size() && fat_sectors_[last] == fat_sectors_[last - 1] + 1 &&
           last - first < 512) {
      ++last;
    }
    run.resize((last - first) << shift_);
    KW_ASSIGN_OR_RETURN(const size_t got,
                        file_->ReadAt(SectorOffset(fat_sectors_[first]), WritableBytes(run)));
    if (got < run.size()) return Damaged("its table is cut short");
    const size_t base = first * per_sector;
    const size_t count = base < fat_.size() ? std::min(run.size() / 4, fat_.size() - base) : 0;
    for (size_t i = 0; i < count; ++i) fat_[base + i] = GetU32(run.data() + 4 * i);
    first = last;
  }
  for (const uint32_t sector : fat_sectors_) fat_[sector] = kFatSector;
  for (const uint32_t sector : difat_sectors_) fat_[sector] = kDifatSector;
  return {};
}

Result<std::vector<uint32_t>> CompoundFile::WalkChain(uint32_t start, uint64_t min_sectors,
                                                      const char* what) {
  std::vector<uint32_t> chain;
  if (min_sectors > fat_.size()) return Damaged(std::string(what) + " is cut short");
  chain.reserve(static_cast<size_t>(min_sectors));
  for (uint32_t sector = start; sector != kEndOfChain; sector = fat_[sector]) {
    if (sector >= fat_.size() || fresh_[sector]) return Damaged(std::string(what) + " is broken");
    fresh_[sector] = true;
    chain.push_back(sector);
  }
  if (chain.size() < min_sectors) return Damaged(std::string(what) + " is cut short");
  return chain;
}

Result<std::string> CompoundFile::ReadChain(const std::vector<uint32_t>& chain, uint64_t size) {
  std::string bytes(static_cast<size_t>(size), '\0');
  KW_RETURN_IF_ERROR(ReadSectors(chain, 0, WritableBytes(bytes)));
  return bytes;
}

Status CompoundFile::ReadSectors(const std::vector<uint32_t>& chain, uint64_t offset,
                                 std::span<std::byte> buffer) {
  size_t done = 0;
  while (done < buffer.size()) {
    const uint64_t at = offset + done;
    const size_t index = static_cast<size_t>(at >> shift_);
    const uint64_t within = at & (SectorSize() - 1);
    if (index >= chain.size()) return Damaged("a stream is shorter than its size");
    size_t run = 1;
    while (index + run < chain.size() && chain[index + run] == chain[index + run - 1] + 1 &&
           (static_cast<uint64_t>(run) << shift_) - within < buffer.size() - done) {
      ++run;
    }
    const size_t length = static_cast<size_t>(
        std::min<uint64_t>(buffer.size() - done, (static_cast<uint64_t>(run) << shift_) - within));
    KW_ASSIGN_OR_RETURN(const size_t got,
                        file_->ReadAt(SectorOffset(chain[index]) + within, buffer.subspan(done, length)));
    if (got < length) return Damaged("the file is cut short");
    done += length;
  }
  return {};
}

Status CompoundFile::LoadDirectory(uint32_t start) {
  KW_ASSIGN_OR_RETURN(directory_chain_, WalkChain(start, 1, "its directory"));
  KW_ASSIGN_OR_RETURN(directory_bytes_,
                      ReadChain(directory_chain_, static_cast<uint64_t>(directory_chain_.size()) << shift_));
  if (directory_bytes_[kEntryTypeAt] != kRootEntry) return Damaged("its directory has no root");
  return {};
}

Status CompoundFile::LoadMini(uint32_t minifat_start, uint32_t container_start, uint64_t container_size) {
  if (container_size == 0) {
    // Some writers leave the tables of a container that has become empty.
    if (minifat_start < kMaxSector) {
      KW_ASSIGN_OR_RETURN(minifat_chain_, WalkChain(minifat_start, 0, "the table of small streams"));
      minifat_bytes_.assign(minifat_chain_.size() << shift_, '\xFF');
      KW_ASSIGN_OR_RETURN(minifat_bytes_, ReadChain(minifat_chain_, minifat_bytes_.size()));
    }
    return {};
  }
  if (container_size > static_cast<uint64_t>(fat_.size()) << shift_) {
    return Damaged("the container of small streams is cut short");
  }
  const uint64_t count = (container_size + kMiniSize - 1) >> kMiniShift;
  const uint64_t per_sector = SectorSize() / 4;
  KW_ASSIGN_OR_RETURN(minifat_chain_, WalkChain(minifat_start, (count + per_sector - 1) / per_sector,
                                                "the table of small streams"));
  KW_ASSIGN_OR_RETURN(minifat_bytes_,
                      ReadChain(minifat_chain_, static_cast<uint64_t>(minifat_chain_.size()) << shift_));
  KW_ASSIGN_OR_RETURN(mini_chain_, WalkChain(container_start, (container_size + SectorSize() - 1) >> shift_,
                                             "the container of small streams"));
  minifat_.resize(static_cast<size_t>(count));
  for (size_t i = 0; i < minifat_.size(); ++i) minifat_[i] = GetU32(minifat_bytes_.data() + 4 * i);
  return {};
}

Status CompoundFile::LoadStream(CfEntry& entry, uint32_t start, uint64_t size) {
  // Sizes of 64 bits would not bear being rounded up.
  if (size > static_cast<uint64_t>(fat_.size()) << shift_) return Damaged("a stream is cut short");
  auto stream = std::make_shared<CfStream>();
  stream->size_ = size;
  if (size >= kMiniCutoff) {
    stream->place_ = CfStream::Place::kSectors;
    KW_ASSIGN_OR_RETURN(stream->chain_, WalkChain(start, (size + SectorSize() - 1) >> shift_, "a stream"));
    // A file cut off inside its last sector has lost bytes unless they were only padding.
    const size_t last = static_cast<size_t>((size - 1) >> shift_);
    if (SectorOffset(stream->chain_[last]) + ((size - 1) & (SectorSize() - 1)) >= written_end_) {
      return Damaged("the file is cut short");
    }
  } else if (size > 0) {
    stream->place_ = CfStream::Place::kMini;
    const size_t needed = static_cast<size_t>((size + kMiniSize - 1) >> kMiniShift);
    uint32_t sector = start;
    while (sector != kEndOfChain && stream->chain_.size() < needed) {
      if (sector >= minifat_.size()) return Damaged("a small stream is broken");
      stream->chain_.push_back(sector);
      sector = minifat_[sector];
    }
    if (stream->chain_.size() < needed) return Damaged("a small stream is cut short");
    const uint64_t end =
        (static_cast<uint64_t>(stream->chain_.back()) << kMiniShift) + ((size - 1) & (kMiniSize - 1));
    if (SectorOffset(mini_chain_[static_cast<size_t>(end >> shift_)]) + (end & (SectorSize() - 1)) >=
        written_end_) {
      return Damaged("the file is cut short");
    }
  }
  entry.stream = std::move(stream);
  return {};
}

Status CompoundFile::LoadTree() {
  const uint32_t count = static_cast<uint32_t>(directory_bytes_.size() / kEntrySize);
  std::vector<bool> seen(count, false);
  // An entry of the directory still to be read, and the storage that it belongs to.
  struct Item {
    uint32_t id;
    CfEntry* parent;
    size_t depth;
  };
  std::vector<Item> open;
  const auto fill = [&](CfEntry& entry, const char* raw) {
    entry.type = static_cast<uint8_t>(raw[kEntryTypeAt]);
    std::memcpy(entry.class_id.data(), raw + kEntryClassAt, 16);
    entry.state_bits = GetU32(raw + kEntryStateAt);
    entry.created = GetU64(raw + kEntryCreatedAt);
    entry.modified = GetU64(raw + kEntryModifiedAt);
    const size_t units = std::min<size_t>(GetU16(raw + kEntryNameBytes) / 2, 32);
    for (size_t i = 0; i + 1 < units; ++i) entry.name.push_back(static_cast<char16_t>(GetU16(raw + 2 * i)));
  };
  fill(root_, directory_bytes_.data());
  seen[0] = true;
  open.push_back({GetU32(directory_bytes_.data() + kEntryChildAt), &root_, 1});
  while (!open.empty()) {
    const auto [id, parent, depth] = open.back();
    open.pop_back();
    if (id == kNoEntry) continue;
    if (id >= count || seen[id]) return Damaged("its directory is broken");
    seen[id] = true;
    const char* raw = directory_bytes_.data() + static_cast<size_t>(id) * kEntrySize;
    auto entry = std::make_unique<CfEntry>();
    fill(*entry, raw);
    entry->id = id;
    if (entry->name.empty() || parent->children.count(entry->name) != 0) {
      return Damaged("its directory names an entry twice or not at all");
    }
    if (entry->type == kStreamEntry) {
      uint64_t size = GetU64(raw + kEntryBytesAt);
      if (shift_ == 9) size &= 0xFFFFFFFF;
      KW_RETURN_IF_ERROR(LoadStream(*entry, GetU32(raw + kEntryStartAt), size));
    } else if (entry->type == kStorageEntry) {
      if (depth == kMaxDepth) return Damaged("its storages lie too deep in one another");
      open.push_back({GetU32(raw + kEntryChildAt), entry.get(), depth + 1});
    } else {
      return Damaged("its directory holds an entry of an unknown kind");
    }
    open.push_back({GetU32(raw + kEntryLeftAt), parent, depth});
    open.push_back({GetU32(raw + kEntryRightAt), parent, depth});
    const std::u16string name = entry->name;
    parent->children.emplace(name, std::move(entry));
  }
  next_entry_id_ = count;
  for (uint32_t id = count; id-- > 1;) {
    if (!seen[id]) free_entry_ids_.push_back(id);
  }
  return {};
}

std::vector<CfEntry*> CompoundFile::AllEntries() {
  std::vector<CfEntry*> all{&root_};
  for (size_t i = 0; i < all.size(); ++i) {
    for (auto& [name, child] : all[i]->children) all.push_back(child.get());
  }
  return all;
}

std::shared_ptr<CfStream> CompoundFile::Find(const std::u16string& name) const {
  const auto found = root_.children.find(name);
  return found == root_.children.end() ? nullptr : found->second->stream;
}

Result<size_t> CompoundFile::Read(CfStream& stream, uint64_t offset, std::span<std::byte> buffer) {
  if (offset >= stream.size_) return size_t{0};
  const size_t length = static_cast<size_t>(std::min<uint64_t>(buffer.size(), stream.size_ - offset));
  const auto part = buffer.first(length);
  switch (stream.place_) {
    case CfStream::Place::kMemory:
      std::memcpy(part.data(), stream.bytes_.data() + offset, length);
      break;
    case CfStream::Place::kMini:
      KW_RETURN_IF_ERROR(ReadMini(stream.chain_, offset, part));
      break;
    case CfStream::Place::kSectors:
      KW_RETURN_IF_ERROR(ReadSectors(stream.chain_, offset, part));
      break;
  }
  return length;
}

Status CompoundFile::ReadMini(const std::vector<uint32_t>& chain, uint64_t offset,
                              std::span<std::byte> buffer) {
  size_t done = 0;
  while (done < buffer.size()) {
    const uint64_t at = offset + done;
    const uint64_t within = at & (kMiniSize - 1);
    const uint32_t mini = chain[static_cast<size_t>(at >> kMiniShift)];
    const uint64_t position = (static_cast<uint64_t>(mini) << kMiniShift) + within;
    const uint32_t block = static_cast<uint32_t>(position >> shift_);
    const uint64_t in_block = position & (SectorSize() - 1);
    // Small sectors that follow each other in one sector of the container are read together.
    size_t length = static_cast<size_t>(std::min<uint64_t>(buffer.size() - done, kMiniSize - within));
    uint32_t last = mini;
    while (length < buffer.size() - done && in_block + length < SectorSize() &&
           chain[static_cast<size_t>((at + length) >> kMiniShift)] == last + 1) {
      ++last;
      length = static_cast<size_t>(std::min<uint64_t>(buffer.size() - done, length + kMiniSize));
    }
    const auto part = buffer.subspan(done, length);
    const auto dirty = mini_dirty_.find(block);
    if (dirty != mini_dirty_.end()) {
      std::memcpy(part.data(), dirty->second.data() + in_block, length);
    } else {
      KW_ASSIGN_OR_RETURN(const size_t got, file_->ReadAt(SectorOffset(mini_chain_[block]) + in_block, part));
      if (got < length) return Damaged("the file is cut short");
    }
    done += length;
  }
  return {};
}

Result<std::string> CompoundFile::ReadAll(CfStream& stream) {
  std::string bytes(static_cast<size_t>(stream.size_), '\0');
  KW_ASSIGN_OR_RETURN(const size_t got, Read(stream, 0, WritableBytes(bytes)));
  bytes.resize(got);
  return bytes;
}

}  // namespace kw::msi
