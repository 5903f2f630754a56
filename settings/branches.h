#ifndef KITWRIGHT_SETTINGS_BRANCHES_H_
#define KITWRIGHT_SETTINGS_BRANCHES_H_

#include <string>
#include <string_view>

#include "package/run_state.h"
#include "platform/services.h"

namespace kw {

/// Keys below a branch; each path is without its root.
inline constexpr const char* kLiveBranch = "SOFTWARE\\Orvantic\\RDX";
inline constexpr const char* kLiveVersionKey = "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion";
inline constexpr const char* kStagingVersionKey =
    "SOFTWARE\\Orvantic\\ZED\\Kestrane Enterprise\\CurrentVersion";
/// Size of the buffers for names and values.
inline constexpr uint32_t kRegistryBuffer = 255;

// Wrappers around the closed library's registry and cipher operations, on HKEY_CURRENT_USER. Each makes the
// program's folder the current one first; a call that fails counts as the library's "no".

/// True when the key held nothing, or did not exist, and is gone now.
bool DeleteEmptyKey(platform::Services& services, const std::string& path);
/// The same for a key whose subkeys are empty.
bool DeleteEmptyKeyTree(platform::Services& services, const std::string& path);
/// Copies the tree of `source` into the key `destination`, which exists.
void CopyBranch(platform::Services& services, const std::string& source, const std::string& destination);
/// True if the file is a settings export; it is converted in place so that its import lands in the staging
/// branch.
bool ConvertRegistryFile(platform::Services& services, const std::string& path);
bool EncryptFile(platform::Services& services, const std::string& source, const std::string& destination);
bool DecryptFile(platform::Services& services, const std::string& source, const std::string& destination);
/// Enciphers text; the result is 8-bit text of the same length, as UTF-8. Fails on text that the system code
/// page cannot hold.
Result<std::string> EncryptText(platform::Services& services, const std::string& text);

/// Reads a DWORD of the staging branch's root and deletes it. True exactly when it was there and not zero.
bool TakeChangeFlag(platform::Services& services, const std::string& name);
/// A DWORD value, or `fallback` when the key or the value cannot be read or has another type.
uint32_t ReadDword(platform::Services& services, platform::Hive hive, const std::string& key,
                   std::string_view name, uint32_t fallback);

/// A new folder `<TempFolder>\ConfigAppData<unique>`, created; an error in creating it shows when it is used.
std::string MakeConfigAppDataFolder(platform::Services& services, RunState& run);

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_BRANCHES_H_
