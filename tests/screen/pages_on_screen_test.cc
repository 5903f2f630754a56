// Shows every page and dialog of the wizard in a real window and looks for what would be cut off.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/screen/pages_on_screen_test_support.h"

namespace kw {
namespace {

using testing::kForms;
using testing::PagesOnScreen;

TEST_P(PagesOnScreen, ShowsAllControlsWhole) {
  ui::Form& form = app_->Pages().FormByName(GetParam());
  form.Show();
  Serve(200);
  ui::testing::TakeScreenshot(GetParam());
  ui::FormView* view = host_->ViewOf(form);
  ASSERT_NE(view, nullptr);
  for (const ui::Control* control : form.Controls()) {
    const ui::ControlView* shown = view->ViewOf(*control);
    if (!shown || !control->Visible()) continue;
    const wxWindow* window = shown->Window();
    const wxSize size = window->GetSize();
    const wxSize least = window->GetEffectiveMinSize();
    EXPECT_GE(size.y, least.y) << control->Name() << " is cut off below";
    EXPECT_GE(size.x, least.x) << control->Name() << " is cut off at the right";
    const wxSize parent = window->GetParent()->GetVirtualSize();
    EXPECT_LE(window->GetPosition().x + size.x, parent.x) << control->Name() << " leaves its parent";
    EXPECT_LE(window->GetPosition().y + size.y, parent.y) << control->Name() << " leaves its parent";
  }
}

INSTANTIATE_TEST_SUITE_P(Wizard, PagesOnScreen, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param); });

}  // namespace
}  // namespace kw
