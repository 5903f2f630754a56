#ifndef KITWRIGHT_PLATFORM_WINDOWS_DENY_CHANGES_H_
#define KITWRIGHT_PLATFORM_WINDOWS_DENY_CHANGES_H_

#include <aclapi.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {

/// Denies everybody to add to a folder and to delete from it, or takes that back.
inline void DenyChanges(const std::string& path, bool deny) {
  SID_IDENTIFIER_AUTHORITY world = {SECURITY_WORLD_SID_AUTHORITY};
  PSID everybody = nullptr;
  ASSERT_TRUE(AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everybody));
  EXPLICIT_ACCESSW entries[2] = {};
  for (EXPLICIT_ACCESSW& entry : entries) {
    entry.grfInheritance = SUB_CONTAINERS_AND_OBJECTS_INHERIT;
    entry.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    entry.Trustee.ptstrName = static_cast<LPWSTR>(everybody);
  }
  // Refusals stand before what is granted.
  entries[0].grfAccessMode = DENY_ACCESS;
  entries[0].grfAccessPermissions = FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY | FILE_DELETE_CHILD | DELETE;
  entries[1].grfAccessMode = GRANT_ACCESS;
  entries[1].grfAccessPermissions = GENERIC_ALL;
  PACL list = nullptr;
  ASSERT_EQ(SetEntriesInAclW(deny ? 2 : 1, deny ? entries : entries + 1, nullptr, &list),
            static_cast<DWORD>(ERROR_SUCCESS));
  std::wstring wide = Wide(path);
  EXPECT_EQ(SetNamedSecurityInfoW(wide.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                                  list, nullptr),
            static_cast<DWORD>(ERROR_SUCCESS));
  LocalFree(list);
  FreeSid(everybody);
}

}  // namespace kw::platform::windows

#endif  // KITWRIGHT_PLATFORM_WINDOWS_DENY_CHANGES_H_
