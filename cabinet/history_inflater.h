#ifndef KITWRIGHT_CABINET_HISTORY_INFLATER_H_
#define KITWRIGHT_CABINET_HISTORY_INFLATER_H_

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

struct libdeflate_decompressor;

namespace kw::cabinet {

/// Unpacks DEFLATE streams that may refer to bytes before them. One inflater serves one thread at a time.
class HistoryInflater {
 public:
  HistoryInflater();

  /// Unpacks `packed` so that it fills `out` exactly; false when the data is bad, refers to anything before
  /// it, or gives another size.
  bool InflateAlone(std::span<const std::byte> packed, std::span<std::byte> out);

  /// Likewise, but `packed` may refer to the first `history` (at most 32 KiB) bytes of `out`, and unpacks to
  /// the rest of it. The history is written over with the same bytes.
  bool InflateBehind(std::span<const std::byte> packed, size_t history, std::span<std::byte> out);

 private:
  struct Free {
    void operator()(libdeflate_decompressor* decompressor) const;
  };
  std::unique_ptr<libdeflate_decompressor, Free> decompressor_;
  std::vector<std::byte> joined_;
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_HISTORY_INFLATER_H_
