#ifndef KITWRIGHT_PLATFORM_TESTING_REGISTRY_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_REGISTRY_CONTRACT_H_

// The contract of Registry as tests, and of the operations on whole trees. A test program includes this in
// one file and instantiates the suite:
//
//   INSTANTIATE_TEST_SUITE_P(Fake, RegistryContract, ::testing::Values(&MakeSomething));

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/registry_trees.h"
#include "platform/testing/registry_dump.h"

namespace kw::platform::testing {

/// A registry under test, with the code page 1252 for its 8-bit sizes.
class RegistryUnderTest {
 public:
  virtual ~RegistryUnderTest() = default;
  virtual Registry& TheRegistry() = 0;
};

/// Works below one key of the current user, which is gone before and after each test.
class RegistryContract
    : public ::testing::TestWithParam<std::function<std::unique_ptr<RegistryUnderTest>()>> {
 protected:
  static constexpr Hive kUser = Hive::kCurrentUser;

  RegistryContract() : under_test_(GetParam()()), registry(under_test_->TheRegistry()) { Clear(); }
  ~RegistryContract() override { Clear(); }

  static std::string In(const std::string& path) {
    return path.empty() ? "Software\\KitwrightContract" : "Software\\KitwrightContract\\" + path;
  }
  std::unique_ptr<RegistryKey> Make(const std::string& path, uint32_t access = kKeyAll) {
    auto key = registry.CreateKey(kUser, In(path), access);
    EXPECT_TRUE(key.ok()) << key.status().message();
    return key.ok() ? std::move(*key) : nullptr;
  }
  void Set(const std::string& path, const std::string& name, const RegistryValue& value) {
    EXPECT_EQ(Make(path)->SetValue(name, value).message(), "");
  }
  std::vector<std::string> Dump(const std::string& path) { return DumpRegistry(registry, kUser, In(path)); }
  bool Exists(const std::string& path) { return registry.OpenKey(kUser, In(path), kKeyQuery).ok(); }
  static RegistryValue Typed(uint32_t type, std::string data) { return {type, std::move(data), 0}; }

 private:
  void Clear() { DeleteTree(registry, kUser, "Software\\KitwrightContract").IgnoreError(); }

  std::unique_ptr<RegistryUnderTest> under_test_;

 protected:
  Registry& registry;
};

using ::testing::ElementsAre;

TEST_P(RegistryContract, AMissingKeyOrValueIsFileNotFound) {
  EXPECT_EQ(registry.OpenKey(kUser, In("None"), kKeyQuery).number(), kErrorFileNotFound);
  EXPECT_EQ(Make("A")->QueryValue("none", 100).number(), kErrorFileNotFound);
  EXPECT_EQ(Make("A")->DeleteValue("none").number(), kErrorFileNotFound);
  EXPECT_EQ(registry.DeleteKey(kUser, In("None")).number(), kErrorFileNotFound);
}

TEST_P(RegistryContract, NamesCompareWithoutCaseAndKeepTheirFirstSpelling) {
  Set("Key \xC3\x84", "Name \xC3\xB6", RegistryValue::OfText("one"));
  Set("KEY \xC3\xA4", "NAME \xC3\x96", RegistryValue::OfText("two"));
  EXPECT_THAT(Dump(""),
              ElementsAre("[Software\\KitwrightContract]", "[Software\\KitwrightContract\\Key \xC3\x84]",
                          "\"Name \xC3\xB6\"=\"two\""));
}

TEST_P(RegistryContract, EveryTypeComesBackWithItsDataAndSize) {
  const std::vector<RegistryValue> values = {
      RegistryValue::OfText("text"),
      RegistryValue::OfText("\xC3\xA4\xE2\x82\xAC"),
      Typed(kRegExpandSz, std::string("%A%\0", 4)),
      Typed(kRegMultiSz, std::string("a\0b\0\0", 5)),
      Typed(kRegBinary, std::string("\0\1\xFF", 3)),
      RegistryValue::OfDword(0xFEDCBA98),
      Typed(kRegQword, std::string("\1\2\3\4\5\6\7\0", 8)),
      Typed(kRegNone, ""),
      Typed(kRegBinary, ""),
      Typed(77, "odd"),
      RegistryValue::OfText(""),
      RegistryValue::OfText("line\r\nbreak \"quoted\" \\"),
  };
  const std::vector<uint32_t> sizes = {5, 3, 4, 5, 3, 4, 8, 0, 0, 3, 1, 23};
  const auto key = Make("A");
  for (size_t i = 0; i < values.size(); ++i) {
    ASSERT_TRUE(key->SetValue("v" + std::to_string(i), values[i]).ok());
    const auto read = key->QueryValue("V" + std::to_string(i), kAnyRegistrySize);
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(*read, values[i]) << i;
    EXPECT_EQ(read->size, sizes[i]) << i;
  }
}

TEST_P(RegistryContract, ATextOfNoByteAndOneOfItsTerminatorAreTwoThings) {
  const auto key = Make("A");
  ASSERT_TRUE(key->SetValue("none", Typed(kRegSz, "")).ok());
  ASSERT_TRUE(key->SetValue("one", RegistryValue::OfText("")).ok());
  EXPECT_EQ(key->QueryValue("none", 255)->size, 0u);
  EXPECT_EQ(key->QueryValue("one", 255)->size, 1u);
}

TEST_P(RegistryContract, TheDefaultValueHasTheEmptyName) {
  const auto key = Make("A");
  ASSERT_TRUE(key->SetValue("", RegistryValue::OfText("d")).ok());
  EXPECT_EQ(key->EnumValue(0, 255)->name, "");
  EXPECT_EQ(key->QueryValue("", 255)->Text(), "d");
}

TEST_P(RegistryContract, AValueMustFitTheBufferByIts8BitSize) {
  const auto key = Make("A");
  ASSERT_TRUE(key->SetValue("n", RegistryValue::OfText(std::string(254, 'x'))).ok());
  EXPECT_TRUE(key->QueryValue("n", 255).ok());
  EXPECT_EQ(key->QueryValue("n", 254).number(), kErrorMoreData);
  EXPECT_TRUE(key->EnumValue(0, 255).ok());
  EXPECT_EQ(key->EnumValue(0, 254).number(), kErrorMoreData);
  std::string umlauts;
  for (int i = 0; i < 254; ++i) umlauts += "\xC3\xA4";
  ASSERT_TRUE(key->SetValue("n", RegistryValue::OfText(umlauts)).ok());
  EXPECT_EQ(key->QueryValue("n", 255)->size, 255u);
}

TEST_P(RegistryContract, ANameMustFitTheBufferWithItsTerminator) {
  Make("Parent\\abcd");
  const auto parent = Make("Parent");
  EXPECT_EQ(*parent->EnumKey(0, 5), "abcd");
  EXPECT_EQ(parent->EnumKey(0, 4).number(), kErrorMoreData);
  ASSERT_TRUE(parent->SetValue("abcd", RegistryValue::OfDword(1)).ok());
  EXPECT_EQ(parent->EnumValue(0, 5)->name, "abcd");
  EXPECT_EQ(parent->EnumValue(0, 4).number(), kErrorMoreData);
}

TEST_P(RegistryContract, SubkeysEnumerateInSortedOrder) {
  for (const char* name : {"b", "C", "a", "B1"}) Make(std::string("P\\") + name);
  const auto key = Make("P");
  std::vector<std::string> names;
  for (uint32_t i = 0; key->EnumKey(i, 255).ok(); ++i) names.push_back(*key->EnumKey(i, 255));
  EXPECT_THAT(names, ElementsAre("a", "b", "B1", "C"));
  EXPECT_EQ(key->EnumKey(4, 255).number(), kErrorNoMoreItems);
  EXPECT_EQ(key->QueryInfo()->subkeys, 4u);
}

TEST_P(RegistryContract, ValuesEnumerateInOrderOfCreation) {
  const auto key = Make("A");
  for (const char* name : {"z", "a", "m"}) ASSERT_TRUE(key->SetValue(name, RegistryValue::OfDword(1)).ok());
  ASSERT_TRUE(key->SetValue("z", RegistryValue::OfDword(2)).ok());
  ASSERT_TRUE(key->DeleteValue("a").ok());
  ASSERT_TRUE(key->SetValue("a", RegistryValue::OfDword(3)).ok());
  EXPECT_THAT(Dump("A"), ElementsAre("[Software\\KitwrightContract\\A]", "\"z\"=dword:00000002",
                                     "\"m\"=dword:00000001", "\"a\"=dword:00000003"));
  EXPECT_EQ(key->EnumValue(3, 255).number(), kErrorNoMoreItems);
  EXPECT_EQ(key->QueryInfo()->values, 3u);
}

TEST_P(RegistryContract, ValuesMayBeDeletedWhileTheyAreEnumeratedDownwards) {
  const auto key = Make("A");
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(key->SetValue(std::to_string(i), RegistryValue::OfDword(1)).ok());
  }
  for (const uint32_t i : {4u, 2u, 0u}) {
    EXPECT_TRUE(key->DeleteValue(key->EnumValue(i, 255)->name).ok());
  }
  EXPECT_THAT(Dump("A"), ElementsAre("[Software\\KitwrightContract\\A]", "\"1\"=dword:00000001",
                                     "\"3\"=dword:00000001"));
}

TEST_P(RegistryContract, AHandleCanDoWhatItWasOpenedForAndNothingElse) {
  Set("A", "v", RegistryValue::OfDword(1));
  const auto reader = registry.OpenKey(kUser, In("A"), kKeyQuery);
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ((*reader)->SetValue("v", RegistryValue::OfDword(2)).number(), kErrorAccessDenied);
  EXPECT_EQ((*reader)->DeleteValue("v").number(), kErrorAccessDenied);
  EXPECT_EQ((*reader)->QueryValue("v", 255)->Dword(0), 1u);
  const auto writer = registry.OpenKey(kUser, In("A"), kKeySet);
  ASSERT_TRUE(writer.ok());
  EXPECT_EQ((*writer)->QueryValue("v", 255).number(), kErrorAccessDenied);
  EXPECT_EQ((*writer)->EnumValue(0, 255).number(), kErrorAccessDenied);
  EXPECT_EQ((*writer)->QueryInfo().number(), kErrorAccessDenied);
  EXPECT_TRUE((*writer)->SetValue("v", RegistryValue::OfDword(3)).ok());
  EXPECT_EQ((*reader)->QueryValue("v", 255)->Dword(0), 3u);
}

TEST_P(RegistryContract, ADeletedKeyIsGoneForItsOpenHandles) {
  const auto key = Make("A");
  ASSERT_TRUE(registry.DeleteKey(kUser, In("A")).ok());
  EXPECT_EQ(key->QueryValue("v", 255).number(), kErrorKeyDeleted);
  EXPECT_EQ(key->SetValue("v", RegistryValue::OfDword(1)).number(), kErrorKeyDeleted);
  EXPECT_FALSE(Exists("A"));
}

TEST_P(RegistryContract, AKeyWithSubkeysIsNotDeletedOneWithValuesIs) {
  Set("A\\B", "v", RegistryValue::OfDword(1));
  EXPECT_EQ(registry.DeleteKey(kUser, In("A")).number(), kErrorAccessDenied);
  EXPECT_TRUE(registry.DeleteKey(kUser, In("A\\B")).ok());
  EXPECT_TRUE(registry.DeleteKey(kUser, In("A")).ok());
  EXPECT_FALSE(Exists("A"));
}

TEST_P(RegistryContract, CreatingAKeyMakesItsParentsAndOpensAnExistingOne) {
  Set("A\\B\\C", "v", RegistryValue::OfDword(1));
  EXPECT_EQ(Make("A\\B\\C")->QueryValue("v", 255)->Dword(0), 1u);
  EXPECT_TRUE(Exists("A\\B"));
}

TEST_P(RegistryContract, ATreeIsCopiedWithItsOrderAndSpelling) {
  Set("From", "z", RegistryValue::OfText("1"));
  Set("From", "a", RegistryValue::OfDword(2));
  Set("From\\Sub\\Deep", "", Typed(kRegBinary, "\x01"));
  Set("To", "old", RegistryValue::OfDword(3));
  ASSERT_EQ(CopyTree(registry, kUser, In("From"), kUser, In("To")).message(), "");
  EXPECT_THAT(Dump("To"),
              ElementsAre("[Software\\KitwrightContract\\To]", "\"old\"=dword:00000003", "\"z\"=\"1\"",
                          "\"a\"=dword:00000002", "[Software\\KitwrightContract\\To\\Sub]",
                          "[Software\\KitwrightContract\\To\\Sub\\Deep]", "@=hex:01"));
  EXPECT_EQ(CopyTree(registry, kUser, In("None"), kUser, In("To")).number(), kErrorFileNotFound);
}

TEST_P(RegistryContract, DeletingATreeTakesAllBelowIt) {
  Set("A\\B\\C", "v", RegistryValue::OfDword(1));
  Set("A\\D", "v", RegistryValue::OfDword(1));
  EXPECT_TRUE(DeleteTree(registry, kUser, In("A")).ok());
  EXPECT_FALSE(Exists("A"));
  EXPECT_EQ(DeleteTree(registry, kUser, In("A")).number(), kErrorFileNotFound);
}

TEST_P(RegistryContract, OnlyAnEmptyKeyIsDeletedAsEmpty) {
  Set("WithValue", "v", RegistryValue::OfDword(1));
  Make("WithKey\\Sub");
  Make("Empty");
  EXPECT_FALSE(DeleteEmptyKey(registry, kUser, In("WithValue")));
  EXPECT_FALSE(DeleteEmptyKey(registry, kUser, In("WithKey")));
  EXPECT_TRUE(DeleteEmptyKey(registry, kUser, In("Empty")));
  EXPECT_TRUE(DeleteEmptyKey(registry, kUser, In("Empty")));
  EXPECT_TRUE(Exists("WithValue"));
  EXPECT_TRUE(Exists("WithKey\\Sub"));
  EXPECT_FALSE(Exists("Empty"));
}

TEST_P(RegistryContract, TheEmptyKeysOfATreeGoAndTheOthersStay) {
  Make("A\\Empty\\Deep");
  Set("A\\Full\\Deep", "v", RegistryValue::OfDword(1));
  Make("B\\Empty\\Deep");
  EXPECT_FALSE(DeleteEmptyKeyTree(registry, kUser, In("A")));
  EXPECT_FALSE(Exists("A\\Empty"));
  EXPECT_TRUE(Exists("A\\Full\\Deep"));
  EXPECT_TRUE(DeleteEmptyKeyTree(registry, kUser, In("B")));
  EXPECT_FALSE(Exists("B"));
  EXPECT_TRUE(DeleteEmptyKeyTree(registry, kUser, In("B")));
}

TEST_P(RegistryContract, TenThousandValuesAreNoDelay) {
  const auto key = Make("Many");
  for (uint32_t i = 0; i < 10000; ++i) {
    ASSERT_TRUE(key->SetValue("value " + std::to_string(i), RegistryValue::OfDword(i)).ok());
  }
  EXPECT_EQ(key->QueryInfo()->values, 10000u);
  EXPECT_EQ(key->QueryValue("VALUE 9999", 255)->Dword(0), 9999u);
  EXPECT_EQ(key->EnumValue(5000, 255)->name, "value 5000");
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_REGISTRY_CONTRACT_H_
