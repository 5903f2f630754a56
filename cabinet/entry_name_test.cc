#include "cabinet/entry_name.h"

#include <gmock/gmock.h>

namespace kw::cabinet {
namespace {

using testing::ElementsAre;

TEST(EntryName, PlainNamesAndSubfoldersAreTaken) {
  EXPECT_THAT(*SafeParts("_id_20021_x y.txt"), ElementsAre("_id_20021_x y.txt"));
  EXPECT_THAT(*SafeParts("sub\\a/b"), ElementsAre("sub", "a", "b"));
  EXPECT_THAT(*SafeParts(".hidden"), ElementsAre(".hidden"));
  EXPECT_THAT(*SafeParts("console.txt"), ElementsAre("console.txt"));
  EXPECT_THAT(*SafeParts("com10"), ElementsAre("com10"));
}

TEST(EntryName, WhatCouldReachOutsideTheFolderIsRefused) {
  for (const char* name :
       {"",      "..",  "..\\x",    "a\\..\\x", "a/../../x", "\\x", "/x",          "\\\\server\\x",
        "C:\\x", "C:x", "x:stream", "a\\\\b",   "a\\",       ".",   "a\\.\\b",     "x.",
        "x ",    "...", "a\\..\\",  "x\ty",     "x|y",       "x*",  "\xEF\xBF\xBD"}) {
    EXPECT_EQ(SafeParts(name).number(), kErrorInvalidName) << name;
  }
}

TEST(EntryName, NamesThatNoFileCanBearAreRefused) {
  EXPECT_EQ(SafeParts(std::string(300, 'n')).number(), kErrorInvalidName);
  EXPECT_EQ(SafeParts("sub\\" + std::string(256, 'n') + "\\x").number(), kErrorInvalidName);
  EXPECT_THAT(*SafeParts(std::string(255, 'n')), ElementsAre(std::string(255, 'n')));
  EXPECT_EQ(SafeParts("a\xFF").number(), kErrorInvalidName);
}

TEST(EntryName, DeviceNamesAreRefusedWithAnyExtension) {
  for (const char* name : {"NUL", "nul.txt", "Con", "a\\AUX.c", "prn", "COM1", "lpt9.tar.gz", "COM\xC2\xB9",
                           "CONIN$", "conout$", "nul .txt"}) {
    EXPECT_EQ(SafeParts(name).number(), kErrorInvalidName) << name;
  }
}

TEST(EntryName, PatternsMatchWithoutRegardToCase) {
  EXPECT_TRUE(FitsPattern("anything", "*.*"));
  EXPECT_TRUE(FitsPattern("KTE700.CFG", "*.cfg"));
  EXPECT_TRUE(FitsPattern("ab12.txt", "a?1*.t*"));
  EXPECT_FALSE(FitsPattern("ab.txt", "*.cfg"));
  EXPECT_FALSE(FitsPattern("ab", "a"));
  EXPECT_TRUE(FitsPattern("", "*"));
}

}  // namespace
}  // namespace kw::cabinet
