#include "resources/pictures.h"

#include <gtest/gtest.h>

namespace kw::resources {
namespace {

TEST(Pictures, EveryNameThatControlsUseHasItsDrawing) {
  for (const char* name : {"TITLEBITMAP", "LOGO", "APP", "WELCOME", "1", "2", "Installed", "NotInstalled"}) {
    EXPECT_NE(PictureSvg(name).find("</svg>"), std::string_view::npos) << name;
  }
}

TEST(Pictures, AnUnknownNameHasNone) { EXPECT_EQ(PictureSvg("NoSuchPicture"), ""); }

}  // namespace
}  // namespace kw::resources
