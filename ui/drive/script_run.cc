#include "ui/drive/script_run.h"

#include <algorithm>

#include "base/text.h"

namespace kw::ui::drive {

std::string PlainText(std::string_view text) {
  return ReplaceAll(ReplaceAll(ReplaceAll(text, "<CR>", "\r"), "<LF>", "\n"), "<TAB>", "\t");
}

ScriptRun::ScriptRun(std::istream& script, std::ostream& out)
    : script_(script), out_(out), transcript_([this](const std::string& line) { PrintLine(line); }) {}

std::optional<std::string> ScriptRun::NextCommand() {
  std::string line;
  while (std::getline(script_, line)) {
    ++line_;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const size_t begin = line.find_first_not_of(" \t");
    if (begin == std::string::npos || line[begin] == '#') continue;
    return line.substr(begin);
  }
  return std::nullopt;
}

void ScriptRun::PrintLine(const std::string& line) {
  if (!over_) out_ << line << std::endl;
}

void ScriptRun::PrintFailure(const std::string& what) {
  PrintLine("FAIL line " + std::to_string(line_) + ": " + what);
}

size_t ScriptRun::BehindMatch(size_t begin, const std::string& line) const {
  const auto& lines = transcript_.Lines();
  const auto found =
      std::find(lines.begin() + static_cast<ptrdiff_t>(begin), lines.end(), TranscriptText(line));
  return found == lines.end() ? 0 : static_cast<size_t>(found - lines.begin()) + 1;
}

void ScriptRun::Expect(const std::string& line) {
  const size_t behind = BehindMatch(expected_, line);
  if (behind == 0) {
    PrintFailure("expected " + TranscriptText(line));
    status_ = 1;
  }
  at_expect_ = transcript_.Lines().size();
  expected_ = behind == 0 ? at_expect_ : behind;
}

void ScriptRun::Reject(const std::string& line) {
  if (BehindMatch(at_expect_, line) == 0) return;
  PrintFailure("rejected " + TranscriptText(line));
  status_ = 1;
}

void ScriptRun::Stop(const std::string& what) {
  if (over_) return;
  PrintFailure(what);
  status_ = 2;
  over_ = true;
}

}  // namespace kw::ui::drive
