#include "sample/console/catalogue_file.h"

#include <gtest/gtest.h>

namespace kw::sample {
namespace {

TEST(CatalogueFile, WhatIsCompressedExpandsAgain) {
  std::string text = "<PkgCatalog>";
  for (int i = 0; i < 1000; ++i) text += "<FileItem/>";
  const auto packed = CompressCatalogue(text);
  ASSERT_TRUE(packed.ok());
  EXPECT_LT(packed->size(), text.size() / 10);
  EXPECT_EQ(ExpandCatalogue(*packed).value_or(""), text);
  EXPECT_EQ(ExpandCatalogue(*CompressCatalogue("")).value_or("?"), "");
}

TEST(CatalogueFile, EveryChangedByteIsNoticed) {
  const std::string packed = *CompressCatalogue("<PkgCatalog><LangID>0409</LangID></PkgCatalog>");
  for (size_t i = 0; i < packed.size(); ++i) {
    std::string damaged = packed;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x21);
    const auto text = ExpandCatalogue(damaged);
    // A few bits of a DEFLATE stream's head mean nothing for the text.
    EXPECT_EQ(text.value_or("<PkgCatalog><LangID>0409</LangID></PkgCatalog>"),
              "<PkgCatalog><LangID>0409</LangID></PkgCatalog>")
        << i;
  }
  EXPECT_FALSE(ExpandCatalogue("").ok());
  EXPECT_FALSE(ExpandCatalogue(packed.substr(0, packed.size() - 3)).ok());
}

}  // namespace
}  // namespace kw::sample
