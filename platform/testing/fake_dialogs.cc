#include "platform/testing/fake_dialogs.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/shared/transcript_lines.h"

namespace kw::platform::testing {
namespace {

std::string TakeFront(std::deque<std::string>& queue) {
  if (queue.empty()) return {};
  std::string front = queue.front();
  queue.pop_front();
  return front;
}

}  // namespace

void FakeDialogs::Message(const std::string& text) { transcript_.Add(MessageLine(text, false)); }

void FakeDialogs::CriticalMessage(const std::string& text) { transcript_.Add(MessageLine(text, true)); }

Answer FakeDialogs::Question(const std::string& text, const std::vector<Answer>& buttons,
                             Answer default_button, const std::string& title) {
  Answer answer = ClosingAnswer(buttons);
  if (answers.empty()) {
    ADD_FAILURE() << "A question without a queued answer: " << text;
  } else {
    answer = answers.front();
    answers.pop_front();
    if (std::find(buttons.begin(), buttons.end(), answer) == buttons.end()) {
      ADD_FAILURE() << "The queued answer " << AnswerWord(answer) << " is no button of: " << text;
      answer = ClosingAnswer(buttons);
    }
  }
  transcript_.Add(QuestionLine(text, buttons, default_button, title, answer));
  return answer;
}

std::string FakeDialogs::OpenFile(const std::string& title, const std::string& filter,
                                  const std::string& start_folder, const std::string& start_name) {
  std::string answer = TakeFront(files);
  transcript_.Add(FileDialogLine(title, filter, start_folder, start_name, answer));
  return answer;
}

std::string FakeDialogs::BrowseForFolder(const std::string& title, const std::string& start) {
  std::string answer = TakeFront(folders);
  transcript_.Add(FolderDialogLine(title, start, answer));
  return answer;
}

Status FakeDialogs::ShowHelp(const std::string& help_file, int context_id) {
  help_files.push_back(help_file);
  transcript_.Add(HelpLine(context_id));
  return help_result;
}

}  // namespace kw::platform::testing
