#include "sample/settings/settings_group.h"

#include <algorithm>
#include <cstdio>

#include "base/text.h"
#include "platform/registry_trees.h"
#include "sample/settings/cipher.h"

namespace kw::sample {

using platform::Hive;
using platform::RegistryKey;
using platform::RegistryValue;

namespace {

std::string Joined(const std::string& key, const std::string& below) {
  return key.empty() || below.empty() ? key + below : key + "\\" + below;
}

std::string Live(const SettingsGroup& group) { return Joined(kLiveBranch, group.path); }
std::string Staged(const SettingsGroup& group) { return Joined(kStagingBranch, group.path); }

Setting Shown(const std::string& subkey, const std::string& name, const RegistryValue& value) {
  Setting setting;
  setting.subkey = subkey;
  setting.name = name;
  setting.type = value.type;
  if (value.type == platform::kRegSz || value.type == platform::kRegExpandSz) {
    setting.text = value.data.substr(0, value.data.find('\0'));
    setting.editable = true;
  } else if (value.type == platform::kRegDword && value.data.size() == 4) {
    setting.text = std::to_string(value.Dword(0));
    setting.editable = true;
  } else {
    char digits[4];
    for (char c : value.data) {
      std::snprintf(digits, sizeof(digits), "%02X", static_cast<uint8_t>(c));
      setting.text += digits;
    }
  }
  return setting;
}

RegistryValue Stored(const Setting& setting) {
  if (setting.type == platform::kRegDword) {
    return RegistryValue::OfDword(static_cast<uint32_t>(LeadingInteger(setting.text)));
  }
  RegistryValue value = RegistryValue::OfText(setting.text);
  value.type = setting.type;
  return value;
}

SettingsGroup Task(const std::string& id, const std::string& name, const std::string& flag, uint32_t type) {
  SettingsGroup group;
  const bool is_default = id.empty() || EqualsNoCase(id, "DefaultTask");
  group.path = std::string(kVersionKey) + (is_default ? "\\DefaultTask" : "\\Tasks\\" + id);
  group.flag = flag;
  group.defaults = {{"szTaskName", RegistryValue::OfText(name)},
                    {"wTaskType", RegistryValue::OfDword(type)},
                    {"bSchedEnabled", RegistryValue::OfDword(0)},
                    {"dwMinutes", RegistryValue::OfDword(60)}};
  return group;
}

}  // namespace

SettingsGroup OnAccessSettings() {
  SettingsGroup group;
  group.title = "On-Access Scan Properties";
  group.path = "Shared Components\\On Access Scanner\\TxGuard";
  group.flag = "bOasCfg32";
  group.left_keys = {"", "Configuration"};
  return group;
}

SettingsGroup AlertSettings() {
  SettingsGroup group;
  group.title = "Beaconry Properties";
  group.path = std::string(kVersionKey) + "\\Alerts\\CurrentVersion";
  group.flag = "bBeaconry";
  return group;
}

SettingsGroup InterfaceSettings() {
  SettingsGroup group;
  group.title = "User Interface Properties";
  group.path = std::string(kVersionKey) + "\\UI";
  group.flag = "bUIOptions";
  group.password = "UIP";
  return group;
}

SettingsGroup OnDeliverySettings() {
  SettingsGroup group;
  group.title = "On-Delivery Scan Properties";
  group.path = "Shared Components\\On Delivery Scanner";
  return group;
}

SettingsGroup ScanTaskSettings(const std::string& id, const std::string& name) {
  SettingsGroup group = Task(id, name, "bOdsCfg32", 1);
  group.title = "On-Demand Scan Properties - " + name;
  return group;
}

SettingsGroup UpdateTaskSettings(const std::string& id, const std::string& name, bool mirror) {
  SettingsGroup group = Task(id, name, "bTxFetch", mirror ? 6 : 5);
  group.title = (mirror ? "Mirror Properties - " : "AutoUpdate Properties - ") + name;
  if (mirror) group.defaults.push_back({"bMirrorTask", RegistryValue::OfDword(1)});
  return group;
}

bool SettingsStore::Exists(Hive hive, const std::string& path) {
  return registry_.OpenKey(hive, path, platform::kKeyQuery).ok();
}

Status SettingsStore::CopyPassword(const SettingsGroup& group) {
  if (group.password.empty()) return {};
  const auto live =
      registry_.OpenKey(Hive::kLocalMachine, Joined(kLiveBranch, kVersionKey), platform::kKeyQuery);
  if (!live.ok()) return {};
  const auto value = (*live)->QueryValue(group.password, platform::kAnyRegistrySize);
  if (!value.ok()) return {};
  KW_ASSIGN_OR_RETURN(
      auto staged,
      registry_.CreateKey(Hive::kCurrentUser, Joined(kStagingBranch, kVersionKey), platform::kKeyAll));
  return staged->SetValue(group.password, *value);
}

Status SettingsStore::Flush(const SettingsGroup& group) {
  KW_RETURN_IF_ERROR(CopyPassword(group));
  if (!Exists(Hive::kLocalMachine, Live(group))) return {};
  return platform::CopyTree(registry_, Hive::kLocalMachine, Live(group), Hive::kCurrentUser, Staged(group));
}

Status SettingsStore::LeaveEmptyKeys(const SettingsGroup& group) {
  for (const std::string& below : group.left_keys) {
    KW_RETURN_IF_ERROR(
        registry_.CreateKey(Hive::kCurrentUser, Joined(Staged(group), below), platform::kKeyAll).status());
  }
  return {};
}

Status SettingsStore::ListKey(Hive hive, const std::string& key, const std::string& subkey,
                              std::vector<Setting>& settings) {
  KW_ASSIGN_OR_RETURN(auto open, registry_.OpenKey(hive, Joined(key, subkey), platform::kKeyQuery));
  for (uint32_t index = 0;; ++index) {
    const auto value = open->EnumValue(index, platform::kAnyRegistrySize);
    if (!value.ok()) {
      if (value.number() != kErrorNoMoreItems) return value.error();
      break;
    }
    settings.push_back(Shown(subkey, value->name, value->value));
  }
  for (uint32_t index = 0;; ++index) {
    const auto name = open->EnumKey(index, platform::kAnyRegistrySize);
    if (!name.ok()) return name.number() == kErrorNoMoreItems ? Status() : Status(name.error());
    KW_RETURN_IF_ERROR(ListKey(hive, key, Joined(subkey, *name), settings));
  }
}

Result<std::vector<Setting>> SettingsStore::Load(const SettingsGroup& group, bool from_live) {
  const Hive hive = from_live ? Hive::kLocalMachine : Hive::kCurrentUser;
  const std::string key = from_live ? Live(group) : Staged(group);
  std::vector<Setting> settings;
  if (Exists(hive, key)) KW_RETURN_IF_ERROR(ListKey(hive, key, "", settings));
  if (settings.empty()) {
    for (const auto& value : group.defaults) settings.push_back(Shown("", value.name, value.value));
  }
  if (!group.password.empty()) {
    Setting password;
    password.name = group.password;
    password.type = platform::kRegSz;
    password.editable = password.secret = true;
    settings.push_back(std::move(password));
  }
  return settings;
}

Status SettingsStore::SaveSetting(const SettingsGroup& group, const Setting& setting) {
  if (!setting.editable || (setting.secret && setting.text.empty())) return {};
  const std::string path =
      setting.secret ? Joined(kStagingBranch, kVersionKey) : Joined(Staged(group), setting.subkey);
  KW_ASSIGN_OR_RETURN(auto key, registry_.CreateKey(Hive::kCurrentUser, path, platform::kKeyAll));
  if (!setting.secret) return key->SetValue(setting.name, Stored(setting));
  KW_ASSIGN_OR_RETURN(const std::string clear, Utf8ToCodePage(setting.text, code_page_));
  const std::string sealed = CodePageToUtf8(CipherText(clear, code_page_, true), code_page_);
  return key->SetValue(setting.name, RegistryValue::OfText(sealed));
}

Status SettingsStore::Save(const SettingsGroup& group, bool from_live, const std::vector<Setting>& settings) {
  // What the box does not show as text comes along unchanged.
  if (from_live) KW_RETURN_IF_ERROR(Flush(group));
  KW_RETURN_IF_ERROR(registry_.CreateKey(Hive::kCurrentUser, Staged(group), platform::kKeyAll).status());
  for (const Setting& setting : settings) KW_RETURN_IF_ERROR(SaveSetting(group, setting));
  if (group.flag.empty()) return {};
  KW_ASSIGN_OR_RETURN(auto root, registry_.CreateKey(Hive::kCurrentUser, kStagingBranch, platform::kKeyAll));
  return root->SetValue(group.flag, RegistryValue::OfDword(1));
}

Status SettingsStore::SaveChanged(const SettingsGroup& group, bool from_live) {
  KW_ASSIGN_OR_RETURN(std::vector<Setting> settings, Load(group, from_live));
  const auto changeable = [](const Setting& setting) {
    // The kind of a task decides where it is listed; a person does not change it in the dialog box.
    return setting.type == platform::kRegDword && setting.name != "wTaskType" &&
           setting.name != "bMirrorTask";
  };
  // The first by name: registries list their values in orders of their own.
  const auto before = [&](const Setting& left, const Setting& right) {
    if (changeable(left) != changeable(right)) return changeable(left);
    const int subkeys = CompareNoCase(left.subkey, right.subkey);
    return subkeys != 0 ? subkeys < 0 : CompareNoCase(left.name, right.name) < 0;
  };
  const auto found = std::min_element(settings.begin(), settings.end(), before);
  if (found != settings.end() && changeable(*found)) {
    // Counting up never comes back to the value that another branch holds, as switching over would.
    found->text = std::to_string(LeadingInteger(found->text) + 1);
  } else if (std::all_of(settings.begin(), settings.end(),
                         [](const Setting& setting) { return setting.secret; })) {
    settings.push_back(Shown("", "dwChanges", RegistryValue::OfDword(1)));
  }
  return Save(group, from_live, settings);
}

}  // namespace kw::sample
