#include "base/transcript.h"

#include <cstddef>
#include <utility>

namespace kw {

std::string TranscriptText(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '\r':
        line += "<CR>";
        break;
      case '\n':
        line += "<LF>";
        break;
      case '\t':
        line += "<TAB>";
        break;
      default:
        line += c;
    }
  }
  return line;
}

void Transcript::Add(std::string line) {
  if (on_line_) on_line_(line);
  lines_.push_back(std::move(line));
}

std::vector<std::string> Transcript::Take() {
  std::vector<std::string> fresh(lines_.begin() + static_cast<std::ptrdiff_t>(taken_), lines_.end());
  taken_ = lines_.size();
  return fresh;
}

}  // namespace kw
