#ifndef KITWRIGHT_UI_DRIVE_SCRIPT_DIALOGS_H_
#define KITWRIGHT_UI_DRIVE_SCRIPT_DIALOGS_H_

#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "ui/drive/answer_queue.h"
#include "ui/drive/script_run.h"

namespace kw::ui::drive {

/// Boxes and dialogs that are answered from the script's queue. A question that nothing queued answers ends
/// the run; a file or folder dialog without an answer is cancelled.
class ScriptDialogs : public platform::Dialogs {
 public:
  /// Both outlive the dialogs.
  ScriptDialogs(ScriptRun& run, AnswerQueue& queue) : run_(run), queue_(queue) {}

  void Message(const std::string& text) override;
  void CriticalMessage(const std::string& text) override;
  platform::Answer Question(const std::string& text, const std::vector<platform::Answer>& buttons,
                            platform::Answer default_button, const std::string& title) override;
  std::string OpenFile(const std::string& title, const std::string& filter, const std::string& start_folder,
                       const std::string& start_name) override;
  std::string BrowseForFolder(const std::string& title, const std::string& start) override;
  Status ShowHelp(const std::string& help_file, int context_id) override;

 private:
  std::string TakePath(Queued kind);

  ScriptRun& run_;
  AnswerQueue& queue_;
};

/// True for the word of a button that questions can have.
bool IsAnswerWord(const std::string& word);

}  // namespace kw::ui::drive

#endif  // KITWRIGHT_UI_DRIVE_SCRIPT_DIALOGS_H_
