#include "ui/wx/help_colors.h"

#include <gtest/gtest.h>
#include <wx/settings.h>

#include "ui/wx/testing/toolkit.h"

namespace kw::ui {
namespace {

TEST(HelpColorsTest, APageTakesTheColorsOfTheTheme) {
  if (!testing::StartToolkit()) GTEST_SKIP() << "no virtual display: Xvfb or openbox is not installed";
  const auto color = [](wxSystemColour which) {
    return wxSystemSettings::GetColour(which).GetAsString(wxC2S_HTML_SYNTAX);
  };
  EXPECT_EQ(WithThemeColors("<html><body>\n<p>Text.</body></html>"),
            "<html><body bgcolor=\"" + color(wxSYS_COLOUR_WINDOW) + "\" text=\"" +
                color(wxSYS_COLOUR_WINDOWTEXT) + "\" link=\"" + color(wxSYS_COLOUR_HOTLIGHT) +
                "\">\n<p>Text.</body></html>");
}

}  // namespace
}  // namespace kw::ui
