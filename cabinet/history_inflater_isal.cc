#include <isa-l/igzip_lib.h>

#include <cstdint>

#include "cabinet/history_inflater.h"

namespace kw::cabinet {

struct HistoryInflater::State {
  inflate_state inflate;
};

HistoryInflater::HistoryInflater() : state_(std::make_unique_for_overwrite<State>()) {}
HistoryInflater::~HistoryInflater() = default;
HistoryInflater::HistoryInflater(HistoryInflater&&) noexcept = default;

bool HistoryInflater::Inflate(std::span<const std::byte> packed, std::span<const std::byte> history,
                              std::span<std::byte> out) {
  // The library's pointers are not const, but it writes to the output alone.
  const auto bytes = [](std::span<const std::byte> data) {
    return const_cast<uint8_t*>(reinterpret_cast<const uint8_t*>(data.data()));
  };
  inflate_state& state = state_->inflate;
  isal_inflate_init(&state);
  if (!history.empty() && isal_inflate_set_dict(&state, bytes(history),
                                                static_cast<uint32_t>(history.size())) != ISAL_DECOMP_OK) {
    return false;
  }
  state.next_in = bytes(packed);
  state.avail_in = static_cast<uint32_t>(packed.size());
  state.next_out = bytes(out);
  state.avail_out = static_cast<uint32_t>(out.size());
  if (isal_inflate(&state) != ISAL_DECOMP_OK || state.avail_out != 0) return false;
  if (state.block_state == ISAL_BLOCK_FINISH) return true;
  // The output is full before the end was read: it must come without a further byte.
  uint8_t more = 0;
  state.next_out = &more;
  state.avail_out = 1;
  return isal_inflate(&state) == ISAL_DECOMP_OK && state.avail_out == 1 &&
         state.block_state == ISAL_BLOCK_FINISH;
}

}  // namespace kw::cabinet
