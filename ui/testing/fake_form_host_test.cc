#include "ui/testing/fake_form_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "ui/form.h"

namespace kw::ui::testing {
namespace {

using ::testing::ElementsAre;

class SampleForm : public Form {
 public:
  SampleForm(FormHost& host, FormStyle style)
      : Form(host, "frmSample", "Sample", style), label(*this, "lblStatus", ""), name(*this, "Name") {}
  Layout ContentLayout() override { return Place(label); }
  Label label;
  TextBox name;
  int chosen = 0;
};

TEST(FakeFormHost, PagesDialogsAndTheStatusWindowLeaveLines) {
  Transcript transcript;
  FakeFormHost host(transcript);
  SampleForm page(host, FormStyle::kPage);
  SampleForm dialog(host, FormStyle::kDialog);
  SampleForm status(host, FormStyle::kStatus);
  page.Show();
  page.name.SetText("x");
  page.name.SelectField();
  host.modals.push_back([](Form& form) { form.Hide(); });
  dialog.ShowModal();
  status.label.SetText("Please wait");
  status.Show();
  status.label.SetText("Still\r\nwaiting");
  status.Hide();
  page.Hide();
  EXPECT_THAT(transcript.Take(), ElementsAre("page frmSample", "focus frmSample.Name", "modal frmSample",
                                             "modal-end frmSample", "status Please wait",
                                             "status Still<CR><LF>waiting", "status-end", "hide frmSample"));
}

TEST(FakeFormHost, ADialogThatNoTestExpectsFailsAndIsHidden) {
  Transcript transcript;
  FakeFormHost host(transcript);
  SampleForm dialog(host, FormStyle::kDialog);
  EXPECT_NONFATAL_FAILURE(dialog.ShowModal(), "no test expects");
  EXPECT_FALSE(dialog.Visible());
  host.modals.push_back([](Form&) {});
  EXPECT_NONFATAL_FAILURE(dialog.ShowModal(), "left open");
  EXPECT_FALSE(dialog.Visible());
}

TEST(FakeFormHost, MenusChooseByCaption) {
  Transcript transcript;
  FakeFormHost host(transcript);
  SampleForm page(host, FormStyle::kPage);
  PopupMenu menu("mnu", {{"a", "&Add", true, false, [&] { page.chosen = 1; }},
                         {"b", "R&&D", false, false, [&] { page.chosen = 2; }},
                         {"c", "&Checked", true, true, [&] { page.chosen = 3; }}});
  host.menu_choices = {"Add", "dismiss", "R&D", "Checked"};
  page.ShowPopup(menu);
  EXPECT_EQ(page.chosen, 1);
  page.ShowPopup(menu);
  page.ShowPopup(menu);
  EXPECT_EQ(page.chosen, 1);
  page.ShowPopup(menu);
  EXPECT_EQ(page.chosen, 3);
  EXPECT_THAT(transcript.Take(),
              ElementsAre("menu Add|(R&D)|[x] Checked -> Add", "menu Add|(R&D)|[x] Checked -> dismiss",
                          "menu Add|(R&D)|[x] Checked -> R&D", "menu Add|(R&D)|[x] Checked -> Checked"));
  host.menu_choices = {"Remove"};
  EXPECT_NONFATAL_FAILURE(page.ShowPopup(menu), "Remove");
}

TEST(FakeFormHost, EventsRunOneAPump) {
  Transcript transcript;
  FakeFormHost host(transcript);
  int runs = 0;
  host.meanwhile = {[&] { ++runs; }, [&] { runs += 10; }};
  host.PumpEvents();
  EXPECT_EQ(runs, 1);
  host.PumpEvents();
  host.PumpEvents();
  EXPECT_EQ(runs, 11);
  EXPECT_EQ(host.pumps, 3);
}

TEST(FakeFormHost, TheEndIsTold) {
  Transcript transcript;
  FakeFormHost host(transcript);
  SampleForm page(host, FormStyle::kPage);
  EXPECT_EQ(host.TextWidth(page, "größe"), 30);
  host.EndProgram();
  EXPECT_TRUE(host.Ended());
  EXPECT_THAT(transcript.Take(), ElementsAre("end"));
}

}  // namespace
}  // namespace kw::ui::testing
