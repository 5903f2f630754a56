#ifndef KITWRIGHT_UI_DRIVE_SCRIPT_RUN_H_
#define KITWRIGHT_UI_DRIVE_SCRIPT_RUN_H_

#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "base/transcript.h"

namespace kw::ui::drive {

/// `text` with "<CR>", "<LF>" and "<TAB>" turned into what they stand for.
std::string PlainText(std::string_view text);

/// One run of a script: its commands, its transcript, its outcome. Every line is printed and flushed at once,
/// so that another program can drive the wizard through pipes. Nothing is printed once the run is over.
class ScriptRun {
 public:
  /// Both outlive the run.
  ScriptRun(std::istream& script, std::ostream& out);

  /// The next line that holds a command, without its line end; nothing at the end of the script.
  std::optional<std::string> NextCommand();
  /// Number of the line at hand, from 1; 0 before the first.
  int Line() const { return line_; }
  void SetLine(int line) { line_ = line; }

  kw::Transcript& transcript() { return transcript_; }

  /// Whether a transcript line behind the one that the last Expect found equals `line`; without one, behind
  /// all that were there at the last Expect.
  void Expect(const std::string& line);
  /// Whether no transcript line that was added since the last Expect was carried out equals `line`.
  void Reject(const std::string& line);

  /// Prints what is wrong with the script and ends the run with status 2.
  void Stop(const std::string& what);
  /// The script or the program ended.
  void Finish() { over_ = true; }
  bool Over() const { return over_; }
  /// 0, or 1 after a failed Expect or Reject, or 2 after Stop.
  int ExitStatus() const { return status_; }

 private:
  void PrintLine(const std::string& line);
  void PrintFailure(const std::string& what);
  /// Index behind the first transcript line from `begin` on that equals `line`; 0 when there is none.
  size_t BehindMatch(size_t begin, const std::string& line) const;

  std::istream& script_;
  std::ostream& out_;
  kw::Transcript transcript_;
  int line_ = 0;
  size_t expected_ = 0;   // the line behind the one that the last Expect found
  size_t at_expect_ = 0;  // how many lines there were at the last Expect
  int status_ = 0;
  bool over_ = false;
};

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_SCRIPT_RUN_H_
