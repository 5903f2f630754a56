// The wizard by the keyboard alone: access keys, the Tab order on the screen, the keys that end a window.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wx/uiaction.h>

#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/screen/pages_on_screen_test_support.h"

namespace kw {
namespace {

using testing::kForms;
using testing::PagesOnScreen;

class KeyboardOnScreen : public PagesOnScreen {
 protected:
  ui::Form& Open() {
    ui::Form& form = app_->Pages().FormByName(GetParam());
    form.Show();
    Serve(300);
    return form;
  }
};

/// The letter behind the sign of an access key; 0 when a caption has none.
char AccessKey(const std::string& caption) {
  for (size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] == '&') {
      ++i;
      continue;
    }
    return static_cast<char>(std::toupper(static_cast<unsigned char>(caption[i + 1])));
  }
  return 0;
}

// The texts are fixed, and these have the same letter twice. The toolkit goes from one to the next at each
// press.
const std::map<std::string, std::set<std::string>> kClashes = {};

TEST_P(KeyboardOnScreen, AccessKeysAreUniqueButForTheListedOnes) {
  ui::Form& form = app_->Pages().FormByName(GetParam());
  std::map<char, std::string> owners;
  std::set<std::string> clashes;
  for (const ui::Control* control : form.Controls()) {
    if (control->Kind() == ui::ControlKind::kTextBox || control->Kind() == ui::ControlKind::kEditor) continue;
    const char key = AccessKey(control->Text());
    if (key == 0) continue;
    std::string& owner = owners[key];
    if (!owner.empty()) clashes.insert(std::string(1, key) + " " + owner + " " + control->Name());
    if (owner.empty()) owner = control->Name();
  }
  const auto known = kClashes.find(GetParam());
  EXPECT_EQ(clashes, known == kClashes.end() ? std::set<std::string>() : known->second);
}

TEST_P(KeyboardOnScreen, EnterAndEscapeHaveTheirButtons) {
  ui::Form& form = app_->Pages().FormByName(GetParam());
  std::vector<std::string> enter;
  std::vector<std::string> escape;
  for (const ui::Control* control : form.Controls()) {
    if (control->Kind() != ui::ControlKind::kButton) continue;
    const auto& button = static_cast<const ui::Button&>(*control);
    if (button.is_default) enter.push_back(button.Name());
    if (button.is_cancel) escape.push_back(button.Name());
  }
  EXPECT_EQ(enter.size(), 1U);
  EXPECT_EQ(escape.size(), 1U);
}

/// The view of the control on which the focus is.
const ui::ControlView* FocusedView(const ui::Form& form, const ui::FormView& view) {
  const ui::ControlView* found = nullptr;
  for (const ui::Control* control : form.Controls()) {
    const ui::ControlView* shown = view.ViewOf(*control);
    if (shown && ui::testing::HasFocus(*shown->Window())) found = shown;
  }
  return found;
}

/// The rank of a control's part of the window: the list of pages, the content, the buttons below.
int RegionOf(const ui::ControlView& view) {
  if (view.Shown().Owner().Style() != ui::FormStyle::kPage) return 1;
  if (view.Shown().Name() == "TreeView1") return 0;
  wxWindow* panel = view.Window()->GetParent();
  const bool below =
      view.Shown().Kind() == ui::ControlKind::kButton && panel->GetParent() == wxGetTopLevelParent(panel);
  return below ? 2 : 1;
}

TEST_P(KeyboardOnScreen, TabReachesEverythingInReadingOrder) {
  ui::Form& form = Open();
  ui::FormView* view = host_->ViewOf(form);
  ASSERT_NE(view, nullptr);
  std::set<std::string> wanted;
  for (const ui::Control* control : form.Controls()) {
    const ui::ControlView* shown = view->ViewOf(*control);
    if (!shown) continue;
    const bool acts = control->Kind() != ui::ControlKind::kFrame;
    if (!acts || !control->UserCanUse() || !shown->Window()->AcceptsFocusFromKeyboard()) continue;
    if (control->Kind() == ui::ControlKind::kOption && !static_cast<const ui::Option*>(control)->Value())
      continue;
    wanted.insert(control->Name());
  }
  wxUIActionSimulator keys;
  std::vector<const ui::ControlView*> visited;
  std::set<std::string> names;
  for (int i = 0; i < 60; ++i) {
    if (const ui::ControlView* now = FocusedView(form, *view)) {
      if (visited.size() > 1 && now == visited.front()) break;
      if (visited.empty() || visited.back() != now) visited.push_back(now);
      names.insert(now->Shown().Name());
    }
    const ui::ControlView* before = FocusedView(form, *view);
    keys.Char(WXK_TAB);
    const wxStopWatch watch;
    while (FocusedView(form, *view) == before && watch.Time() < 300) Serve(10);
  }
  for (const std::string& name : wanted) EXPECT_EQ(names.count(name), 1U) << name << " is not reached";
  int turns = 0;
  for (size_t i = 0; i < visited.size(); ++i) {
    const ui::ControlView& now = *visited[i];
    const ui::ControlView& next = *visited[(i + 1) % visited.size()];
    const wxRect here = now.Window()->GetScreenRect();
    const wxRect there = next.Window()->GetScreenRect();
    const bool later_region = RegionOf(next) > RegionOf(now);
    const bool same_row = there.y < here.GetBottom() && there.GetBottom() > here.y;
    const bool onward = same_row ? there.x > here.x : there.y > here.y;
    const bool forward = later_region || (RegionOf(next) == RegionOf(now) && onward);
    if (!forward) ++turns;
    if (!forward && turns > 1)
      ADD_FAILURE() << "Tab goes back from " << now.Shown().Name() << " to " << next.Shown().Name();
  }
}

INSTANTIATE_TEST_SUITE_P(Wizard, KeyboardOnScreen, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param); });

}  // namespace
}  // namespace kw
