#include "ui/drive/script_dialogs.h"

#include <algorithm>

#include "platform/shared/transcript_lines.h"

namespace kw::ui::drive {

using platform::Answer;

bool IsAnswerWord(const std::string& word) {
  const Answer all[] = {Answer::kOk, Answer::kCancel, Answer::kYes, Answer::kNo, Answer::kRetry};
  return std::any_of(std::begin(all), std::end(all),
                     [&](Answer answer) { return word == platform::AnswerWord(answer); });
}

void ScriptDialogs::Message(const std::string& text) {
  run_.transcript().Add(platform::MessageLine(text, false));
}

void ScriptDialogs::CriticalMessage(const std::string& text) {
  run_.transcript().Add(platform::MessageLine(text, true));
}

Answer ScriptDialogs::Question(const std::string& text, const std::vector<Answer>& buttons,
                               Answer default_button, const std::string& title) {
  const auto word = queue_.Take(Queued::kAnswer);
  const auto button = std::find_if(buttons.begin(), buttons.end(), [&](Answer candidate) {
    return word && *word == platform::AnswerWord(candidate);
  });
  const Answer answer = button == buttons.end() ? platform::ClosingAnswer(buttons) : *button;
  run_.transcript().Add(platform::QuestionLine(text, buttons, default_button, title, answer));
  if (button == buttons.end()) {
    run_.Stop(word ? "the question has no button " + *word : "the question has no queued answer");
  }
  return answer;
}

std::string ScriptDialogs::OpenFile(const std::string& title, const std::string& filter,
                                    const std::string& start_folder, const std::string& start_name) {
  const std::string path = TakePath(Queued::kFile);
  run_.transcript().Add(platform::FileDialogLine(title, filter, start_folder, start_name, path));
  return path;
}

std::string ScriptDialogs::BrowseForFolder(const std::string& title, const std::string& start) {
  const std::string path = TakePath(Queued::kFolder);
  run_.transcript().Add(platform::FolderDialogLine(title, start, path));
  return path;
}

Status ScriptDialogs::ShowHelp(const std::string&, int context_id) {
  run_.transcript().Add(platform::HelpLine(context_id));
  return {};
}

std::string ScriptDialogs::TakePath(Queued kind) {
  const std::string path = queue_.Take(kind).value_or("cancel");
  return path == "cancel" ? "" : path;
}

}  // namespace kw::ui::drive
