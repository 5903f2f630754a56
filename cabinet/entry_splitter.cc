#include "cabinet/entry_splitter.h"

#include <algorithm>

namespace kw::cabinet {

Status EntryError(const std::string& entry, const std::string& cabinet, const Status& failure) {
  return {failure.number(), "Could not unpack \"" + entry + "\" from " + cabinet + ": " + failure.message()};
}

bool IsFaultOfTheCabinet(const Status& failure) {
  switch (failure.number()) {
    case kErrorInvalidData:
    case kErrorUnsupported:
    case kErrorInvalidName:
    case kErrorAlreadyExists:
      return true;
    default:
      return false;
  }
}

void KeepFailure(Status& kept, const Status& next) {
  if (next.ok()) return;
  if (kept.ok() || (IsFaultOfTheCabinet(kept) && !IsFaultOfTheCabinet(next))) kept = next;
}

EntrySplitter::EntrySplitter(std::string cabinet, std::vector<const CabinetEntry*> entries, EntrySink& sink)
    : cabinet_(std::move(cabinet)), entries_(std::move(entries)), sink_(sink) {}

void EntrySplitter::Fail(const CabinetEntry& entry, const Status& failure) {
  KeepFailure(first_failure_, EntryError(entry.name, cabinet_, failure));
}

void EntrySplitter::Take(std::span<const std::byte> data) {
  while (!done()) {
    const CabinetEntry& entry = *entries_[next_];
    if (!open_ && !skipped_) {
      if (entry.size > 0 && entry.offset > position_) {
        const size_t gap = static_cast<size_t>(std::min<uint64_t>(entry.offset - position_, data.size()));
        position_ += gap;
        data = data.subspan(gap);
      }
      if (entry.size > 0 && (entry.offset > position_ || data.empty())) return;
      const Status begun = sink_.Begin(entry);
      open_ = begun.ok();
      skipped_ = !open_;
      write_outcome_ = Status();
      if (skipped_) Fail(entry, begun);
    }
    const uint64_t left = entry.size == 0 ? 0 : uint64_t{entry.offset} + entry.size - position_;
    const size_t mine = static_cast<size_t>(std::min<uint64_t>(left, data.size()));
    if (open_ && write_outcome_.ok() && mine > 0) write_outcome_ = sink_.Write(data.first(mine));
    position_ += mine;
    data = data.subspan(mine);
    if (mine < left) return;
    Close(write_outcome_);
  }
}

void EntrySplitter::Finish(const Status& outcome) {
  while (true) {
    Take({});  // files without content need no data
    if (done()) return;
    Status failure = outcome;
    if (failure.ok()) failure = Status(kErrorInvalidData, "the cabinet's data ends before it.");
    if (open_) {
      Close(write_outcome_.ok() ? failure : write_outcome_);
      continue;
    }
    if (!skipped_) Fail(*entries_[next_], failure);
    skipped_ = false;
    ++next_;
  }
}

void EntrySplitter::Close(Status outcome) {
  const CabinetEntry& entry = *entries_[next_++];
  if (open_) {
    const Status ended = sink_.End(entry, outcome);
    if (outcome.ok()) outcome = ended;
    if (!outcome.ok()) Fail(entry, outcome);
  }
  open_ = false;
  skipped_ = false;
}

}  // namespace kw::cabinet
