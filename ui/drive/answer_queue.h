#ifndef KITWRIGHT_UI_DRIVE_ANSWER_QUEUE_H_
#define KITWRIGHT_UI_DRIVE_ANSWER_QUEUE_H_

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace kw::ui::drive {

/// What a script can queue.
enum class Queued { kMenu, kAnswer, kFile, kFolder };

/// Choices and answers that wait for the next acting command and what it sets off. A modal dialog opens a
/// level of its own: what is queued while it is open serves first, and goes at the end of a command that
/// leaves the dialog open; what was queued outside stays for what follows the dialog.
class AnswerQueue {
 public:
  void Add(Queued kind, std::string text);
  /// The next one of this kind, from the innermost level that has one.
  std::optional<std::string> Take(Queued kind);

  /// A modal dialog opens; it ends, and what is left of its level joins the level outside, in front.
  void OpenLevel();
  void CloseLevel();
  /// Drops what is left of the innermost level.
  void DropInnermost();

 private:
  using Level = std::array<std::deque<std::string>, 4>;
  std::vector<Level> levels_ = std::vector<Level>(1);
};

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_ANSWER_QUEUE_H_
