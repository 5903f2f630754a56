#ifndef KITWRIGHT_CABINET_HISTORY_INFLATER_H_
#define KITWRIGHT_CABINET_HISTORY_INFLATER_H_

#include <cstddef>
#include <memory>
#include <span>

namespace kw::cabinet {

/// Unpacks a DEFLATE stream that may refer to bytes before it. Which library does it is chosen when building:
/// ISA-L, or zlib where that is not to be had. One inflater serves one thread at a time.
class HistoryInflater {
 public:
  HistoryInflater();
  ~HistoryInflater();
  HistoryInflater(HistoryInflater&&) noexcept;

  /// Unpacks `packed` so that it fills `out` exactly; false when the data is bad or gives another size.
  /// `history` is what came before, at most 32 KiB.
  bool Inflate(std::span<const std::byte> packed, std::span<const std::byte> history,
               std::span<std::byte> out);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_HISTORY_INFLATER_H_
