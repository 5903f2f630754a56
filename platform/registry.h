#ifndef KITWRIGHT_PLATFORM_REGISTRY_H_
#define KITWRIGHT_PLATFORM_REGISTRY_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/result.h"

namespace kw::platform {

/// Root keys.
enum class Hive { kCurrentUser, kLocalMachine };

/// Value types, with the system's numbers.
enum RegistryType : uint32_t {
  kRegNone = 0,
  kRegSz = 1,
  kRegExpandSz = 2,
  kRegBinary = 3,
  kRegDword = 4,
  kRegMultiSz = 7,
  kRegQword = 11,
};

/// A value's content. Text types hold UTF-8 with whatever terminating NULs are stored (an empty string with
/// its terminator is one NUL); other types hold the raw bytes (a DWORD: four, low byte first).
struct RegistryValue {
  uint32_t type = kRegNone;
  std::string data;
  /// Bytes that the system's 8-bit calls report for the data: for text the size in the system code page,
  /// terminators included. Filled by QueryValue and EnumValue, ignored by SetValue.
  uint32_t size = 0;

  /// Text up to the first NUL; "" for other types.
  std::string Text() const;
  /// The number of a four-byte DWORD, or `fallback`.
  uint32_t Dword(uint32_t fallback) const;
  static RegistryValue OfText(std::string_view text);  ///< REG_SZ with its terminator
  static RegistryValue OfDword(uint32_t number);

  bool operator==(const RegistryValue& other) const { return type == other.type && data == other.data; }
};

/// Access rights of a key handle; a handle can do what it was opened for and nothing else
/// (otherwise kErrorAccessDenied).
enum RegistryAccess : uint32_t {
  kKeyQuery = 1,  ///< read and enumerate values, count, enumerate subkeys
  kKeySet = 2,    ///< set and delete values
  kKeyReadWrite = 3,
  kKeyAll = 7  ///< also create subkeys
};

/// An open key; closes in the destructor. Names compare without regard to case and keep their first spelling.
/// A key may be deleted while it is open; every call then gives kErrorKeyDeleted.
class RegistryKey {
 public:
  virtual ~RegistryKey() = default;
  /// A value ("" is the default value). kErrorFileNotFound when absent; kErrorMoreData when its 8-bit size is
  /// over `buffer_size` bytes.
  virtual Result<RegistryValue> QueryValue(std::string_view name, uint32_t buffer_size) = 0;
  /// kErrorInvalidParameter when the name, or the data of a text type, is no UTF-8.
  virtual Status SetValue(std::string_view name, const RegistryValue& value) = 0;
  virtual Status DeleteValue(std::string_view name) = 0;
  /// Name of the subkey at `index`, in sorted order; kErrorNoMoreItems behind the last, kErrorMoreData when
  /// the name with its terminator is over `buffer_size` bytes.
  virtual Result<std::string> EnumKey(uint32_t index, uint32_t buffer_size) = 0;
  struct NamedValue {
    std::string name;
    RegistryValue value;
  };
  /// The value at `index`, in order of creation; errors as EnumKey, for name and data.
  virtual Result<NamedValue> EnumValue(uint32_t index, uint32_t buffer_size) = 0;
  struct Counts {
    uint32_t subkeys = 0;
    uint32_t values = 0;
  };
  virtual Result<Counts> QueryInfo() = 0;
};

/// The system's registry. Paths are without the root, separated by "\". Changes are visible to other
/// processes at once, and theirs to this one.
class Registry {
 public:
  virtual ~Registry() = default;
  /// kErrorFileNotFound when the key does not exist.
  virtual Result<std::unique_ptr<RegistryKey>> OpenKey(Hive hive, std::string_view path, uint32_t access) = 0;
  /// Opens a key, making it and its missing parents.
  virtual Result<std::unique_ptr<RegistryKey>> CreateKey(Hive hive, std::string_view path,
                                                         uint32_t access) = 0;
  /// Deletes one key with its values. kErrorFileNotFound when there is none, kErrorAccessDenied when it has
  /// subkeys or is a root.
  virtual Status DeleteKey(Hive hive, std::string_view path) = 0;
};

/// A buffer size for callers that want names and data of any length.
inline constexpr uint32_t kAnyRegistrySize = 0xFFFFFFFF;

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_REGISTRY_H_
