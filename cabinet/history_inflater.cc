#include "cabinet/history_inflater.h"

#include <libdeflate.h>

#include <cstring>

#include "cabinet/format.h"

namespace kw::cabinet {

void HistoryInflater::Free::operator()(libdeflate_decompressor* decompressor) const {
  libdeflate_free_decompressor(decompressor);
}

HistoryInflater::HistoryInflater() : decompressor_(libdeflate_alloc_decompressor()) {}

bool HistoryInflater::InflateAlone(std::span<const std::byte> packed, std::span<std::byte> out) {
  return decompressor_ != nullptr &&
         libdeflate_deflate_decompress(decompressor_.get(), packed.data(), packed.size(), out.data(),
                                       out.size(), nullptr) == LIBDEFLATE_SUCCESS;
}

// The library knows no history. It is shown one longer stream, which begins with a stored block of those
// bytes.
bool HistoryInflater::InflateBehind(std::span<const std::byte> packed, size_t history,
                                    std::span<std::byte> out) {
  constexpr size_t kStoredHead = 5;
  const size_t size = kStoredHead + history + packed.size();
  if (joined_.size() < size) joined_.resize(size);
  joined_[0] = std::byte{0};
  PutU16(&joined_[1], static_cast<uint16_t>(history));
  PutU16(&joined_[3], static_cast<uint16_t>(~history));
  std::memcpy(&joined_[kStoredHead], out.data(), history);
  if (!packed.empty()) std::memcpy(&joined_[kStoredHead + history], packed.data(), packed.size());
  return InflateAlone({joined_.data(), size}, out);
}

}  // namespace kw::cabinet
