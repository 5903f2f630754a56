// The faces that four locales need, in the real windows.

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

#include "tests/screen/pages_on_screen_test_support.h"

namespace kw {
namespace {

using testing::PagesOnScreen;

const std::map<std::string, std::string> kFaces = {
    {"1028", "新細明體"}, {"1041", "ＭＳ Ｐゴシック"}, {"1042", "굴림"}, {"2052", "宋体"}};

using LocalesOnScreen = PagesOnScreen;

TEST_P(LocalesOnScreen, TextsHaveTheFaceOfTheLocaleAtNinePointsAndAreWhole) {
  machine_.system.locale = std::atoi(GetParam());
  for (const char* name :
       {"frmSourceAndDestination", "frmBeaconryServer", "frmScheduledScan", "frmAddProgram"}) {
    ui::Form& form = app_->Pages().FormByName(name);
    form.Show();
    Serve(150);
    ui::testing::TakeScreenshot(std::string(name) + GetParam());
    for (const ui::Control* control : form.Controls()) {
      const ui::ControlView* view = host_->ViewOf(form)->ViewOf(*control);
      const bool has_text = control->Kind() == ui::ControlKind::kTextBox ||
                            control->Kind() == ui::ControlKind::kLabel ||
                            control->Kind() == ui::ControlKind::kButton;
      if (!view || !has_text || !control->Visible()) continue;
      const wxWindow* window = view->Window();
      EXPECT_EQ(window->GetFont().GetFaceName().utf8_string(), kFaces.at(GetParam())) << control->Name();
      const bool title = control->Name() == "Title";
      if (!title) {
        EXPECT_EQ(window->GetFont().GetPointSize(), 9) << control->Name();
      }
      EXPECT_GE(window->GetSize().y, window->GetEffectiveMinSize().y) << control->Name() << " is cut off";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Wizard, LocalesOnScreen, ::testing::Values("1028", "1041", "1042", "2052"),
                         [](const auto& locale) { return std::string(locale.param); });

}  // namespace
}  // namespace kw
