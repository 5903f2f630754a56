#ifndef KITWRIGHT_SAMPLE_SETTINGS_SETTINGS_GROUP_H_
#define KITWRIGHT_SAMPLE_SETTINGS_SETTINGS_GROUP_H_

#include <string>
#include <vector>

#include "platform/registry.h"

namespace kw::sample {

inline constexpr const char* kLiveBranch = "SOFTWARE\\Orvantic\\RDX";
inline constexpr const char* kStagingBranch = "SOFTWARE\\Orvantic\\ZED";
inline constexpr const char* kVersionKey = "Kestrane Enterprise\\CurrentVersion";

/// The settings that one dialog box of the product edits: a key with all below it, at the same place in the
/// live branch (HKEY_LOCAL_MACHINE) and in the staging branch (HKEY_CURRENT_USER).
struct SettingsGroup {
  std::string title;  ///< of the dialog box
  std::string path;   ///< below a branch
  std::string flag;   ///< value of the staging root that tells a change; "" for none
  /// Keys that a cancelled dialog box leaves behind, below `path` ("" is the key itself).
  std::vector<std::string> left_keys = {""};
  /// What a group that exists nowhere starts from.
  std::vector<platform::RegistryKey::NamedValue> defaults;
  /// A password's value in the version key that belongs to the group too; "" for none.
  std::string password;
};

SettingsGroup OnAccessSettings();
SettingsGroup AlertSettings();
SettingsGroup InterfaceSettings();
SettingsGroup OnDeliverySettings();
/// A scan task; `id` "" or "DefaultTask" is the default task.
SettingsGroup ScanTaskSettings(const std::string& id, const std::string& name);
SettingsGroup UpdateTaskSettings(const std::string& id, const std::string& name, bool mirror);

/// One value of a group, as a dialog box shows it.
struct Setting {
  std::string subkey;  ///< below the group's key, "" for the key itself
  std::string name;
  uint32_t type = 0;
  std::string text;  ///< text, or a number in decimal, or bytes in hexadecimal
  bool editable = false;
  /// A password of the version key: shown empty, and saved enciphered where something was typed.
  bool secret = false;
};

/// Reads and writes groups of settings in a registry. Text in UTF-8; a failure is the registry's own.
class SettingsStore {
 public:
  /// `registry` must outlive the store; `code_page` is that of 8-bit text.
  SettingsStore(platform::Registry& registry, int code_page) : registry_(registry), code_page_(code_page) {}

  /// Copies the live group into the staging branch, without a flag. A group that is not there is none to
  /// copy.
  Status Flush(const SettingsGroup& group);
  /// Leaves the keys of a cancelled dialog box.
  Status LeaveEmptyKeys(const SettingsGroup& group);
  /// What the dialog box shows: the live group or the staged one, or the defaults where there is none.
  Result<std::vector<Setting>> Load(const SettingsGroup& group, bool from_live);
  /// Saves into the staging branch, over what was loaded, the settings as they are now, and leaves the flag.
  Status Save(const SettingsGroup& group, bool from_live, const std::vector<Setting>& settings);
  /// Saves as a person would who changed one number: the first by name, of the group's key before those
  /// below. Values are changed, never added, where there are any.
  Status SaveChanged(const SettingsGroup& group, bool from_live);

 private:
  Status CopyPassword(const SettingsGroup& group);
  Status SaveSetting(const SettingsGroup& group, const Setting& setting);
  Status ListKey(platform::Hive hive, const std::string& key, const std::string& subkey,
                 std::vector<Setting>& settings);
  bool Exists(platform::Hive hive, const std::string& path);

  platform::Registry& registry_;
  int code_page_;
};

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_SETTINGS_GROUP_H_
