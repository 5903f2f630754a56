#include "platform/shared/transcript_lines.h"

#include <algorithm>

#include "base/path.h"
#include "base/transcript.h"

namespace kw::platform {
namespace {

std::string DialogAnswer(const std::string& answer) {
  return answer.empty() ? "cancel" : TranscriptText(answer);
}

}  // namespace

const char* AnswerWord(Answer answer) {
  switch (answer) {
    case Answer::kOk:
      return "OK";
    case Answer::kCancel:
      return "Cancel";
    case Answer::kYes:
      return "Yes";
    case Answer::kNo:
      return "No";
    case Answer::kRetry:
      return "Retry";
  }
  return "";
}

Answer ClosingAnswer(const std::vector<Answer>& buttons) {
  const auto closing = std::find_if(buttons.begin(), buttons.end(), [](Answer button) {
    return button == Answer::kCancel || button == Answer::kNo;
  });
  return closing == buttons.end() ? buttons.back() : *closing;
}

std::string MessageLine(const std::string& text, bool critical) {
  return (critical ? "message! " : "message ") + TranscriptText(text);
}

std::string QuestionLine(const std::string& text, const std::vector<Answer>& buttons, Answer default_button,
                         const std::string& title, Answer answer) {
  std::string line = "question";
  if (!title.empty() && title != kProgramTitle) line += "(" + TranscriptText(title) + ")";
  line += " " + TranscriptText(text) + " [";
  for (size_t i = 0; i < buttons.size(); ++i) {
    if (i > 0) line += '|';
    line += AnswerWord(buttons[i]);
  }
  return line + "] default=" + AnswerWord(default_button) + " -> " + AnswerWord(answer);
}

std::string FileDialogLine(const std::string& title, const std::string& filter,
                           const std::string& start_folder, const std::string& start_name,
                           const std::string& answer) {
  std::string start = start_folder;
  if (!start_name.empty()) start = start_folder.empty() ? start_name : JoinPath(start_folder, start_name);
  return "file-dialog " + TranscriptText(title) + " | " + TranscriptText(filter) + " | " +
         TranscriptText(start) + " -> " + DialogAnswer(answer);
}

std::string FolderDialogLine(const std::string& title, const std::string& start, const std::string& answer) {
  return "folder-dialog " + TranscriptText(title) + " | " + TranscriptText(start) + " -> " +
         DialogAnswer(answer);
}

std::string HelpLine(int context_id) { return "help " + std::to_string(context_id); }

std::string RunLine(const std::string& command_line, WindowStyle style, int exit_code) {
  return std::string("run[") + (style == WindowStyle::kHidden ? "hidden" : "normal") + "] " +
         TranscriptText(command_line) + " -> " + std::to_string(exit_code);
}

}  // namespace kw::platform
