#include "ui/wx/wx_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/dataview.h>
#include <wx/evtloop.h>
#include <wx/settings.h>
#include <wx/stopwatch.h>
#include <wx/timer.h>
#include <wx/uiaction.h>

#include "ui/wx/testing/sample_forms.h"
#include "ui/wx/testing/toolkit.h"

namespace kw::ui {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::SampleDialog;
using testing::SamplePage;
using testing::SampleStatus;

class WxHostTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!started_) GTEST_SKIP() << "no virtual display: Xvfb or openbox is not installed";
    loop_ = std::make_unique<wxGUIEventLoop>();
    wxEventLoopBase::SetActive(loop_.get());
    host_ = std::make_unique<WxHost>();
  }
  void TearDown() override {
    host_.reset();
    if (loop_) wxEventLoopBase::SetActive(nullptr);
  }

  /// Serves events for a while, as the running program does.
  void Serve(long milliseconds = 150) {
    const wxStopWatch watch;
    while (watch.Time() < milliseconds) {
      host_->PumpEvents();
      wxTheApp->ProcessIdle();
    }
  }

  /// Serves events until `done`, at most two seconds, for busy machines are slow.
  void ServeUntil(const std::function<bool()>& done) {
    const wxStopWatch watch;
    while (!done() && watch.Time() < 2000) Serve(20);
  }

  void Show(SamplePage& page) {
    page.Show();
    auto* window = wxDynamicCast(wxGetTopLevelParent(host_->ViewOf(page)->Panel()), wxTopLevelWindow);
    ServeUntil([&] { return window->IsActive() && host_->ViewOf(page)->Painted(); });
    Serve(100);
    page.events.clear();
    page_ = &page;
  }

  /// Does what a person would and waits for the page to notice.
  void Act(const std::function<void()>& action) {
    const size_t before = page_ ? page_->events.size() : 0;
    action();
    const wxStopWatch watch;
    while (page_ && page_->events.size() == before && watch.Time() < 500) Serve(20);
    Serve(60);
  }

  void ClickAt(wxPoint point, bool right = false) {
    simulator_.MouseMove(point);
    Serve(50);
    Act([&] { simulator_.MouseClick(right ? wxMOUSE_BTN_RIGHT : wxMOUSE_BTN_LEFT); });
  }

  void Press(int key, int modifiers = wxMOD_NONE) {
    Act([&] { simulator_.Char(key, modifiers); });
  }

  void Type(const char* text) {
    Act([&] { simulator_.Text(text); });
  }

  /// The middle of a control's widget on the screen.
  wxPoint Middle(const Control& control) {
    const wxRect place = host_->ViewOf(control.Owner())->ViewOf(control)->Window()->GetScreenRect();
    return {place.x + place.width / 2, place.y + place.height / 2};
  }

  /// A point on a node of a tree that is shown from its top, by its number from 0.
  wxPoint NodePoint(const Tree& tree, int number) {
    auto* view = static_cast<wxDataViewCtrl*>(host_->ViewOf(tree.Owner())->ViewOf(tree)->Window());
    const wxDataViewItem item(reinterpret_cast<void*>(static_cast<intptr_t>(number) + 1));
    const wxRect row = view->GetItemRect(item, view->GetColumn(0));
    return view->ClientToScreen(wxPoint(row.x + 40, row.y + row.height / 2));
  }

  /// A point on a data row of a grid.
  wxPoint RowPoint(const Grid& grid, unsigned row) {
    auto* view = static_cast<wxDataViewCtrl*>(host_->ViewOf(grid.Owner())->ViewOf(grid)->Window());
    const auto* model = static_cast<wxDataViewVirtualListModel*>(view->GetModel());
    const wxRect place = view->GetItemRect(model->GetItem(row - 1), view->GetColumn(0));
    return view->ClientToScreen(wxPoint(place.x + 40, place.y + place.height / 2));
  }

  /// Does something once so many milliseconds have passed, while a nested loop runs.
  void Later(int milliseconds, std::function<void()> action) {
    timers_.push_back(std::make_unique<wxTimer>());
    timers_.back()->Bind(wxEVT_TIMER, [action = std::move(action)](wxTimerEvent&) { action(); });
    timers_.back()->StartOnce(milliseconds);
  }

  /// Opens a pop-up menu by `open` and presses `keys` in it.
  void ChooseFromPopup(const std::function<void()>& open, const std::vector<int>& keys) {
    int at = 400;
    for (const int key : keys) {
      Later(at, [this, key] { simulator_.Char(key); });
      at += 200;
    }
    open();
    Serve(at);
  }

  const bool started_ = testing::StartToolkit();  ///< before the simulator, which looks for the display
  SamplePage* page_ = nullptr;                    ///< the page that was shown last
  std::unique_ptr<wxGUIEventLoop> loop_;
  std::unique_ptr<WxHost> host_;
  std::vector<std::unique_ptr<wxTimer>> timers_;
  wxUIActionSimulator simulator_;
};

TEST_F(WxHostTest, ShowsAPageWithEveryControl) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.folder.SetText("C:\\Packages\\Kestrane");
  page.first.SetValue(true);
  Serve();
  testing::TakeScreenshot("page");
  EXPECT_TRUE(host_->Alive());
}

TEST_F(WxHostTest, AClickOnAButtonFiresItsHandler) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  ClickAt(Middle(page.browse));
  EXPECT_THAT(page.events, ElementsAre("browse"));
}

TEST_F(WxHostTest, TypingChangesTheTextBoxAndFiresOneChangeALetter) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.folder.SelectField();
  Serve();
  Type("ab");
  EXPECT_THAT(page.events, ElementsAre("text a", "text ab"));
}

TEST_F(WxHostTest, ATextSetFromCodeIsShownAndSendsNothingBack) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.folder.SetText("C:\\Packages");
  page.list.Add("Delta");
  page.list.Select(3);
  page.grid.SelectRow(2);
  page.optimize.SetChecked(true);
  page.second.SetValue(true);
  Serve();
  EXPECT_THAT(page.events, ElementsAre("text C:\\Packages", "list 3", "optimize 1", "second"));
}

TEST_F(WxHostTest, ASelectedFieldIsReplacedByTyping) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  page.folder.SetText("old");
  Show(page);
  page.folder.SelectField();
  Serve();
  Type("n");
  EXPECT_EQ(page.folder.Text(), "n");
}

TEST_F(WxHostTest, ChecksAndOptionsAnswerTheMouse) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  ClickAt(Middle(page.optimize));
  ClickAt(Middle(page.first));
  ClickAt(Middle(page.second));
  ClickAt(Middle(page.second));
  EXPECT_THAT(page.events, ElementsAre("optimize 1", "first", "second"));
  EXPECT_FALSE(page.first.Value());
}

TEST_F(WxHostTest, OptionsCanAllBeOffAgain) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  ClickAt(Middle(page.first));
  page.first.SetValue(false);
  Serve(600);  // or it would be a double click
  ClickAt(Middle(page.first));
  EXPECT_THAT(page.events, ElementsAre("first", "first"));
}

TEST_F(WxHostTest, ADisabledControlAndABusyPageIgnoreThePerson) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.browse.SetEnabled(false);
  Serve();
  ClickAt(Middle(page.browse));
  page.browse.SetEnabled(true);
  page.SetMousePointer(Pointer::kHourglass);
  page.SetEnabled(false);
  Serve();
  ClickAt(Middle(page.browse));
  ClickAt(Middle(page.optimize));
  EXPECT_THAT(page.events, ElementsAre());
  page.SetEnabled(true);
  page.SetMousePointer(Pointer::kDefault);
  Serve();
  ClickAt(Middle(page.browse));
  EXPECT_THAT(page.events, ElementsAre("browse"));
}

TEST_F(WxHostTest, ADisabledTextBoxHasTheColorOfThePageThatItStandsOn) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  const wxWindow* field = host_->ViewOf(page)->ViewOf(page.folder)->Window();
  const wxColour face = wxSystemSettings::GetColour(wxSYS_COLOUR_BTNFACE);
  EXPECT_NE(field->GetBackgroundColour(), face);
  page.folder.EnableWithColor(false);
  Serve();
  EXPECT_EQ(field->GetBackgroundColour(), face);
  page.folder.EnableWithColor(true);
  Serve();
  EXPECT_NE(field->GetBackgroundColour(), face);
}

TEST_F(WxHostTest, ALeftClickOnAPageNodePressesAndClicks) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  ClickAt(NodePoint(page.pages, 2));
  EXPECT_THAT(page.events, ElementsAre("press left", "node Source for Configuration"));
}

TEST_F(WxHostTest, ARightClickOnAPageNodeTellsTheButton) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  ClickAt(NodePoint(page.pages, 4), true);
  EXPECT_THAT(page.events, ElementsAre("press right", "node Post-Installation Options"));
}

TEST_F(WxHostTest, EnterOnANodeIsALeftClick) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.pages.SetFocus();
  Serve();
  Press(WXK_DOWN);
  Press(WXK_RETURN);
  EXPECT_THAT(page.events, ElementsAre("press left", "node Source for Configuration"));
}

TEST_F(WxHostTest, ListsPickByMouseAndKeyboard) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  const wxRect list = host_->ViewOf(page)->ViewOf(page.list)->Window()->GetScreenRect();
  ClickAt(wxPoint(list.x + 30, list.y + 12));
  Press(WXK_DOWN);
  Serve(500);  // or it would be a double click
  ClickAt(wxPoint(list.x + 30, list.y + 12));
  EXPECT_THAT(page.events, ElementsAre("list 0", "list 1", "list 0"));
}

TEST_F(WxHostTest, ListsAnswerDoubleClicksAndTheKeysForAddingAndDeleting) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  const wxRect list = host_->ViewOf(page)->ViewOf(page.list)->Window()->GetScreenRect();
  simulator_.MouseMove(wxPoint(list.x + 30, list.y + 12));
  Serve(50);
  Act([&] { simulator_.MouseDblClick(); });
  Press(WXK_DOWN);
  Press(WXK_DELETE);
  Press(WXK_INSERT);
  EXPECT_THAT(page.events, ElementsAre("list 0", "list edit 0", "list 1", "list delete 1", "list insert 1"));
}

TEST_F(WxHostTest, GridRowsAnswerClicksKeysAndDoubleClicks) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  ClickAt(RowPoint(page.grid, 2));
  Press(WXK_DELETE);
  Press(WXK_INSERT);
  Press(WXK_DOWN);
  Press(WXK_RETURN);
  EXPECT_THAT(page.events, ElementsAre("row 2", "delete 2", "insert 2", "row 3", "edit 3"));
}

TEST_F(WxHostTest, AccessKeysReachFieldsThroughTheirLabels) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  Press('W', wxMOD_ALT);
  Type("x");
  Press('O', wxMOD_ALT);
  EXPECT_THAT(page.events, ElementsAre("password x", "optimize 1"));
}

TEST_F(WxHostTest, EnterPressesTheDefaultButtonAndEscapeTheCancelButton) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.folder.SetFocus();
  Serve();
  Press(WXK_RETURN);
  Serve(400);  // a button that is pressed by a key stays down for a moment
  Press(WXK_ESCAPE);
  EXPECT_THAT(page.events, ElementsAre("next", "cancel"));
}

TEST_F(WxHostTest, TabFollowsTheOrderOfTheControls) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.folder.SetFocus();
  Serve();
  Press(WXK_TAB);
  Press(WXK_SPACE);
  Press(WXK_TAB);
  Type("p");
  Press(WXK_TAB);
  Press(WXK_SPACE);
  EXPECT_THAT(page.events, ElementsAre("browse", "password p", "optimize 1"));
}

TEST_F(WxHostTest, APopupMenuRunsTheChosenItem) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.features.SetFocus();
  Serve();
  Press(WXK_DOWN);
  ChooseFromPopup([&] { Press(WXK_SPACE); }, {WXK_UP, WXK_RETURN});
  EXPECT_THAT(page.events, Contains("invisible"));
}

TEST_F(WxHostTest, ANewPageTakesThePlaceOfTheOld) {
  SamplePage first(*host_, "frmFirst", "First");
  SamplePage second(*host_, "frmSecond", "Second");
  Show(first);
  wxWindow* window = wxGetTopLevelParent(host_->ViewOf(first)->Panel());
  const wxRect place = window->GetScreenRect();
  second.Show();
  first.Hide();
  Serve();
  EXPECT_EQ(wxGetTopLevelParent(host_->ViewOf(second)->Panel()), window);
  EXPECT_EQ(window->GetScreenRect(), place);
  EXPECT_EQ(window->GetLabel(), "Second");
  EXPECT_FALSE(host_->ViewOf(first)->Panel()->IsShown());
  EXPECT_TRUE(host_->ViewOf(second)->Panel()->IsShown());
}

TEST_F(WxHostTest, ClosingTheWindowAsksThePage) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  page.may_close = false;
  auto* window = wxGetTopLevelParent(host_->ViewOf(page)->Panel());
  window->Close();
  Serve();
  EXPECT_THAT(page.events, ElementsAre("close"));
  EXPECT_TRUE(page.Visible());
  page.may_close = true;
  window->Close();
  Serve();
  EXPECT_FALSE(page.Visible());
  EXPECT_FALSE(window->IsShown());
}

TEST_F(WxHostTest, AModalDialogReturnsWhenItIsHidden) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  SampleDialog dialog(*host_, "frmDialog");
  Show(page);
  dialog.editor.SetText("[general]\r\nname=value\r\n");
  Later(600, [&] {
    testing::TakeScreenshot("dialog");
    simulator_.Text("typed");
  });
  Later(1200, [&] { simulator_.Char(WXK_RETURN); });
  dialog.ShowModal();
  EXPECT_FALSE(dialog.Visible());
  EXPECT_EQ(dialog.name.Text(), "typed");
  EXPECT_EQ(dialog.editor.Text(), "[general]\r\nname=value\r\n");
}

TEST_F(WxHostTest, ADialogThatIsShownAgainBeginsAtItsFirstField) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  SampleDialog dialog(*host_, "frmDialog");
  Show(page);
  for (const char* text : {"one", "two"}) {
    dialog.name.SetText("");
    Later(600, [this, text] { simulator_.Text(text); });
    Later(1000, [this] { simulator_.Char(WXK_TAB); });
    Later(1200, [&dialog] { dialog.Hide(); });
    dialog.ShowModal();
    EXPECT_EQ(dialog.name.Text(), text);
  }
}

TEST_F(WxHostTest, TheStatusWindowIsPaintedByRefreshAndStandsOverItsPage) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  SampleStatus status(*host_);
  Show(page);
  page.SetEnabled(false);
  status.Show();
  status.Refresh();
  EXPECT_TRUE(host_->ViewOf(status)->Painted());
  Serve();
  testing::TakeScreenshot("status");
  const wxRect over = wxGetTopLevelParent(host_->ViewOf(page)->Panel())->GetScreenRect();
  const wxRect small = wxGetTopLevelParent(host_->ViewOf(status)->Panel())->GetScreenRect();
  EXPECT_NEAR(small.x + small.width / 2, over.x + over.width / 2, 12);
  EXPECT_NEAR(small.y + small.height / 2, over.y + over.height / 2, 30);
  status.Hide();
  EXPECT_TRUE(host_->Alive());
}

TEST_F(WxHostTest, WhileAToolIsOpenTheMouseBringsItForward) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  int forward = 0;
  host_->RedirectActivation(page, [&] { ++forward; });
  ClickAt(Middle(page.browse));
  EXPECT_GE(forward, 1);
  EXPECT_THAT(page.events, ElementsAre());
  host_->RedirectActivation(page, {});
  ClickAt(Middle(page.browse));
  EXPECT_THAT(page.events, ElementsAre("browse"));
}

TEST_F(WxHostTest, AFormMayGoAwayInItsOwnHandler) {
  SamplePage stays(*host_, "frmStays", "Stays");
  auto page = std::make_unique<SamplePage>(*host_, "frmSample", "Sample Page");
  Show(*page);
  page_ = nullptr;
  const wxPoint point = Middle(page->next);
  page->next.on_click = [&] {
    auto handler = page->next.on_click;  // keeps what runs alive
    stays.Show();
    page.reset();
  };
  simulator_.MouseMove(point);
  Serve(30);
  simulator_.MouseClick();
  Serve();
  EXPECT_EQ(page, nullptr);
  EXPECT_TRUE(host_->ViewOf(stays)->Panel()->IsShown());
}

TEST_F(WxHostTest, AfterTheEndNothingIsShownAndNothingFires) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  host_->EndProgram();
  EXPECT_TRUE(host_->Ended());
  EXPECT_FALSE(host_->Alive());
  EXPECT_FALSE(wxGetTopLevelParent(host_->ViewOf(page)->Panel())->IsShown());
  EXPECT_THAT(page.events, ElementsAre());
}

TEST_F(WxHostTest, LongLabelsBreakAndNothingIsCutOff) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  const wxWindow* hint = host_->ViewOf(page)->ViewOf(page.hint)->Window();
  EXPECT_NE(hint->GetLabel().find('\n'), wxString::npos);
  EXPECT_GE(hint->GetSize().y, hint->GetMinSize().y);
  page.hint.SetText("short");
  Serve();
  EXPECT_EQ(hint->GetLabel(), "short");
}

TEST_F(WxHostTest, TextWidthGrowsWithTheText) {
  SamplePage page(*host_, "frmSample", "Sample Page");
  Show(page);
  EXPECT_EQ(host_->TextWidth(page, ""), 0);
  EXPECT_LT(host_->TextWidth(page, "iii"), host_->TextWidth(page, "WWW"));
}

}  // namespace
}  // namespace kw::ui
