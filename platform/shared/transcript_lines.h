#ifndef KITWRIGHT_PLATFORM_SHARED_TRANSCRIPT_LINES_H_
#define KITWRIGHT_PLATFORM_SHARED_TRANSCRIPT_LINES_H_

#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/processes.h"

namespace kw::platform {

// The transcript lines of boxes, dialogs and child processes, the same in page tests and in script runs.
// Texts are escaped as TranscriptText does.

/// A button's word: "OK", "Cancel", "Yes", "No", "Retry".
const char* AnswerWord(Answer answer);

/// The button that closing a question box presses: Cancel or No where there is one, else the last.
Answer ClosingAnswer(const std::vector<Answer>& buttons);

/// "message TEXT", with "!" for the critical icon.
std::string MessageLine(const std::string& text, bool critical);
/// "question TEXT [OK|Cancel] default=Cancel -> OK"; "question(TITLE) ..." where `title` is another than the
/// program's.
std::string QuestionLine(const std::string& text, const std::vector<Answer>& buttons, Answer default_button,
                         const std::string& title, Answer answer);
/// "file-dialog TITLE | FILTER | START -> PATH"; an empty `answer` is "cancel". START is the folder and the
/// name that the dialog starts from, as far as they are given.
std::string FileDialogLine(const std::string& title, const std::string& filter,
                           const std::string& start_folder, const std::string& start_name,
                           const std::string& answer);
/// "folder-dialog TITLE | START -> PATH".
std::string FolderDialogLine(const std::string& title, const std::string& start, const std::string& answer);
/// "help ID".
std::string HelpLine(int context_id);
/// "run[hidden] COMMAND -> CODE".
std::string RunLine(const std::string& command_line, WindowStyle style, int exit_code);

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_TRANSCRIPT_LINES_H_
