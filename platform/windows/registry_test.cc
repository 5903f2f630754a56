#include "platform/windows/registry.h"

#include <memory>

#include "platform/testing/registry_contract.h"
#include "platform/windows/registry_views.h"
#include "platform/windows/wide.h"

namespace kw::platform::testing {
namespace {

class WindowsUnderTest : public RegistryUnderTest {
 public:
  Registry& TheRegistry() override { return registry_; }

 private:
  windows::WindowsRegistry registry_{1252};
};

INSTANTIATE_TEST_SUITE_P(Windows, RegistryContract,
                         ::testing::Values([] { return std::make_unique<WindowsUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::windows {
namespace {

constexpr const char* kKey = "SOFTWARE\\KitwrightViews\\Product";

/// Keys of the local machine in both views, gone before and after each test.
class RegistryViewsTest : public ::testing::Test {
 protected:
  RegistryViewsTest() { Clear(); }
  ~RegistryViewsTest() override { Clear(); }
  void Put(REGSAM view, const wchar_t* text) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, Wide(kKey).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | view,
                              nullptr, &key, nullptr),
              ERROR_SUCCESS);
    const DWORD bytes = static_cast<DWORD>((wcslen(text) + 1) * sizeof(wchar_t));
    EXPECT_EQ(RegSetValueExW(key, L"v", 0, REG_SZ, reinterpret_cast<const BYTE*>(text), bytes),
              ERROR_SUCCESS);
    RegCloseKey(key);
  }
  std::string Read(const std::string& path) {
    auto key = registry.OpenKey(Hive::kLocalMachine, path, kKeyQuery);
    if (!key.ok()) return "(none)";
    const auto value = (*key)->QueryValue("v", 255);
    return value.ok() ? value->Text() : "(no value)";
  }
  void Clear() {
    for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
      RegDeleteKeyExW(HKEY_LOCAL_MACHINE, Wide(kKey).c_str(), view, 0);
      RegDeleteKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\KitwrightViews", view, 0);
    }
  }
  WindowsRegistry registry{1252};
};

TEST_F(RegistryViewsTest, AKeyOfA32BitProductIsFound) {
  Put(KEY_WOW64_32KEY, L"32");
  EXPECT_EQ(Read(kKey), "32");
}

TEST_F(RegistryViewsTest, TheProgramsOwnViewComesFirst) {
  Put(KEY_WOW64_32KEY, L"32");
  Put(KEY_WOW64_64KEY, L"64");
  EXPECT_EQ(Read(kKey), "64");
}

TEST_F(RegistryViewsTest, AKeyThatNoViewHasIsMissing) { EXPECT_EQ(Read(kKey), "(none)"); }

TEST_F(RegistryViewsTest, AnExistingKeyIsOpenedWhereItIsAndANewOneMadeInTheOwnView) {
  Put(KEY_WOW64_32KEY, L"32");
  auto key = registry.CreateKey(Hive::kLocalMachine, kKey, kKeyReadWrite);
  ASSERT_TRUE(key.ok());
  EXPECT_EQ((*key)->QueryValue("v", 255)->Text(), "32");
  EXPECT_TRUE(registry.DeleteKey(Hive::kLocalMachine, kKey).ok());
  EXPECT_EQ(Read(kKey), "(none)");
  ASSERT_TRUE(registry.CreateKey(Hive::kLocalMachine, kKey, kKeyReadWrite).ok());
  EXPECT_EQ(ViewOf(Hive::kLocalMachine, Wide(kKey)), 0u);
  EXPECT_EQ(Read(kKey), "(no value)");
}

TEST_F(RegistryViewsTest, AProgramOfOneViewReachesTheOtherByItsPath) {
  Put(KEY_WOW64_32KEY, L"32");
  const std::wstring path = PathInOwnView(ViewOf(Hive::kLocalMachine, Wide(kKey)), Wide(kKey));
  EXPECT_EQ(Narrow(path), "SOFTWARE\\WOW6432Node\\KitwrightViews\\Product");
  EXPECT_EQ(Read(Narrow(path)), "32");
}

TEST(CallKeyPathTest, EmptyPartsDoNotCount) {
  EXPECT_EQ(CallKeyPath("\\A\\\\B\\"), L"A\\B");
  EXPECT_EQ(CallKeyPath(""), L"");
}

}  // namespace
}  // namespace kw::platform::windows
