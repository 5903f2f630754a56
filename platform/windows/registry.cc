#include "platform/windows/registry.h"

#include <utility>
#include <vector>

#include "base/text.h"
#include "formats/reg_file.h"
#include "platform/shared/registry_tree.h"
#include "platform/windows/registry_views.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {
namespace {

// The longest names that the system allows, in characters with the terminator.
constexpr DWORD kLongestKeyName = 256;
constexpr DWORD kLongestValueName = 16384;

std::string FullName(Hive hive, std::string_view path) {
  return std::string(HiveName(hive)) + "\\" + std::string(path);
}

REGSAM Rights(uint32_t access) {
  REGSAM rights = 0;
  if ((access & kKeyQuery) != 0) rights |= KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS;
  if ((access & kKeySet) != 0) rights |= KEY_SET_VALUE;
  if ((access & kKeyAll) == kKeyAll) rights |= KEY_CREATE_SUB_KEY;
  return rights;
}

Error Failure(LSTATUS number, const std::string& key) {
  switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return {kErrorFileNotFound, "There is no registry key " + key + "."};
    case ERROR_ACCESS_DENIED:
      return {kErrorAccessDenied, "Access to the registry key " + key + " is denied."};
    case ERROR_KEY_DELETED:
      return {kErrorKeyDeleted, "The registry key " + key + " has been deleted."};
    default:
      return {static_cast<int>(number),
              "The registry key " + key + " cannot be used: error " + std::to_string(number) + "."};
  }
}

class WindowsKey : public RegistryKey {
 public:
  WindowsKey(HKEY key, std::string name, uint32_t access, int code_page)
      : key_(key), name_(std::move(name)), access_(access), code_page_(code_page) {}
  ~WindowsKey() override { RegCloseKey(key_); }

  Result<RegistryValue> QueryValue(std::string_view name, uint32_t buffer_size) override {
    if (!(access_ & kKeyQuery)) return Denied();
    const std::wstring wide = Wide(name);
    std::string bytes;
    DWORD type = REG_NONE;
    DWORD size = 0;
    LSTATUS status = RegQueryValueExW(key_, wide.c_str(), nullptr, &type, nullptr, &size);
    // Somebody may lengthen the value between the two calls.
    do {
      if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) break;
      bytes.resize(size);
      status =
          RegQueryValueExW(key_, wide.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()), &size);
    } while (status == ERROR_MORE_DATA);
    if (status == ERROR_FILE_NOT_FOUND) return NoValue(name);
    if (status != ERROR_SUCCESS) return Failure(status, name_);
    bytes.resize(size);
    RegistryValue value = ToValue(type, bytes);
    if (value.size > buffer_size) return TooLong(name);
    return value;
  }

  Status SetValue(std::string_view name, const RegistryValue& value) override {
    if (!(access_ & kKeySet)) return Denied();
    const bool text = formats::RegTypeIsText(value.type);
    if (!IsValidUtf8(name) || (text && !IsValidUtf8(value.data))) {
      return {kErrorInvalidParameter, "A value for the registry key " + name_ + " is no UTF-8 text."};
    }
    const std::wstring wide = text ? Wide(value.data) : std::wstring();
    const BYTE* const data =
        text ? reinterpret_cast<const BYTE*>(wide.data()) : reinterpret_cast<const BYTE*>(value.data.data());
    const size_t size = text ? wide.size() * sizeof(wchar_t) : value.data.size();
    return Done(RegSetValueExW(key_, Wide(name).c_str(), 0, value.type, data, static_cast<DWORD>(size)),
                name);
  }

  Status DeleteValue(std::string_view name) override {
    if (!(access_ & kKeySet)) return Denied();
    return Done(RegDeleteValueW(key_, Wide(name).c_str()), name);
  }

  Result<std::string> EnumKey(uint32_t index, uint32_t buffer_size) override {
    if (!(access_ & kKeyQuery)) return Denied();
    wchar_t name[kLongestKeyName];
    DWORD length = kLongestKeyName;
    const LSTATUS status = RegEnumKeyExW(key_, index, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) return NoMore();
    if (status != ERROR_SUCCESS) return Failure(status, name_);
    std::string text = Narrow({name, length});
    if (NameSize(text) > buffer_size) return TooLong(text);
    return text;
  }

  Result<NamedValue> EnumValue(uint32_t index, uint32_t buffer_size) override {
    if (!(access_ & kKeyQuery)) return Denied();
    std::vector<wchar_t> name(kLongestValueName);
    std::string bytes(256, '\0');
    DWORD type = REG_NONE;
    DWORD length = 0;
    DWORD size = 0;
    LSTATUS status = ERROR_MORE_DATA;
    while (status == ERROR_MORE_DATA) {
      length = kLongestValueName;
      size = static_cast<DWORD>(bytes.size());
      status = RegEnumValueW(key_, index, name.data(), &length, nullptr, &type,
                             reinterpret_cast<BYTE*>(bytes.data()), &size);
      if (status == ERROR_MORE_DATA) bytes.resize(size > bytes.size() ? size : bytes.size() * 2);
    }
    if (status == ERROR_NO_MORE_ITEMS) return NoMore();
    if (status != ERROR_SUCCESS) return Failure(status, name_);
    bytes.resize(size);
    NamedValue named;
    named.name = Narrow({name.data(), length});
    named.value = ToValue(type, bytes);
    if (NameSize(named.name) > buffer_size || named.value.size > buffer_size) return TooLong(named.name);
    return named;
  }

  Result<Counts> QueryInfo() override {
    if (!(access_ & kKeyQuery)) return Denied();
    DWORD subkeys = 0;
    DWORD values = 0;
    const LSTATUS status = RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                                            &values, nullptr, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) return Failure(status, name_);
    return Counts{subkeys, values};
  }

 private:
  RegistryValue ToValue(DWORD type, const std::string& bytes) const {
    RegistryValue value;
    value.type = type;
    if (formats::RegTypeIsText(type)) {
      std::wstring wide(bytes.size() / sizeof(wchar_t), L'\0');
      bytes.copy(reinterpret_cast<char*>(wide.data()), wide.size() * sizeof(wchar_t));
      value.data = Narrow(wide);
      value.size = EightBitSize(value.data, code_page_);
    } else {
      value.data = bytes;
      value.size = static_cast<uint32_t>(bytes.size());
    }
    return value;
  }

  uint32_t NameSize(std::string_view name) const { return EightBitSize(name, code_page_) + 1; }

  Status Done(LSTATUS status, std::string_view value) const {
    if (status == ERROR_SUCCESS) return {};
    if (status == ERROR_FILE_NOT_FOUND) return NoValue(value);
    return Failure(status, name_);
  }
  Error Denied() const {
    return {kErrorAccessDenied, "The registry key " + name_ + " was not opened for this."};
  }
  Error NoMore() const { return {kErrorNoMoreItems, "The registry key " + name_ + " holds no more items."}; }
  Error NoValue(std::string_view value) const {
    return {kErrorFileNotFound,
            "The registry key " + name_ + " holds no value \"" + std::string(value) + "\"."};
  }
  Error TooLong(std::string_view item) const {
    return {kErrorMoreData,
            "\"" + std::string(item) + "\" of the registry key " + name_ + " is longer than the buffer."};
  }

  HKEY key_;
  std::string name_;
  uint32_t access_;
  int code_page_;
};

}  // namespace

Result<std::unique_ptr<RegistryKey>> WindowsRegistry::OpenKey(Hive hive, std::string_view path,
                                                              uint32_t access) {
  const std::wstring wide = CallKeyPath(path);
  HKEY key = nullptr;
  const LSTATUS status =
      RegOpenKeyExW(RootOf(hive), wide.c_str(), 0, Rights(access) | ViewOf(hive, wide), &key);
  if (status != ERROR_SUCCESS) return Failure(status, FullName(hive, path));
  return std::unique_ptr<RegistryKey>(
      std::make_unique<WindowsKey>(key, FullName(hive, path), access, code_page_));
}

Result<std::unique_ptr<RegistryKey>> WindowsRegistry::CreateKey(Hive hive, std::string_view path,
                                                                uint32_t access) {
  if (!IsValidUtf8(path) || path.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) {
    return {kErrorInvalidParameter, "A registry key cannot be called " + FullName(hive, path) + "."};
  }
  const std::wstring wide = CallKeyPath(path);
  HKEY key = nullptr;
  const LSTATUS status = RegCreateKeyExW(RootOf(hive), wide.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         Rights(access) | ViewOf(hive, wide), nullptr, &key, nullptr);
  if (status != ERROR_SUCCESS) return Failure(status, FullName(hive, path));
  return std::unique_ptr<RegistryKey>(
      std::make_unique<WindowsKey>(key, FullName(hive, path), access, code_page_));
}

Status WindowsRegistry::DeleteKey(Hive hive, std::string_view path) {
  const std::wstring wide = CallKeyPath(path);
  if (wide.empty()) return {kErrorAccessDenied, "The registry key " + FullName(hive, path) + " is a root."};
  const LSTATUS status = RegDeleteKeyExW(RootOf(hive), wide.c_str(), ViewOf(hive, wide), 0);
  if (status != ERROR_SUCCESS) return Failure(status, FullName(hive, path));
  return {};
}

}  // namespace kw::platform::windows
