#include "ui/controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ui/form.h"
#include "ui/testing/fake_form_host.h"

namespace kw::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SampleForm : public Form {
 public:
  explicit SampleForm(FormHost& host) : Form(host, "frmSample", "Sample", FormStyle::kPage) {
    box.on_change = [this] { events.push_back("box " + box.Text()); };
    check.on_click = [this] { events.push_back("check " + std::to_string(check.Value())); };
    first.on_click = [this] { events.push_back(second.Value() ? "first, second still on" : "first"); };
    second.on_click = [this] { events.push_back("second"); };
    other.on_click = [this] { events.push_back("other"); };
    list.on_click = [this] { events.push_back("list " + std::to_string(list.Selected())); };
    combo.on_click = [this] { events.push_back("combo " + combo.Text()); };
  }
  Layout ContentLayout() override { return Place(box); }

  std::vector<std::string> events;
  TextBox box{*this, "box"};
  CheckBox check{*this, "check", "&Check"};
  Option first{*this, "first", "First"};
  Option second{*this, "second", "Second"};
  Option other{*this, "other", "Other group", 1};
  ListBox list{*this, "list"};
  ComboBox combo{*this, "combo"};
  Button button{*this, "button", "&Button"};
};

class ControlsTest : public ::testing::Test {
 protected:
  Transcript transcript;
  testing::FakeFormHost host{transcript};
  SampleForm form{host};
};

TEST_F(ControlsTest, TextSetFromCodeFiresChange) {
  form.box.SetText("a");
  form.box.SetText("a");
  EXPECT_THAT(form.events, ElementsAre("box a", "box a"));
}

TEST_F(ControlsTest, TypedTextFiresChangeOnce) {
  form.box.UserType("typed");
  EXPECT_THAT(form.events, ElementsAre("box typed"));
}

TEST_F(ControlsTest, TheSameTextTypedAnewFiresChangeToo) {
  form.box.UserType("typed");
  form.box.UserType("typed");
  EXPECT_THAT(form.events, ElementsAre("box typed", "box typed"));
}

TEST_F(ControlsTest, CheckBoxSetFromCodeFiresClickWhenItsValueChanges) {
  form.check.SetChecked(false);
  form.check.SetChecked(true);
  form.check.SetChecked(true);
  form.check.UserClick();
  EXPECT_THAT(form.events, ElementsAre("check 1", "check 0"));
}

TEST_F(ControlsTest, OptionSetFromCodeFiresItsClickOnly) {
  form.first.SetValue(true);
  form.second.SetValue(true);
  EXPECT_THAT(form.events, ElementsAre("first", "second"));
}

TEST_F(ControlsTest, OptionsOfOneGroupExcludeEachOtherBeforeTheClick) {
  form.second.SetValue(true);
  form.other.SetValue(true);
  form.events.clear();
  form.first.UserClick();
  EXPECT_THAT(form.events, ElementsAre("first"));
  EXPECT_TRUE(form.first.Value());
  EXPECT_FALSE(form.second.Value());
  EXPECT_TRUE(form.other.Value());
}

TEST_F(ControlsTest, ClickOnAnOptionThatIsOnFiresNothing) {
  form.first.SetValue(true);
  form.events.clear();
  form.first.UserClick();
  EXPECT_THAT(form.events, IsEmpty());
}

TEST_F(ControlsTest, OptionSwitchedOffFromCodeFiresNothing) {
  form.first.SetValue(true);
  form.events.clear();
  form.first.SetValue(false);
  EXPECT_FALSE(form.first.Value());
  EXPECT_THAT(form.events, IsEmpty());
}

TEST_F(ControlsTest, ListSelectionFiresClickWhenItChangesAndForEveryPickOfAPerson) {
  form.list.Add("a");
  form.list.Add("b");
  form.list.Select(1);
  form.list.Select(1);
  form.list.UserPick(1);
  form.list.Select(7);
  EXPECT_THAT(form.events, ElementsAre("list 1", "list 1"));
}

TEST_F(ControlsTest, ListKeepsTheSelectedEntryWhileOthersComeAndGo) {
  form.list.Add("a");
  form.list.Add("b");
  form.list.Select(1);
  form.list.Insert(0, "front");
  EXPECT_EQ(form.list.Selected(), 2);
  form.list.Remove(0);
  EXPECT_EQ(form.list.Selected(), 1);
  form.list.Remove(1);
  EXPECT_EQ(form.list.Selected(), -1);
  EXPECT_THAT(form.list.Items(), ElementsAre("a"));
  form.list.Remove(5);
  form.list.Insert(5, "far");
  EXPECT_THAT(form.list.Items(), ElementsAre("a"));
}

TEST_F(ControlsTest, ComboBoxShowsTheSelectedEntryAsItsText) {
  form.combo.Add("a");
  form.combo.Add("b");
  EXPECT_EQ(form.combo.Text(), "");
  form.combo.Select(1);
  form.combo.UserPick(1);
  EXPECT_THAT(form.events, ElementsAre("combo b", "combo b"));
  form.combo.Clear();
  EXPECT_EQ(form.combo.Text(), "");
  EXPECT_EQ(form.combo.Selected(), -1);
}

TEST_F(ControlsTest, TextBoxTakesTheFaceColorWithItsDisabling) {
  form.box.EnableWithColor(false);
  EXPECT_FALSE(form.box.Enabled());
  EXPECT_EQ(form.box.Back(), BackColor::kFace);
  form.box.EnableWithColor(true);
  EXPECT_EQ(form.box.Back(), BackColor::kWindow);
}

TEST_F(ControlsTest, ControlIsUsableOnlyOnAVisibleEnabledFormThatIsNotBusy) {
  EXPECT_FALSE(form.button.UserCanUse());
  form.Show();
  EXPECT_TRUE(form.button.UserCanUse());
  form.SetEnabled(false);
  EXPECT_FALSE(form.button.UserCanUse());
  form.SetEnabled(true);
  form.SetMousePointer(Pointer::kHourglass);
  EXPECT_FALSE(form.button.UserCanUse());
  form.SetMousePointer(Pointer::kDefault);
  form.button.SetEnabled(false);
  EXPECT_FALSE(form.button.UserCanUse());
  form.button.SetEnabled(true);
  form.button.SetVisible(false);
  EXPECT_FALSE(form.button.UserCanUse());
}

TEST_F(ControlsTest, FocusGoesOnlyToWhatCanTakeIt) {
  form.box.SelectField();
  form.Show();
  form.button.SetFocus();
  form.box.SelectField();
  form.box.SetEnabled(false);
  form.box.SelectField();
  form.button.SetVisible(false);
  form.button.SetFocus();
  EXPECT_THAT(transcript.Take(),
              ElementsAre("page frmSample", "focus frmSample.button", "focus frmSample.box"));
}

}  // namespace
}  // namespace kw::ui
