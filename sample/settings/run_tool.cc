#include "sample/settings/run_tool.h"

namespace kw::sample {
namespace {

Result<ToolOutcome> Cancelled(SettingsStore& store, const SettingsGroup& group) {
  KW_RETURN_IF_ERROR(store.LeaveEmptyKeys(group));
  return ToolOutcome{};
}

}  // namespace

Result<ToolOutcome> RunTool(const ToolCommand& command, platform::Registry& registry, int code_page,
                            Answer answer, const ShowSettings& show) {
  SettingsStore store(registry, code_page);
  if (command.flush) {
    KW_RETURN_IF_ERROR(store.Flush(command.group));
    return ToolOutcome{};
  }
  switch (answer) {
    case Answer::kChange:
    case Answer::kFailSaved:
      KW_RETURN_IF_ERROR(store.SaveChanged(command.group, command.from_live));
      return ToolOutcome{answer == Answer::kFailSaved, true};
    case Answer::kCancel:
      return Cancelled(store, command.group);
    case Answer::kFail:
    case Answer::kRaise:
      return ToolOutcome{true, false};
    case Answer::kCrash:
      Crash();
    case Answer::kDialog:
      break;
  }
  KW_ASSIGN_OR_RETURN(std::vector<Setting> settings, store.Load(command.group, command.from_live));
  if (!show(command.group.title, settings)) return Cancelled(store, command.group);
  KW_RETURN_IF_ERROR(store.Save(command.group, command.from_live, settings));
  return ToolOutcome{false, true};
}

}  // namespace kw::sample
