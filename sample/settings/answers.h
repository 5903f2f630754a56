#ifndef KITWRIGHT_SAMPLE_SETTINGS_ANSWERS_H_
#define KITWRIGHT_SAMPLE_SETTINGS_ANSWERS_H_

#include <string_view>

namespace kw::sample {

/// What takes the person's place in front of a dialog box of the product.
enum class Answer {
  kChange,     ///< saves a changed value and leaves the flag
  kCancel,     ///< changes nothing, but leaves the empty keys that the tools leave
  kFail,       ///< fails without saving
  kFailSaved,  ///< saves as kChange and fails all the same
  kRaise,      ///< the call itself fails, where it is a library's; a program fails as with kFail
  kCrash,      ///< the program or the library has a fault of its own in the middle of saving
  kDialog      ///< shows the box
};

/// The answer that `text` names ("change", "cancel", "fail", "fail-saved", "raise", "crash",
/// "dialog"). Anything else
/// is the default: kDialog with a display, otherwise kCancel. Without a display "dialog" is kCancel too.
Answer AnswerNamed(std::string_view text, bool has_display);

/// The answer of this process: the environment variable SAMPLE_TOOL_ANSWER.
Answer AnswerOfThisProcess();

/// The fault of kCrash: writes where no memory is.
[[noreturn]] void Crash();

/// True if `list` ("FEADZED,StcSign") names `stand_in`, blanks and case aside.
bool ListNames(std::string_view list, std::string_view stand_in);

/// True if the environment variable SAMPLE_FAIL names this stand-in.
bool MustFail(std::string_view stand_in);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_ANSWERS_H_
