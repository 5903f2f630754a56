#include "sample/settings/tool_command.h"

#include <map>

#include "base/text.h"

namespace kw::sample {
namespace {

std::string ToolName(std::string path) {
  const size_t slash = path.find_last_of("/\\");
  if (slash != std::string::npos) path.erase(0, slash + 1);
  if (EndsWithNoCase(path, ".exe")) path.resize(path.size() - 4);
  return ToUpper(path);
}

/// Switches by their upper-case names, each with the words behind it.
std::map<std::string, std::string> Switches(const std::vector<std::string>& arguments) {
  std::map<std::string, std::string> switches;
  std::string current;
  for (const std::string& word : arguments) {
    if (!word.empty() && word[0] == '/') {
      current = ToUpper(word);
      switches[current];
    } else if (!current.empty()) {
      std::string& text = switches[current];
      text += (text.empty() ? "" : " ") + word;
    }
  }
  return switches;
}

}  // namespace

Result<ToolCommand> ParseToolCommand(const std::string& tool, const std::vector<std::string>& arguments) {
  std::map<std::string, std::string> switches = Switches(arguments);
  const std::string name = ToolName(tool);
  ToolCommand command;
  command.flush = switches.count("/FLUSHSETTINGS") != 0;
  command.from_live = switches.count("/ZEDW") != 0;
  if (name == "OASCFG32") {
    command.group = OnAccessSettings();
  } else if (name == "ODSCFG32") {
    command.group = ScanTaskSettings(switches["/TASK"], switches["/TASKNAME"]);
  } else if (name == "TXDESK" && switches.count("/ALERT") != 0) {
    command.group = AlertSettings();
  } else if (name == "TXDESK" && switches.count("/UIOPTIONS") != 0) {
    command.group = InterfaceSettings();
  } else if (name == "TXFETCH") {
    command.group =
        UpdateTaskSettings(switches["/TASK"], switches["/TASKNAME"], switches.count("/MIRROR") != 0);
  } else {
    return Result<ToolCommand>(kErrorInvalidParameter, tool + " was given nothing that it knows.");
  }
  if (!command.from_live && switches.count("/ZEDRW") == 0) {
    return Result<ToolCommand>(kErrorInvalidParameter, tool + " needs /ZEDW or /ZEDRW.");
  }
  return command;
}

}  // namespace kw::sample
