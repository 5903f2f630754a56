#include "sample/settings/answers.h"

#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/text.h"
#include "sample/settings/this_machine.h"

namespace kw::sample {
namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

Answer AnswerNamed(std::string_view text, bool has_display) {
  if (text == "change") return Answer::kChange;
  if (text == "cancel") return Answer::kCancel;
  if (text == "fail") return Answer::kFail;
  if (text == "fail-saved") return Answer::kFailSaved;
  if (text == "raise") return Answer::kRaise;
  if (text == "crash") return Answer::kCrash;
  return has_display ? Answer::kDialog : Answer::kCancel;
}

Answer AnswerOfThisProcess() { return AnswerNamed(Environment("SAMPLE_TOOL_ANSWER"), HasDisplay()); }

void Crash() {
  volatile uintptr_t nowhere = 8;
  *reinterpret_cast<volatile int*>(nowhere) = 1;
  std::abort();
}

bool ListNames(std::string_view list, std::string_view stand_in) {
  for (const std::string& name : Split(list, ',')) {
    if (EqualsNoCase(TrimBlanks(name), stand_in)) return true;
  }
  return false;
}

bool MustFail(std::string_view stand_in) { return ListNames(Environment("SAMPLE_FAIL"), stand_in); }

}  // namespace kw::sample
