#include "ui/form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ui/testing/fake_form_host.h"

namespace kw::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PlainForm : public Form {
 public:
  PlainForm(FormHost& host, FormStyle style) : Form(host, "frmPlain", "Plain", style) {}
  Layout ContentLayout() override { return Space(); }
  std::vector<std::string> events;
  bool may_close = true;
  std::function<void()> on_activate;

 protected:
  void OnLoad() override { events.push_back("load"); }
  void OnActivate() override {
    events.push_back(Visible() ? "activate" : "activate hidden");
    if (on_activate) on_activate();
  }
  bool OnQueryUnload() override {
    events.push_back("query");
    return may_close;
  }
};

class FormTest : public ::testing::Test {
 protected:
  Transcript transcript;
  testing::FakeFormHost host{transcript};
};

TEST_F(FormTest, LoadRunsOnceAndActivateAtEachShowing) {
  PlainForm form(host, FormStyle::kPage);
  EXPECT_THAT(form.events, IsEmpty());
  form.Show();
  form.Show();
  form.Hide();
  form.Show();
  EXPECT_THAT(form.events, ElementsAre("load", "activate", "activate"));
  EXPECT_THAT(transcript.Take(), ElementsAre("page frmPlain", "hide frmPlain", "page frmPlain"));
}

TEST_F(FormTest, HiddenFormCanBeActivatedByTheWindowSystem) {
  PlainForm form(host, FormStyle::kPage);
  form.UserActivate();
  EXPECT_THAT(form.events, ElementsAre("activate hidden"));
}

TEST_F(FormTest, CloseAsksAndHidesOnlyWhenAllowed) {
  PlainForm form(host, FormStyle::kPage);
  form.Show();
  form.may_close = false;
  form.UserClose();
  EXPECT_TRUE(form.Visible());
  form.may_close = true;
  form.UserClose();
  EXPECT_FALSE(form.Visible());
}

TEST_F(FormTest, ModalShowingReturnsWhenTheDialogIsHidden) {
  PlainForm form(host, FormStyle::kDialog);
  host.modals.push_back([](Form& dialog) { dialog.Hide(); });
  form.ShowModal();
  EXPECT_FALSE(form.Modal());
  EXPECT_THAT(transcript.Take(), ElementsAre("modal frmPlain", "modal-end frmPlain"));
}

TEST_F(FormTest, ModalDialogThatHidesItselfAtActivationWaitsForNobody) {
  PlainForm form(host, FormStyle::kDialog);
  form.on_activate = [&] { form.Hide(); };
  form.ShowModal();
  EXPECT_FALSE(form.Visible());
}

TEST_F(FormTest, NothingLoadsOrShowsOnceTheProgramEnded) {
  PlainForm form(host, FormStyle::kPage);
  host.EndProgram();
  form.Show();
  form.ShowModal();
  EXPECT_FALSE(form.Visible());
  EXPECT_THAT(form.events, IsEmpty());
}

TEST_F(FormTest, PopupRunsTheChosenItemUnlessItIsDisabled) {
  PlainForm form(host, FormStyle::kPage);
  std::vector<std::string> chosen;
  PopupMenu menu("mnuSample", {{"One", "&One", true, false, [&] { chosen.push_back("One"); }},
                               {"Two", "&Two", false, false, [&] { chosen.push_back("Two"); }}});
  host.menu_choices = {"One", "Two", "dismiss"};
  for (int i = 0; i < 3; ++i) form.ShowPopup(menu);
  EXPECT_THAT(chosen, ElementsAre("One"));
}

}  // namespace
}  // namespace kw::ui
