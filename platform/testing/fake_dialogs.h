#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_DIALOGS_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_DIALOGS_H_

#include <deque>
#include <string>
#include <vector>

#include "base/transcript.h"
#include "platform/dialogs.h"

namespace kw::platform::testing {

/// Boxes and dialogs that answer from queues and write a transcript line each ("message TEXT",
/// "question TEXT [OK|Cancel] default=Cancel -> OK", ...). A question without a queued answer, or with one
/// that it has no button for, fails the test; a dialog without a queued answer is cancelled.
class FakeDialogs : public Dialogs {
 public:
  explicit FakeDialogs(Transcript& transcript) : transcript_(transcript) {}

  std::deque<Answer> answers;
  std::deque<std::string> files;    ///< answers of OpenFile; "" cancels
  std::deque<std::string> folders;  ///< answers of BrowseForFolder; "" cancels
  Status help_result;               ///< what ShowHelp gives
  std::vector<std::string> help_files;

  void Message(const std::string& text) override;
  void CriticalMessage(const std::string& text) override;
  Answer Question(const std::string& text, const std::vector<Answer>& buttons, Answer default_button,
                  const std::string& title) override;
  std::string OpenFile(const std::string& title, const std::string& filter, const std::string& start_folder,
                       const std::string& start_name) override;
  std::string BrowseForFolder(const std::string& title, const std::string& start) override;
  Status ShowHelp(const std::string& help_file, int context_id) override;

 private:
  Transcript& transcript_;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_DIALOGS_H_
