#include <string>

#include "sample/package/description.h"

namespace kw::sample {
namespace {

constexpr uint32_t kNone = 0;
constexpr uint32_t kText = 1;
constexpr uint32_t kExpandText = 2;
constexpr uint32_t kBytes = 3;
constexpr uint32_t kNumber = 4;
constexpr uint32_t kTexts = 7;
constexpr uint32_t kLongNumber = 11;

std::string Number(uint32_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((value >> shift) & 0xFF);
  return bytes;
}

std::string ProgramExtensions() {
  std::string text;
  for (int i = 0; i < 90; ++i) text += "E" + std::to_string(100 + i) + " ";
  return text;
}

/// Adds values to one key, a call each.
class KeyWriter {
 public:
  KeyWriter(std::vector<RegistryEntry>& entries, std::string key) : entries_(entries), key_(std::move(key)) {}
  KeyWriter& Text(const std::string& name, const std::string& text) { return Add(name, kText, text); }
  KeyWriter& Dword(const std::string& name, uint32_t value) { return Add(name, kNumber, Number(value)); }
  KeyWriter& Add(const std::string& name, uint32_t type, const std::string& data) {
    entries_.push_back({key_, name, type, data});
    return *this;
  }

 private:
  std::vector<RegistryEntry>& entries_;
  std::string key_;
};

void AddTask(std::vector<RegistryEntry>& entries, const std::string& key, const std::string& name, int type,
             bool scheduled, bool mirror) {
  KeyWriter task(entries, key);
  if (!name.empty()) task.Text("szTaskName", name);
  if (type != 0) task.Dword("wTaskType", static_cast<uint32_t>(type));
  task.Dword("bSchedEnabled", scheduled ? 1 : 0);
  if (mirror) task.Dword("bMirrorTask", 1);
  task.Text("szLogFile", "%TEMP%\\Kestrane.log").Dword("dwMinutes", 60).Dword("bIncludeSubFolders", 1);
}

}  // namespace

std::vector<RegistryEntry> LiveRegistry(Level level) {
  std::vector<RegistryEntry> entries;
  const std::string rdx = "SOFTWARE\\Orvantic\\RDX";
  const std::string version = rdx + "\\Kestrane Enterprise\\CurrentVersion";
  const std::string shared = rdx + "\\Shared Components";

  KeyWriter(entries, "SOFTWARE\\Microsoft\\Internet Explorer").Text("Version", "6.0.2800.1106");
  KeyWriter(entries, "SOFTWARE\\Orvantic\\Stratocon\\Application Plugins\\KESTRANE" + LevelName(level) + "0")
      .Text("Language", "0409")
      .Text("Product Name", "Kestrane Enterprise")
      .Text("Version", level == Level::k700 ? "7.0.0" : "7.1.0")
      .Text("Install Path", kInstallPath);

  KeyWriter(entries, version)
      .Text("", "Kestrane Enterprise")
      .Text("szInstallDir", kInstallPath)
      .Text("szProductVer", level == Level::k700 ? "7.0.0.204" : "7.1.0.213")
      .Dword("bZEDIgnoreLocale", 0);
  KeyWriter(entries, version + "\\Alerts\\CurrentVersion")
      .Dword("bSendAlerts", 1)
      .Text("szServer", "ALERTS")
      .Text("szMessage", "Virus \"%VIRUSNAME%\" in C:\\%FILENAME%")
      .Dword("wPriority", 3);
  KeyWriter(entries, version + "\\Alerts\\CurrentVersion\\Recipients")
      .Text("Recipient0", "administrator@orvantic.example")
      .Text("Recipient1", "Jürgen Groß");
  KeyWriter(entries, version + "\\UI")
      .Dword("bShowIcon", 1)
      .Dword("bShowSplash", 0)
      .Dword("bPasswordForAll", 0)
      .Text("szTitle", "Kestrane")
      .Add("qwInstalled", kLongNumber, Number(0x2B4C8000) + Number(0x01C19225));
  AddTask(entries, version + "\\DefaultTask", "New Scan", 1, false, false);
  const std::string tasks = version + "\\Tasks\\";
  AddTask(entries, tasks + "{818C7543-358A-4C84-899A-14334EMS4BGS}", "Scan All Fixed Disks", 1, true, false);
  AddTask(entries, tasks + "{A14CD6FC-3BA8-4703-87BF-E3247CE382F5}", "AutoUpdate", 5, true, false);
  AddTask(entries, tasks + "{2D8E1B70-5F0C-4E0A-9C51-7B1E5A0D0003}", "Nightly Mirror", 6, true, true);
  AddTask(entries, tasks + "{2D8E1B70-5F0C-4E0A-9C51-7B1E5A0D0004}", "Weekly Scan", 0, true, false);
  AddTask(entries, tasks + "{2D8E1B70-5F0C-4E0A-9C51-7B1E5A0D0005}", "", 1, false, false);

  // Between them the two keys hold every kind of value.
  KeyWriter(entries, shared + "\\On Access Scanner\\TxGuard")
      .Dword("bScanIncoming", 1)
      .Dword("bScanOutgoing", 1)
      .Text("szMoveToFolder", "\\Infected")
      .Add("szLogFolder", kExpandText, "%SystemRoot%\\Temp\\Kestrane")
      .Add("Excluded Types", kTexts, std::string("BAK\0LOG\0TMP", 11))
      .Add("Marker", kNone, "");
  KeyWriter(entries, shared + "\\On Access Scanner\\TxGuard\\Configuration")
      .Text("", "Kestrane guard")
      .Dword("dwAction", 2)
      .Add("Schedule", kBytes, std::string("\x00\x17\x3B\x00\x01\xFE\x7F\x80\x22\x5C", 10))
      // Longer than the buffers of those who compare: it is always kept.
      .Text("szProgExts", ProgramExtensions());
  KeyWriter(entries, shared + "\\On Delivery Scanner")
      .Dword("bScanAttachments", 1)
      .Text("szReplyText", "Removed.");
  KeyWriter(entries, shared + "\\AgentCore")
      .Text("Data Path", kAgentDataPath)
      .Text("Installed Path", kAgentPath);
  return entries;
}

}  // namespace kw::sample
