#ifndef KITWRIGHT_PLATFORM_DIALOGS_H_
#define KITWRIGHT_PLATFORM_DIALOGS_H_

#include <string>
#include <vector>

#include "base/result.h"

namespace kw::platform {

/// The program's name, the title of every box that has no other.
inline constexpr const char* kProgramTitle = "Kitwright";

/// Buttons of question boxes.
enum class Answer { kOk, kCancel, kYes, kNo, kRetry };

/// Boxes and common dialogs; each blocks until it is answered. No page is activated anew afterwards.
class Dialogs {
 public:
  virtual ~Dialogs() = default;
  /// A plain box with an OK button.
  virtual void Message(const std::string& text) = 0;
  /// The same with the critical icon.
  virtual void CriticalMessage(const std::string& text) = 0;
  /// A question with its buttons in order and the one that Enter presses. `title` "" is the program's.
  /// Closing the box answers kCancel or kNo where there is one.
  virtual Answer Question(const std::string& text, const std::vector<Answer>& buttons, Answer default_button,
                          const std::string& title) = 0;
  /// A file-open dialog for an existing file. `filter` is "Words (*.x)|*.x|...", several patterns separated
  /// by ";"; `start_folder` and `start_name` may be empty. "" when cancelled.
  virtual std::string OpenFile(const std::string& title, const std::string& filter,
                               const std::string& start_folder, const std::string& start_name) = 0;
  /// A folder dialog that begins at `start`. "" when cancelled.
  virtual std::string BrowseForFolder(const std::string& title, const std::string& start) = 0;
  /// Opens a help file at a context number; fails with the reason.
  virtual Status ShowHelp(const std::string& help_file, int context_id) = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_DIALOGS_H_
