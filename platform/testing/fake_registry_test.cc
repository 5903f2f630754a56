#include "platform/testing/fake_registry.h"

#include "platform/testing/registry_contract.h"

namespace kw::platform::testing {
namespace {

class FakeUnderTest : public RegistryUnderTest {
 public:
  Registry& TheRegistry() override { return registry_; }

 private:
  FakeRegistry registry_;
};

INSTANTIATE_TEST_SUITE_P(Fake, RegistryContract,
                         ::testing::Values([] { return std::make_unique<FakeUnderTest>(); }));

TEST(FakeRegistry, SetsAndShowsValuesInOneLine) {
  FakeRegistry registry;
  registry.SetText(Hive::kLocalMachine, "SOFTWARE\\X", "Language", "0409");
  registry.SetDword(Hive::kLocalMachine, "SOFTWARE\\X", "b", 1);
  registry.AddKey(Hive::kLocalMachine, "SOFTWARE\\X\\Sub");
  EXPECT_EQ(registry.Get(Hive::kLocalMachine, "software\\x", "language").Text(), "0409");
  EXPECT_EQ(registry.Get(Hive::kLocalMachine, "none", "language").type, kRegNone);
  EXPECT_TRUE(registry.HasKey(Hive::kLocalMachine, "SOFTWARE\\X\\Sub"));
  EXPECT_FALSE(registry.HasKey(Hive::kCurrentUser, "SOFTWARE\\X"));
  EXPECT_THAT(
      registry.Dump(Hive::kLocalMachine, "SOFTWARE\\X"),
      ElementsAre("[SOFTWARE\\X]", "\"Language\"=\"0409\"", "\"b\"=dword:00000001", "[SOFTWARE\\X\\Sub]"));
}

}  // namespace
}  // namespace kw::platform::testing
