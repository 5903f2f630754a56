// TxMailScan: the stand-in for the library with the on-delivery scanner's dialog box.

#include "platform/shared/library_abi.h"
#include "sample/libraries/library_calls.h"
#include "sample/settings/dialog_library.h"
#include "sample/settings/run_tool.h"

int Emal_ConfigZED(void*, int, int mode, int flush) {
  using kw::sample::Answer;
  kw::sample::SetRaised(0);
  const Answer answer = kw::sample::AnswerOfThisProcess();
  if (answer == Answer::kRaise) {
    kw::sample::SetRaised(kw::kErrorFunctionFailed);
    return 0;
  }
  kw::sample::ToolCommand command;
  command.group = kw::sample::OnDeliverySettings();
  command.from_live = mode == 2;
  command.flush = flush == 1;
  const kw::sample::CallContext call;
  const auto registry = call.Registry();
  const auto outcome =
      kw::sample::RunTool(command, *registry, call.code_page, answer, kw::sample::ShowSettingsDialog);
  if (!outcome.ok()) {
    kw::sample::SetRaised(outcome.number());
    return 0;
  }
  return outcome->changed ? 1 : 0;
}
