#ifndef KITWRIGHT_BASE_TRANSCRIPT_H_
#define KITWRIGHT_BASE_TRANSCRIPT_H_

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kw {

/// `text` on one line: a carriage return as "<CR>", a line feed as "<LF>", a tab as "<TAB>".
std::string TranscriptText(std::string_view text);

/// What happened, a line for each event, in order.
class Transcript {
 public:
  /// `on_line` (may be empty) hears every line as it is added.
  explicit Transcript(std::function<void(const std::string&)> on_line = {}) : on_line_(std::move(on_line)) {}

  void Add(std::string line);
  /// Every line since the beginning.
  const std::vector<std::string>& Lines() const { return lines_; }
  /// The lines since the last Take.
  std::vector<std::string> Take();

 private:
  std::function<void(const std::string&)> on_line_;
  std::vector<std::string> lines_;
  size_t taken_ = 0;
};

}  // namespace kw

#endif  // KITWRIGHT_BASE_TRANSCRIPT_H_
