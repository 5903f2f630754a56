#include <algorithm>
#include <cstring>

#include "msi/bytes.h"
#include "msi/compound_file.h"
#include "msi/compound_layout.h"

// Building the next state of a compound file. The rule that everything here keeps: a sector that the
// committed state uses is never written.

namespace kw::msi {
namespace {

using namespace layout;

constexpr size_t kCopyBuffer = 256 * 1024;

Status Fill(const CompoundFile::Source& source, std::span<std::byte> buffer) {
  size_t done = 0;
  while (done < buffer.size()) {
    KW_ASSIGN_OR_RETURN(const size_t got, source(buffer.subspan(done)));
    if (got == 0) return {kErrorIo, "A stream ended before its size was reached."};
    done += got;
  }
  return {};
}

}  // namespace

std::unique_ptr<CompoundFile> CompoundFile::Create(std::unique_ptr<StorageFile> file, int sector_shift) {
  std::unique_ptr<CompoundFile> compound(new CompoundFile(std::move(file)));
  compound->shift_ = sector_shift;
  compound->root_.name = u"Root Entry";
  compound->root_.type = kRootEntry;
  compound->dirty_ = true;
  return compound;
}

CompoundFile::~CompoundFile() {
  if (!dirty_ || header_.empty() || broken_) return;
  // Streams that were brought in but never committed leave nothing behind.
  while (!fat_.empty() && (available_[fat_.size() - 1] || fresh_[fat_.size() - 1])) fat_.pop_back();
  const uint64_t end = SectorOffset(static_cast<uint32_t>(fat_.size()));
  if (end < written_end_) file_->Truncate(end).IgnoreError();  // only tidies up
}

void CompoundFile::SetRootClass(const std::array<char, 16>& class_id) {
  dirty_ = dirty_ || root_.class_id != class_id;
  root_.class_id = class_id;
}

void CompoundFile::SetFat(uint32_t sector, uint32_t value) {
  if (fat_[sector] == value) return;
  fat_[sector] = value;
  const size_t block = sector / (SectorSize() / 4);
  if (block < fat_dirty_.size()) fat_dirty_[block] = true;
}

Status CompoundFile::CheckRoom(uint64_t bytes) const {
  const uint64_t sectors = (bytes + SectorSize() - 1) >> shift_;
  const uint64_t table = sectors / 64 + 64;  // generous: what the tables may grow by
  const uint64_t more = sectors + table > available_count_ ? sectors + table - available_count_ : 0;
  if (((fat_.size() + 1 + more) << shift_) > kMaxFileSize) {
    return {kErrorDiskFull, "The database would grow beyond 2 GiB."};
  }
  return {};
}

Result<uint32_t> CompoundFile::Allocate() {
  if (broken_) return {kErrorIo, "An earlier failure left the database unable to take changes."};
  uint32_t sector = 0;
  if (available_count_ > 0) {
    const auto found =
        std::find(available_.begin() + static_cast<std::ptrdiff_t>(next_available_), available_.end(), true);
    next_available_ = static_cast<size_t>(found - available_.begin());
    sector = static_cast<uint32_t>(next_available_);
    available_[sector] = false;
    --available_count_;
  } else {
    if (((fat_.size() + 2) << shift_) > kMaxFileSize) {
      return {kErrorDiskFull, "The database would grow beyond 2 GiB."};
    }
    sector = static_cast<uint32_t>(fat_.size());
    fat_.push_back(kFree);
    fresh_.push_back(false);
    available_.push_back(false);
  }
  fresh_[sector] = true;
  SetFat(sector, kEndOfChain);
  dirty_ = true;
  return sector;
}

void CompoundFile::Free(uint32_t sector) {
  SetFat(sector, kFree);
  dirty_ = true;
  if (!fresh_[sector]) {
    pending_free_.push_back(sector);
    return;
  }
  fresh_[sector] = false;
  available_[sector] = true;
  ++available_count_;
  next_available_ = std::min<size_t>(next_available_, sector);
}

void CompoundFile::Link(const std::vector<uint32_t>& chain) {
  for (size_t i = 0; i < chain.size(); ++i)
    SetFat(chain[i], i + 1 < chain.size() ? chain[i + 1] : kEndOfChain);
}

void CompoundFile::FreeContent(CfStream& stream) {
  for (const uint32_t sector : stream.chain_) {
    if (stream.place_ == CfStream::Place::kMini) {
      FreeMini(sector);
    } else {
      Free(sector);
    }
  }
  stream.chain_.clear();
}

void CompoundFile::Release(std::shared_ptr<CfStream> stream) {
  if (!stream || stream->place_ == CfStream::Place::kMemory) return;
  if (stream.use_count() > 1) {
    if (stream->place_ == CfStream::Place::kMini) {
      // Small enough to keep for its readers. A failed read leaves them a stream that ends early.
      stream->bytes_ = ReadAll(*stream).value_or("");
      stream->size_ = stream->bytes_.size();
      FreeContent(*stream);
      stream->place_ = CfStream::Place::kMemory;
    } else {
      zombies_.push_back(std::move(stream));
    }
    return;
  }
  FreeContent(*stream);
}

void CompoundFile::SweepZombies() {
  std::erase_if(zombies_, [&](const std::shared_ptr<CfStream>& stream) {
    if (stream.use_count() > 1) return false;
    FreeContent(*stream);
    return true;
  });
}

Result<std::shared_ptr<CfStream>> CompoundFile::WriteBytes(std::string_view bytes) {
  size_t done = 0;
  return Write(bytes.size(), [&](std::span<std::byte> buffer) -> Result<size_t> {
    const size_t length = std::min(buffer.size(), bytes.size() - done);
    std::memcpy(buffer.data(), bytes.data() + done, length);
    done += length;
    return length;
  });
}

Result<std::shared_ptr<CfStream>> CompoundFile::Hold(uint64_t size, const Source& source) {
  auto stream = std::make_shared<CfStream>();
  stream->size_ = size;
  stream->bytes_.resize(static_cast<size_t>(size));
  KW_RETURN_IF_ERROR(Fill(source, std::as_writable_bytes(std::span(stream->bytes_))));
  return stream;
}

Result<std::shared_ptr<CfStream>> CompoundFile::Write(uint64_t size, const Source& source) {
  auto stream = std::make_shared<CfStream>();
  KW_RETURN_IF_ERROR(CheckRoom(size));
  if (size < kMiniCutoff) return Hold(size, source);
  stream->size_ = size;
  stream->place_ = CfStream::Place::kSectors;
  std::string buffer(kCopyBuffer, '\0');
  const Status status = [&]() -> Status {
    for (uint64_t done = 0; done < size;) {
      const size_t length = static_cast<size_t>(std::min<uint64_t>(buffer.size(), size - done));
      KW_RETURN_IF_ERROR(Fill(source, std::as_writable_bytes(std::span(buffer.data(), length))));
      std::memset(buffer.data() + length, 0, buffer.size() - length);
      const size_t sectors = (length + SectorSize() - 1) >> shift_;
      std::vector<uint32_t>& chain = stream->chain_;
      const size_t first = chain.size();
      for (size_t i = 0; i < sectors; ++i) {
        KW_ASSIGN_OR_RETURN(const uint32_t sector, Allocate());
        chain.push_back(sector);
      }
      for (size_t i = first; i < chain.size();) {
        size_t run = 1;
        while (i + run < chain.size() && chain[i + run] == chain[i + run - 1] + 1) ++run;
        const auto part = std::as_bytes(std::span(buffer)).subspan((i - first) << shift_, run << shift_);
        KW_RETURN_IF_ERROR(file_->WriteAt(SectorOffset(chain[i]), part));
        written_end_ = std::max(written_end_, SectorOffset(chain[i]) + part.size());
        i += run;
      }
      done += length;
    }
    return {};
  }();
  if (!status.ok()) {
    FreeContent(*stream);
    return status;
  }
  Link(stream->chain_);
  return stream;
}

void CompoundFile::Put(const std::u16string& name, std::shared_ptr<CfStream> stream) {
  dirty_ = true;
  // A damaged file may hold a storage there, which as an entry has no room for a stream's content.
  const auto found = root_.children.find(name);
  if (found != root_.children.end() && found->second->type != kStreamEntry) Remove(name);
  std::unique_ptr<CfEntry>& entry = root_.children[name];
  if (!entry) {
    ++names_version_;
    entry = std::make_unique<CfEntry>();
    entry->name = name;
    entry->type = kStreamEntry;
    if (free_entry_ids_.empty()) {
      entry->id = next_entry_id_++;
    } else {
      entry->id = free_entry_ids_.back();
      free_entry_ids_.pop_back();
    }
  }
  std::shared_ptr<CfStream> old = std::move(entry->stream);
  entry->stream = std::move(stream);
  if (old) Release(std::move(old));
}

void CompoundFile::Remove(const std::u16string& name) {
  const auto found = root_.children.find(name);
  if (found == root_.children.end()) return;
  dirty_ = true;
  ++names_version_;
  std::vector<std::unique_ptr<CfEntry>> gone;
  gone.push_back(std::move(found->second));
  root_.children.erase(found);
  for (size_t i = 0; i < gone.size(); ++i) {
    for (auto& [child_name, child] : gone[i]->children) gone.push_back(std::move(child));
    free_entry_ids_.push_back(gone[i]->id);
    if (gone[i]->stream) Release(std::move(gone[i]->stream));
  }
}

Status CompoundFile::Update(const std::u16string& name, std::string_view bytes) {
  const std::shared_ptr<CfStream> stream = Find(name);
  if (bytes.size() < kMiniCutoff || !stream || stream->place_ != CfStream::Place::kSectors) {
    KW_ASSIGN_OR_RETURN(auto made, WriteBytes(bytes));
    if (made->place_ == CfStream::Place::kSectors) made->known_ = bytes;
    Put(name, std::move(made));
    return {};
  }
  KW_RETURN_IF_ERROR(CheckRoom(bytes.size()));
  if (stream->known_.empty()) {
    KW_ASSIGN_OR_RETURN(stream->known_, ReadAll(*stream));
  }
  KW_RETURN_IF_ERROR(EditChain(stream->chain_, bytes, &stream->known_));
  stream->known_ = bytes;
  stream->size_ = bytes.size();
  dirty_ = true;
  return {};
}

Status CompoundFile::EditChain(std::vector<uint32_t>& chain, std::string_view bytes,
                               const std::string* known) {
  const size_t size = SectorSize();
  const size_t sectors = (bytes.size() + size - 1) >> shift_;
  std::string run;
  uint32_t run_start = 0;
  const auto flush = [&]() -> Status {
    if (run.empty()) return {};
    KW_RETURN_IF_ERROR(file_->WriteAt(SectorOffset(run_start), std::as_bytes(std::span(run))));
    written_end_ = std::max(written_end_, SectorOffset(run_start) + run.size());
    run.clear();
    return {};
  };
  Status status;
  for (size_t i = 0; i < sectors && status.ok(); ++i) {
    const std::string_view part = bytes.substr(i * size, size);
    const bool old = i < chain.size();
    if (old && !fresh_[chain[i]]) {
      const size_t known_left = known->size() > i * size ? known->size() - i * size : 0;
      if (known_left >= part.size() && std::memcmp(known->data() + i * size, part.data(), part.size()) == 0)
        continue;
    }
    if (!old || !fresh_[chain[i]]) {
      Result<uint32_t> sector = Allocate();
      if (!sector.ok()) {
        status = sector.status();
        break;
      }
      if (old) {
        Free(chain[i]);
        chain[i] = *sector;
      } else {
        chain.push_back(*sector);
      }
    }
    if (!run.empty() && chain[i] != run_start + (run.size() >> shift_)) status = flush();
    if (run.empty()) run_start = chain[i];
    run.append(part);
    run.resize((run.size() + size - 1) & ~(size - 1), '\0');
  }
  if (status.ok()) status = flush();
  if (status.ok()) {
    while (chain.size() > sectors) {
      Free(chain.back());
      chain.pop_back();
    }
  }
  // Also after a failure: the chain holds together, and what could not be written is fresh and written again.
  Link(chain);
  return status;
}

void CompoundFile::FreeMini(uint32_t mini_sector) {
  minifat_[mini_sector] = kFree;
  mini_free_.push_back(mini_sector);
  dirty_ = true;
}

Result<uint32_t> CompoundFile::AllocateMini() {
  uint32_t sector = 0;
  if (mini_free_.empty()) {
    sector = static_cast<uint32_t>(minifat_.size());
    minifat_.push_back(kEndOfChain);
  } else {
    sector = mini_free_.back();
    mini_free_.pop_back();
    minifat_[sector] = kEndOfChain;
  }
  return sector;
}

Result<std::string*> CompoundFile::MiniBlock(uint32_t container_index) {
  const auto found = mini_dirty_.find(container_index);
  if (found != mini_dirty_.end()) return &found->second;
  std::string block(SectorSize(), '\0');
  if (container_index < mini_chain_.size()) {
    // The end of the last sector may be missing from the file; it holds nothing then.
    KW_ASSIGN_OR_RETURN(const size_t got, file_->ReadAt(SectorOffset(mini_chain_[container_index]),
                                                        std::as_writable_bytes(std::span(block))));
    std::memset(block.data() + got, 0, block.size() - got);
  }
  return &mini_dirty_.emplace(container_index, std::move(block)).first->second;
}

Status CompoundFile::PlaceMini(CfStream& stream) {
  const size_t needed = (stream.bytes_.size() + kMiniSize - 1) >> kMiniShift;
  std::vector<uint32_t> chain;
  Status status;
  for (size_t i = 0; i < needed && status.ok(); ++i) {
    KW_ASSIGN_OR_RETURN(const uint32_t sector, AllocateMini());
    chain.push_back(sector);
    const uint64_t position = static_cast<uint64_t>(sector) << kMiniShift;
    const Result<std::string*> block = MiniBlock(static_cast<uint32_t>(position >> shift_));
    if (!block.ok()) {
      status = block.status();
      break;
    }
    const std::string_view part = std::string_view(stream.bytes_).substr(i << kMiniShift, kMiniSize);
    std::memcpy((*block)->data() + (position & (SectorSize() - 1)), part.data(), part.size());
  }
  if (!status.ok()) {
    for (const uint32_t sector : chain) FreeMini(sector);
    return status;
  }
  for (size_t i = 0; i < chain.size(); ++i)
    minifat_[chain[i]] = i + 1 < chain.size() ? chain[i + 1] : kEndOfChain;
  stream.chain_ = std::move(chain);
  stream.place_ = CfStream::Place::kMini;
  stream.bytes_ = {};
  return {};
}

}  // namespace kw::msi
