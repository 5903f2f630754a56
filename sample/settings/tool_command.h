#ifndef KITWRIGHT_SAMPLE_SETTINGS_TOOL_COMMAND_H_
#define KITWRIGHT_SAMPLE_SETTINGS_TOOL_COMMAND_H_

#include <string>
#include <vector>

#include "base/result.h"
#include "sample/settings/settings_group.h"

namespace kw::sample {

/// What a product tool is asked to do.
struct ToolCommand {
  SettingsGroup group;
  bool from_live = false;  ///< " /ZEDW": load the live settings; " /ZEDRW": load the staged ones
  bool flush = false;      ///< " /FLUSHSETTINGS": copy without a dialog box
};

/// Reads a tool's arguments. `tool` is "OasCfg32", "OdsCfg32", "TxDesk" or "TxFetch" without regard to case,
/// a path and ".exe" aside; `arguments` go without the program's name. The text behind /TASKNAME ends before
/// the next switch, quoted or not. kErrorInvalidParameter for another tool or without /ZEDW and /ZEDRW.
Result<ToolCommand> ParseToolCommand(const std::string& tool, const std::vector<std::string>& arguments);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_TOOL_COMMAND_H_
