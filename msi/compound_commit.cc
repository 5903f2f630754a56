#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "msi/bytes.h"
#include "msi/compound_file.h"
#include "msi/compound_layout.h"
#include "msi/stream_name.h"

// Writing a state down: small streams, their table, the directory, the sector table and its list all go to
// sectors that the committed state does not use; one write of the header makes them the file.

namespace kw::msi {
namespace {

using namespace layout;

// So many small sectors and entries of the directory may lie idle before the others move together.
constexpr size_t kMiniSlack = 64;
constexpr size_t kEntrySlack = 64;

// The order of siblings is shorter names first, then by upper-case characters. Links sorted siblings into a
// balanced tree. Every level but an incomplete last one is black, which keeps the number of black entries on
// all ways down equal.
uint32_t LinkSiblings(const std::vector<const CfEntry*>& sorted, size_t first, size_t last, size_t depth,
                      size_t red_depth, std::string& bytes) {
  if (first >= last) return kNoEntry;
  const size_t middle = first + (last - first) / 2;
  char* raw = bytes.data() + static_cast<size_t>(sorted[middle]->id) * kEntrySize;
  raw[kEntryColourAt] = depth == red_depth ? 0 : 1;
  PutU32(raw + kEntryLeftAt, LinkSiblings(sorted, first, middle, depth + 1, red_depth, bytes));
  PutU32(raw + kEntryRightAt, LinkSiblings(sorted, middle + 1, last, depth + 1, red_depth, bytes));
  return sorted[middle]->id;
}

uint32_t LinkChildren(const CfEntry& parent, std::string& bytes) {
  std::vector<std::pair<std::u16string, const CfEntry*>> keyed;
  keyed.reserve(parent.children.size());
  for (const auto& [name, child] : parent.children) keyed.emplace_back(WithoutCase(name), child.get());
  std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    if (a.first.size() != b.first.size()) return a.first.size() < b.first.size();
    return a.first != b.first ? a.first < b.first : a.second->name < b.second->name;
  });
  std::vector<const CfEntry*> sorted;
  sorted.reserve(keyed.size());
  for (const auto& [key, child] : keyed) sorted.push_back(child);
  size_t full_levels = 0;
  while ((size_t{2} << full_levels) - 1 <= sorted.size()) ++full_levels;
  return LinkSiblings(sorted, 0, sorted.size(), 0, full_levels, bytes);
}

}  // namespace

Status CompoundFile::Commit(bool durable) {
  if (broken_) return {kErrorIo, "An earlier failure left the database unable to take changes."};
  SweepZombies();
  if (dirty_) {
    KW_RETURN_IF_ERROR(WriteMini());
    KW_RETURN_IF_ERROR(WriteDirectory());
    KW_RETURN_IF_ERROR(WriteTables(durable));
    unsynced_ = !durable;
    untidy_ = true;
  }
  if (!durable) return {};
  if (unsynced_) KW_RETURN_IF_ERROR(Sync());
  unsynced_ = false;
  if (!untidy_) return {};
  KW_RETURN_IF_ERROR(Compact());
  TrimEnd();
  untidy_ = false;
  return {};
}

Status CompoundFile::WriteTables(bool durable) {
  KW_RETURN_IF_ERROR(PlaceFat());
  KW_RETURN_IF_ERROR(WriteFat());
  KW_RETURN_IF_ERROR(SwitchHeader(durable));
  Settle();
  return {};
}

Status CompoundFile::WriteMini() {
  for (CfEntry* entry : AllEntries()) {
    if (entry->stream && entry->stream->place_ == CfStream::Place::kMemory && entry->stream->size_ > 0) {
      KW_RETURN_IF_ERROR(PlaceMini(*entry->stream));
    }
  }
  KW_RETURN_IF_ERROR(CompactMini());
  if (mini_free_.size() > 0 && minifat_.back() == kFree) {
    while (!minifat_.empty() && minifat_.back() == kFree) minifat_.pop_back();
    std::erase_if(mini_free_, [&](uint32_t sector) { return sector >= minifat_.size(); });
  }
  const size_t sectors =
      ((static_cast<uint64_t>(minifat_.size()) << kMiniShift) + SectorSize() - 1) >> shift_;
  std::erase_if(mini_dirty_, [&](const auto& block) { return block.first >= sectors; });
  while (mini_chain_.size() > sectors) {
    Free(mini_chain_.back());
    mini_chain_.pop_back();
  }
  for (auto& [index, block] : mini_dirty_) {
    if (index >= mini_chain_.size() || !fresh_[mini_chain_[index]]) {
      KW_ASSIGN_OR_RETURN(const uint32_t sector, Allocate());
      if (index < mini_chain_.size()) {
        Free(mini_chain_[index]);
        mini_chain_[index] = sector;
      } else {
        mini_chain_.push_back(sector);
      }
    }
    const uint64_t at = SectorOffset(mini_chain_[index]);
    KW_RETURN_IF_ERROR(file_->WriteAt(at, std::as_bytes(std::span(block))));
    written_end_ = std::max(written_end_, at + block.size());
  }
  Link(mini_chain_);
  std::string table(((minifat_.size() * 4 + SectorSize() - 1) >> shift_) << shift_, '\xFF');
  for (size_t i = 0; i < minifat_.size(); ++i) PutU32(table.data() + 4 * i, minifat_[i]);
  KW_RETURN_IF_ERROR(EditChain(minifat_chain_, table, &minifat_bytes_));
  minifat_bytes_ = std::move(table);
  return {};
}

std::string CompoundFile::BuildDirectory() {
  CompactDirectory();
  std::string bytes(((next_entry_id_ * kEntrySize + SectorSize() - 1) >> shift_) << shift_, '\0');
  for (size_t at = 0; at < bytes.size(); at += kEntrySize) {
    PutU32(bytes.data() + at + kEntryLeftAt, kNoEntry);
    PutU32(bytes.data() + at + kEntryRightAt, kNoEntry);
    PutU32(bytes.data() + at + kEntryChildAt, kNoEntry);
  }
  for (const CfEntry* entry : AllEntries()) {
    char* raw = bytes.data() + static_cast<size_t>(entry->id) * kEntrySize;
    for (size_t i = 0; i < entry->name.size(); ++i)
      PutU16(raw + 2 * i, static_cast<uint16_t>(entry->name[i]));
    PutU16(raw + kEntryNameBytes, static_cast<uint16_t>(2 * (entry->name.size() + 1)));
    raw[kEntryTypeAt] = static_cast<char>(entry->type);
    std::memcpy(raw + kEntryClassAt, entry->class_id.data(), 16);
    PutU32(raw + kEntryStateAt, entry->state_bits);
    PutU64(raw + kEntryCreatedAt, entry->created);
    PutU64(raw + kEntryModifiedAt, entry->modified);
    if (entry->type == kStreamEntry) {
      const CfStream& stream = *entry->stream;
      PutU32(raw + kEntryStartAt, stream.chain_.empty() ? kEndOfChain : stream.chain_[0]);
      PutU64(raw + kEntryBytesAt, stream.size_);
    } else {
      PutU32(raw + kEntryChildAt, LinkChildren(*entry, bytes));
    }
    if (entry->type == kRootEntry) {
      raw[kEntryColourAt] = 1;
      PutU32(raw + kEntryStartAt, mini_chain_.empty() ? kEndOfChain : mini_chain_[0]);
      PutU64(raw + kEntryBytesAt, static_cast<uint64_t>(minifat_.size()) << kMiniShift);
    }
  }
  return bytes;
}

Status CompoundFile::WriteDirectory() {
  std::string bytes = BuildDirectory();
  KW_RETURN_IF_ERROR(EditChain(directory_chain_, bytes, &directory_bytes_));
  directory_bytes_ = std::move(bytes);
  return {};
}

size_t CompoundFile::UsedEnd() const {
  size_t end = fat_.size();
  while (end > 0 && fat_[end - 1] == kFree) --end;
  return end;
}

Status CompoundFile::PlaceFat() {
  const size_t per_sector = SectorSize() / 4;
  // Moving a block changes the table again, which may make another block move: until nothing does.
  // The end is looked for once and followed from there: behind it may lie a million free sectors.
  size_t end = UsedEnd();
  for (bool again = true; again;) {
    again = false;
    while (fat_sectors_.size() * per_sector < end) {
      KW_ASSIGN_OR_RETURN(const uint32_t sector, Allocate());
      end = std::max<size_t>(end, sector + 1);
      SetFat(sector, kFatSector);
      fat_sectors_.push_back(sector);
      fat_dirty_.push_back(true);
      difat_dirty_ = true;
      again = true;
    }
    for (size_t block = 0; block < fat_sectors_.size(); ++block) {
      if (!fat_dirty_[block] || fresh_[fat_sectors_[block]]) continue;
      KW_ASSIGN_OR_RETURN(const uint32_t sector, Allocate());
      end = std::max<size_t>(end, sector + 1);
      SetFat(sector, kFatSector);
      Free(fat_sectors_[block]);
      fat_sectors_[block] = sector;
      if (block >= kHeaderDifat) difat_dirty_ = true;
      again = true;
    }
    while (end > 0 && fat_[end - 1] == kFree) --end;
    const bool cut = !again;
    while (cut && fat_sectors_.size() > 1 && (fat_sectors_.size() - 1) * per_sector >= end) {
      Free(fat_sectors_.back());
      while (end > 0 && fat_[end - 1] == kFree) --end;
      fat_sectors_.pop_back();
      fat_dirty_.pop_back();
      difat_dirty_ = true;
      again = true;
    }
    const size_t listed = fat_sectors_.size() > kHeaderDifat ? fat_sectors_.size() - kHeaderDifat : 0;
    const size_t lists = (listed + per_sector - 2) / (per_sector - 1);
    if (!difat_dirty_ && lists == difat_sectors_.size()) continue;
    difat_dirty_ = true;
    while (difat_sectors_.size() > lists) {
      Free(difat_sectors_.back());
      difat_sectors_.pop_back();
      again = true;
    }
    for (size_t i = 0; i < lists; ++i) {
      if (i < difat_sectors_.size() && fresh_[difat_sectors_[i]]) continue;
      KW_ASSIGN_OR_RETURN(const uint32_t sector, Allocate());
      end = std::max<size_t>(end, sector + 1);
      SetFat(sector, kDifatSector);
      if (i < difat_sectors_.size()) {
        Free(difat_sectors_[i]);
        difat_sectors_[i] = sector;
      } else {
        difat_sectors_.push_back(sector);
      }
      again = true;
    }
  }
  return {};
}

Status CompoundFile::WriteFat() {
  const size_t per_sector = SectorSize() / 4;
  std::string block(SectorSize(), '\0');
  const auto write = [&](uint32_t sector) -> Status {
    KW_RETURN_IF_ERROR(file_->WriteAt(SectorOffset(sector), std::as_bytes(std::span(block))));
    written_end_ = std::max(written_end_, SectorOffset(sector) + block.size());
    return {};
  };
  for (size_t i = 0; i < fat_sectors_.size(); ++i) {
    if (!fat_dirty_[i]) continue;
    for (size_t k = 0; k < per_sector; ++k) {
      const size_t sector = i * per_sector + k;
      PutU32(block.data() + 4 * k, sector < fat_.size() ? fat_[sector] : kFree);
    }
    KW_RETURN_IF_ERROR(write(fat_sectors_[i]));
  }
  if (!difat_dirty_) return {};
  for (size_t i = 0; i < difat_sectors_.size(); ++i) {
    for (size_t k = 0; k + 1 < per_sector; ++k) {
      const size_t listed = kHeaderDifat + i * (per_sector - 1) + k;
      PutU32(block.data() + 4 * k, listed < fat_sectors_.size() ? fat_sectors_[listed] : kFree);
    }
    PutU32(block.data() + block.size() - 4,
           i + 1 < difat_sectors_.size() ? difat_sectors_[i + 1] : kEndOfChain);
    KW_RETURN_IF_ERROR(write(difat_sectors_[i]));
  }
  return {};
}

std::string CompoundFile::BuildHeader() const {
  std::string header = header_;
  if (header.empty()) {
    header.assign(kHeaderSize, '\0');
    std::memcpy(header.data(), kSignature, sizeof kSignature);
    PutU16(header.data() + 24, 0x3E);  // the minor version that every writer uses
    PutU16(header.data() + kMajorVersionAt, shift_ == 9 ? 3 : 4);
    PutU16(header.data() + kByteOrderAt, 0xFFFE);
    PutU16(header.data() + kSectorShiftAt, static_cast<uint16_t>(shift_));
    PutU16(header.data() + kMiniShiftAt, kMiniShift);
    PutU32(header.data() + kMiniCutoffAt, kMiniCutoff);
  }
  const auto start = [](const std::vector<uint32_t>& chain) {
    return chain.empty() ? kEndOfChain : chain[0];
  };
  if (shift_ != 9)
    PutU32(header.data() + kDirectorySectorsAt, static_cast<uint32_t>(directory_chain_.size()));
  PutU32(header.data() + kFatSectorsAt, static_cast<uint32_t>(fat_sectors_.size()));
  PutU32(header.data() + kDirectoryStartAt, start(directory_chain_));
  PutU32(header.data() + kMiniFatStartAt, start(minifat_chain_));
  PutU32(header.data() + kMiniFatSectorsAt, static_cast<uint32_t>(minifat_chain_.size()));
  PutU32(header.data() + kDifatStartAt, start(difat_sectors_));
  PutU32(header.data() + kDifatSectorsAt, static_cast<uint32_t>(difat_sectors_.size()));
  for (size_t i = 0; i < kHeaderDifat; ++i) {
    PutU32(header.data() + kDifatAt + 4 * i, i < fat_sectors_.size() ? fat_sectors_[i] : kFree);
  }
  return header;
}

Status CompoundFile::Sync() {
  Status status = file_->Sync();
  // What could not be brought to the disk may be given up by the system, which then says that all is well the
  // next time it is asked. Nothing that is built on it can be promised any more.
  broken_ = broken_ || !status.ok();
  return status;
}

Status CompoundFile::SwitchHeader(bool durable) {
  const std::string header = BuildHeader();
  // Every sector that the tables count must be there in full, the last one too.
  const uint64_t end = SectorOffset(static_cast<uint32_t>(UsedEnd()));
  if (written_end_ < end) {
    KW_RETURN_IF_ERROR(file_->Truncate(end));
    written_end_ = end;
  }
  if (durable) KW_RETURN_IF_ERROR(Sync());
  Status status = file_->WriteAt(0, std::as_bytes(std::span(header)));
  if (status.ok() && durable) status = Sync();
  if (!status.ok()) {
    // Nobody knows which header is there now. Either is good as long as no sector of either is touched; the
    // old one is put back so that the failure means what it says.
    const std::string old = header_.empty() ? std::string(kHeaderSize, '\0') : header_;
    const bool back = file_->WriteAt(0, std::as_bytes(std::span(old))).ok() && file_->Sync().ok();
    broken_ = broken_ || !back;
    return status;
  }
  header_ = header;
  return {};
}

void CompoundFile::Settle() {
  for (const uint32_t sector : pending_free_) {
    available_[sector] = true;
    ++available_count_;
    next_available_ = std::min<size_t>(next_available_, sector);
  }
  pending_free_.clear();
  std::fill(fresh_.begin(), fresh_.end(), false);
  std::fill(fat_dirty_.begin(), fat_dirty_.end(), false);
  difat_dirty_ = false;
  mini_dirty_.clear();
  dirty_ = false;
}

Status CompoundFile::MoveDown(std::vector<uint32_t>& chain, uint32_t limit) {
  std::string block(SectorSize(), '\0');
  bool moved = false;
  for (uint32_t& sector : chain) {
    if (sector < limit) continue;
    const auto found = std::find(available_.begin() + static_cast<std::ptrdiff_t>(next_available_),
                                 available_.begin() + static_cast<std::ptrdiff_t>(limit), true);
    next_available_ = static_cast<size_t>(found - available_.begin());
    if (next_available_ >= limit) break;
    KW_ASSIGN_OR_RETURN(const size_t got,
                        file_->ReadAt(SectorOffset(sector), std::as_writable_bytes(std::span(block))));
    std::memset(block.data() + got, 0, block.size() - got);
    KW_ASSIGN_OR_RETURN(const uint32_t target, Allocate());
    const Status status = file_->WriteAt(SectorOffset(target), std::as_bytes(std::span(block)));
    if (!status.ok()) {
      Free(target);
      Link(chain);
      return status;
    }
    Free(sector);
    sector = target;
    moved = true;
  }
  if (moved) Link(chain);
  return {};
}

Status CompoundFile::CompactMini() {
  // As large streams do, small ones move down when more than a little of what holds them is free.
  const size_t used = minifat_.size() - mini_free_.size();
  if (mini_free_.size() <= used / 256 + kMiniSlack) return {};
  std::vector<uint32_t> targets;
  std::copy_if(mini_free_.begin(), mini_free_.end(), std::back_inserter(targets),
               [&](uint32_t sector) { return sector < used; });
  std::sort(targets.begin(), targets.end(), std::greater<>());
  Status status;
  for (CfEntry* entry : AllEntries()) {
    if (!entry->stream || entry->stream->place_ != CfStream::Place::kMini) continue;
    std::vector<uint32_t>& chain = entry->stream->chain_;
    for (size_t i = 0; i < chain.size() && status.ok(); ++i) {
      if (chain[i] < used) continue;
      status = MoveMini(chain[i], targets.back());
      if (!status.ok()) break;
      if (i > 0) minifat_[chain[i - 1]] = targets.back();
      chain[i] = targets.back();
      targets.pop_back();
    }
  }
  mini_free_.clear();
  for (size_t sector = minifat_.size(); sector-- > 0;) {
    if (minifat_[sector] == kFree) mini_free_.push_back(static_cast<uint32_t>(sector));
  }
  return status;
}

Status CompoundFile::MoveMini(uint32_t from, uint32_t to) {
  const uint64_t source = static_cast<uint64_t>(from) << kMiniShift;
  const uint64_t target = static_cast<uint64_t>(to) << kMiniShift;
  KW_ASSIGN_OR_RETURN(const std::string* const old_block, MiniBlock(static_cast<uint32_t>(source >> shift_)));
  KW_ASSIGN_OR_RETURN(std::string* const new_block, MiniBlock(static_cast<uint32_t>(target >> shift_)));
  std::memcpy(new_block->data() + (target & (SectorSize() - 1)),
              old_block->data() + (source & (SectorSize() - 1)), kMiniSize);
  minifat_[to] = std::exchange(minifat_[from], kFree);
  return {};
}

void CompoundFile::CompactDirectory() {
  if (free_entry_ids_.size() <= next_entry_id_ / 256 + kEntrySlack) return;
  const std::vector<CfEntry*> entries = AllEntries();
  const uint32_t count = static_cast<uint32_t>(entries.size());
  std::erase_if(free_entry_ids_, [&](uint32_t id) { return id >= count; });
  for (CfEntry* entry : entries) {
    if (entry->id < count) continue;
    entry->id = free_entry_ids_.back();
    free_entry_ids_.pop_back();
  }
  next_entry_id_ = count;
}

Status CompoundFile::Compact() {
  // Space is given back when more than a 256th of the file is free. Moving costs as much as it gives back.
  for (int round = 0; round < 2; ++round) {
    const size_t per_sector = SectorSize() / 4;
    size_t used = fat_.size() - available_count_;
    const size_t blocks = used / per_sector + 2;  // of the sector table, when nothing lies behind `used`
    if (fat_sectors_.size() > blocks) used -= fat_sectors_.size() - blocks;
    size_t last = fat_.size();
    while (last > 0 && available_[last - 1]) --last;
    if (last <= used + used / 256 + 8) return {};  // nearly all of it lies at the end
    const uint32_t limit = static_cast<uint32_t>(used);
    for (CfEntry* entry : AllEntries()) {
      if (entry->stream && entry->stream->place_ == CfStream::Place::kSectors) {
        KW_RETURN_IF_ERROR(MoveDown(entry->stream->chain_, limit));
      }
    }
    for (std::vector<uint32_t>* chain : {&mini_chain_, &minifat_chain_, &directory_chain_}) {
      KW_RETURN_IF_ERROR(MoveDown(*chain, limit));
    }
    for (size_t block = 0; block < fat_sectors_.size(); ++block) {
      if (fat_sectors_[block] >= limit) fat_dirty_[block] = true;
    }
    difat_dirty_ = difat_dirty_ || std::any_of(difat_sectors_.begin(), difat_sectors_.end(),
                                               [&](uint32_t sector) { return sector >= limit; });
    KW_RETURN_IF_ERROR(WriteDirectory());
    KW_RETURN_IF_ERROR(WriteTables(true));
    TrimEnd();
  }
  return {};
}

void CompoundFile::TrimEnd() {
  size_t size = fat_.size();
  while (size > 0 && available_[size - 1]) {
    --size;
    --available_count_;
  }
  fat_.resize(size);
  fresh_.resize(size);
  available_.resize(size);
  next_available_ = std::min(next_available_, size);
  const uint64_t end = SectorOffset(static_cast<uint32_t>(size));
  // The state is committed; a file that stays too long is only untidy and is cut the next time.
  if (end < written_end_ && file_->Truncate(end).ok()) written_end_ = end;
}

}  // namespace kw::msi
