#ifndef KITWRIGHT_SAMPLE_SETTINGS_RUN_TOOL_H_
#define KITWRIGHT_SAMPLE_SETTINGS_RUN_TOOL_H_

#include <functional>
#include <string>
#include <vector>

#include "sample/settings/answers.h"
#include "sample/settings/tool_command.h"

namespace kw::sample {

/// Shows the settings in a dialog box and lets a person change the editable ones; false for Cancel.
using ShowSettings = std::function<bool(const std::string& title, std::vector<Setting>& settings)>;

/// How a dialog box of the product ended.
struct ToolOutcome {
  bool failed = false;
  bool changed = false;  ///< something was saved
};

/// Does what a tool or a library's dialog box is asked for. A flush copies whatever the answer. A failure is
/// the registry's.
Result<ToolOutcome> RunTool(const ToolCommand& command, platform::Registry& registry, int code_page,
                            Answer answer, const ShowSettings& show);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_RUN_TOOL_H_
