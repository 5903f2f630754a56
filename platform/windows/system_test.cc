#include "platform/windows/system.h"

#include <memory>

#include "platform/testing/system_contract.h"
#include "platform/windows/file_system.h"

namespace kw::platform::testing {
namespace {

class WindowsUnderTest : public SystemUnderTest {
 public:
  System& Under() override { return system_; }
  FileSystem& Files() override { return files_; }

 private:
  windows::WindowsSystem system_;
  windows::WindowsFileSystem files_;
};

INSTANTIATE_TEST_SUITE_P(Windows, SystemContract,
                         ::testing::Values([] { return std::make_unique<WindowsUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::windows {
namespace {

TEST(WindowsSystem, MemoryIsSaturatedAsThe32BitFieldHoldsIt) {
  MEMORYSTATUSEX memory{};
  memory.dwLength = sizeof memory;
  ASSERT_TRUE(GlobalMemoryStatusEx(&memory));
  const int32_t told = WindowsSystem().TotalPhysicalMemory();
  if (memory.ullTotalPhys > 0xFFFFFFFF) {
    EXPECT_EQ(told, -1);
  } else {
    EXPECT_EQ(static_cast<uint32_t>(told), memory.ullTotalPhys);
  }
}

TEST(WindowsSystem, ASecondInstanceFindsTheFirstUntilThatEnds) {
  {
    WindowsSystem first;
    WindowsSystem second;
    EXPECT_FALSE(first.PreviousInstance());
    EXPECT_TRUE(second.PreviousInstance());
    EXPECT_FALSE(first.PreviousInstance());
  }
  WindowsSystem third;
  EXPECT_FALSE(third.PreviousInstance());
}

TEST(WindowsProducts, AnUnknownProductHasNoFeatures) {
  WindowsProducts products;
  EXPECT_TRUE(products.RelatedProducts("{00000000-1111-2222-3333-444444444444}").empty());
  EXPECT_TRUE(products.RelatedProducts("no code").empty());
  EXPECT_EQ(products.FeatureState("{00000000-1111-2222-3333-444444444444}", "Console"), -1);
}

}  // namespace
}  // namespace kw::platform::windows
