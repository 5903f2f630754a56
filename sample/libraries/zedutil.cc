// zedutil: the stand-in for the maker's library of registry, cipher and rights helpers.

#include "platform/registry_trees.h"
#include "platform/shared/library_abi.h"
#include "sample/libraries/library_calls.h"
#include "sample/libraries/settings_export.h"
#include "sample/settings/answers.h"
#include "sample/settings/cipher.h"
#include "sample/settings/this_machine.h"

namespace {

using kw::platform::Hive;
using kw::sample::CallContext;

bool HiveOf(uintptr_t root, Hive& hive) {
  hive = root == KITWRIGHT_HKEY_LOCAL_MACHINE ? Hive::kLocalMachine : Hive::kCurrentUser;
  return root == KITWRIGHT_HKEY_LOCAL_MACHINE || root == KITWRIGHT_HKEY_CURRENT_USER;
}

using DeleteEmptyCall = bool (*)(kw::platform::Registry& registry, Hive hive, std::string_view path);

int DeleteEmpty(uintptr_t root, const char16_t* subkey, DeleteEmptyCall call) {
  Hive hive;
  if (!HiveOf(root, hive)) return 0;
  const auto registry = CallContext().Registry();
  return call(*registry, hive, CallContext::Wide(subkey)) ? 1 : 0;
}

}  // namespace

int IsAdmin(void) { return kw::sample::UserIsAdministrator(CallContext().paths) ? 1 : 0; }

int REG_SHDeleteKey(uintptr_t root, const char16_t* subkey) {
  Hive hive;
  if (!HiveOf(root, hive)) return kw::kErrorInvalidHandle;
  const auto registry = CallContext().Registry();
  return kw::platform::DeleteTree(*registry, hive, CallContext::Wide(subkey)).number();
}

int REG_SHDeleteEmptyKey(uintptr_t root, const char16_t* subkey) {
  return DeleteEmpty(root, subkey, kw::platform::DeleteEmptyKey);
}

int REG_SHDeleteEmptyKeyEx(uintptr_t root, const char16_t* subkey) {
  return DeleteEmpty(root, subkey, kw::platform::DeleteEmptyKeyTree);
}

int REG_SHCopyKey(uintptr_t root, const char16_t* subkey, const void* open_destination_key, int) {
  Hive from;
  if (!HiveOf(root, from)) return kw::kErrorInvalidHandle;
  const auto registry = CallContext().Registry();
  return kw::sample::CopyIntoOpenKey(*registry, from, CallContext::Wide(subkey), open_destination_key);
}

int ConvertRegFile(const char16_t* path, int) {
  const CallContext call;
  return kw::sample::ConvertSettingsExport(kw::SystemStorage(), call.HostOf(path), call.code_page).ok() ? 1
                                                                                                        : 0;
}

int EncryptDecrypt(int encrypt, int file, int length, const void* input, void* output) {
  if (kw::sample::MustFail("EncryptDecrypt") || input == nullptr || output == nullptr) return 0;
  const CallContext call;
  if (file != 0) {
    const std::string source = call.HostOf(static_cast<const char16_t*>(input));
    const std::string target = call.HostOf(static_cast<const char16_t*>(output));
    kw::Storage& storage = kw::SystemStorage();
    return (encrypt != 0 ? kw::sample::EncipherFile(storage, source, target)
                         : kw::sample::DecipherFile(storage, source, target))
                   .ok()
               ? 1
               : 0;
  }
  if (length < 0) return 0;
  const std::string text(static_cast<const char*>(input), static_cast<size_t>(length));
  const std::string result = kw::sample::CipherText(text, call.code_page, encrypt != 0);
  result.copy(static_cast<char*>(output), result.size());
  return 1;
}
