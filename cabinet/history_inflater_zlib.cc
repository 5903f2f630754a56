#include <zlib.h>

#include "cabinet/history_inflater.h"

namespace kw::cabinet {

struct HistoryInflater::State {
  State() : ready(inflateInit2(&stream, -MAX_WBITS) == Z_OK) {}
  ~State() { inflateEnd(&stream); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  z_stream stream{};
  bool ready;
};

HistoryInflater::HistoryInflater() : state_(std::make_unique<State>()) {}
HistoryInflater::~HistoryInflater() = default;
HistoryInflater::HistoryInflater(HistoryInflater&&) noexcept = default;

bool HistoryInflater::Inflate(std::span<const std::byte> packed, std::span<const std::byte> history,
                              std::span<std::byte> out) {
  // The library's pointers are not const, but it writes to the output alone.
  const auto bytes = [](std::span<const std::byte> data) {
    return const_cast<Bytef*>(reinterpret_cast<const Bytef*>(data.data()));
  };
  z_stream& stream = state_->stream;
  if (!state_->ready || inflateReset(&stream) != Z_OK) return false;
  if (!history.empty() &&
      inflateSetDictionary(&stream, bytes(history), static_cast<uInt>(history.size())) != Z_OK) {
    return false;
  }
  stream.next_in = bytes(packed);
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = bytes(out);
  stream.avail_out = static_cast<uInt>(out.size());
  return inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_out == 0;
}

}  // namespace kw::cabinet
