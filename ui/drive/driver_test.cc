#include "ui/drive/driver_test_support.h"

namespace kw::ui::drive {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

TEST_F(DriverTest, EmptyScriptShowsTheFirstPageAndEndsWithSuccess) {
  Run("");
  EXPECT_THAT(lines, ElementsAre("page frmOne"));
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, BlankLinesAndCommentsArePassedOver) {
  Run("\n# a comment\r\n   \nsay hello\r\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "say hello"));
}

TEST_F(DriverTest, EntryThatShowsNoPageEndsTheProgram) {
  entry = [this] { dialogs->Message("Not on this machine."); };
  Run("say never");
  EXPECT_THAT(lines, ElementsAre("message Not on this machine.", "end"));
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, ClosingTheLastWindowEndsTheProgram) {
  Run("close frmOne\nsay never\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "hide frmOne", "end"));
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, CloseThatThePageRefusesLeavesItOpen) {
  set_up = [this] { one->on_close = [] { return false; }; };
  Run("close frmOne\nsay still here\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "say still here"));
}

TEST_F(DriverTest, ProgramThatEndsPrintsNothingMore) {
  set_up = [this] {
    one->next.on_click = [this] {
      host->EndProgram();
      one->Hide();
      two->Show();
    };
  };
  Run("click frmOne.Next\nsay never\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "end"));
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, PagesTellTheirShowingInTheOrderInWhichItHappens) {
  set_up = [this] {
    one->next.on_click = [this] {
      two->Show();
      one->Hide();
      two->box.SelectField();
    };
  };
  Run("click frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "page frmTwo", "hide frmOne", "focus frmTwo.Box"));
}

TEST_F(DriverTest, ClickTogglesCheckBoxesAndSelectsOptions) {
  Run("click frmOne.Check\nprint frmOne.Check\nclick frmOne.Check\nprint frmOne.Check\n"
      "click frmOne.Second\nprint frmOne.First\nprint frmOne.Second\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne",
                                 "frmOne.Check kind=checkbox enabled=1 visible=1 text=\"&Check\" value=1",
                                 "frmOne.Check kind=checkbox enabled=1 visible=1 text=\"&Check\" value=0",
                                 "frmOne.First kind=option enabled=1 visible=1 text=\"First\" value=0",
                                 "frmOne.Second kind=option enabled=1 visible=1 text=\"Second\" value=1"));
}

TEST_F(DriverTest, TypeReplacesTheTextAndFiresOneChange) {
  int changes = 0;
  set_up = [&] {
    one->box.SetText("old");
    one->box.on_change = [&] { ++changes; };
  };
  Run("type frmOne.Box  two  blanks\nprint frmOne.Box\ntype frmOne.Box\nprint frmOne.Box\n");
  EXPECT_THAT(lines,
              ElementsAre("page frmOne",
                          "frmOne.Box kind=textbox enabled=1 visible=1 text=\" two  blanks\" back=window",
                          "frmOne.Box kind=textbox enabled=1 visible=1 text=\"\" back=window"));
  EXPECT_EQ(changes, 2);
}

TEST_F(DriverTest, LineEndsAndTabsAreWrittenInAngleBracketsBothWays) {
  set_up = [this] { one->editor.SetText("old"); };
  Run("type frmOne.Editor a<CR><LF>b<TAB>c\nprint frmOne.Editor\n");
  EXPECT_EQ(lines.back(), "frmOne.Editor kind=editor enabled=1 visible=1 text=\"a<CR><LF>b<TAB>c\"");
}

TEST_F(DriverTest, ScriptTextReachesThePageUnescaped) {
  std::string typed;
  set_up = [&] { one->box.on_change = [&] { typed = one->box.Text(); }; };
  Run("type frmOne.Box a<CR><LF>b<TAB>c\n");
  EXPECT_EQ(typed, "a\r\nb\tc");
}

TEST_F(DriverTest, PickTakesAnEntryByTextOrNumberAndCountsAsAClick) {
  std::vector<std::string> clicks;
  set_up = [&] {
    for (const char* item : {"a", "#2x", "b"}) {
      one->list.Add(item);
      one->combo.Add(item);
    }
    one->list.on_click = [&] { clicks.push_back("list " + std::to_string(one->list.Selected())); };
    one->combo.on_click = [&] { clicks.push_back("combo " + one->combo.Text()); };
  };
  Run("pick frmOne.List b\npick frmOne.List b\npick frmOne.List #2x\npick frmOne.Combo #1\n"
      "print frmOne.List\nprint frmOne.Combo\n");
  EXPECT_THAT(clicks, ElementsAre("list 2", "list 2", "list 1", "combo a"));
  EXPECT_THAT(
      lines,
      ElementsAre("page frmOne", "frmOne.List kind=list enabled=1 visible=1 selected=2 extent=0", "  | a",
                  "  | #2x", "  | b", "frmOne.Combo kind=combo enabled=1 visible=1 text=\"a\" selected=1",
                  "  | a", "  | #2x", "  | b"));
}

TEST_F(DriverTest, PickTakesAGridRowByItsFirstTextAndTheBlankLastRowByItsNumber) {
  set_up = [this] {
    one->grid.SetColumns({"", "File", "Hidden"}, {1, 2, 0});
    one->grid.SetRows(4);
    one->grid.SetCell(1, 1, "a.exe");
    one->grid.SetCell(2, 1, "b.exe");
    one->grid.SetCell(2, 2, "C:\\b.exe");
  };
  Run("pick frmOne.Grid b.exe\nprint frmOne.Grid\npick frmOne.Grid #3\nprint frmOne.Grid\n");
  EXPECT_THAT(lines,
              ElementsAre("page frmOne", "frmOne.Grid kind=grid enabled=1 visible=1 selected=2",
                          "  | <TAB>File<TAB>Hidden", "  | <TAB>a.exe<TAB>", "  | <TAB>b.exe<TAB>C:\\b.exe",
                          "  | <TAB><TAB>", "frmOne.Grid kind=grid enabled=1 visible=1 selected=3",
                          "  | <TAB>File<TAB>Hidden", "  | <TAB>a.exe<TAB>", "  | <TAB>b.exe<TAB>C:\\b.exe",
                          "  | <TAB><TAB>"));
}

TEST_F(DriverTest, NodesAreClickedByTextOrPlaceWithEitherButton) {
  std::vector<std::string> events;
  set_up = [&] {
    TreeNode top;
    top.text = "Top";
    TreeNode other;
    other.text = "Other";
    TreeNode below;
    below.text = "Below";
    below.parent = one->tree.Add(top);
    one->tree.Add(other);
    one->tree.Add(below);
    one->tree.on_mouse_down = [&](MouseButton button) {
      events.push_back(button == MouseButton::kLeft ? "left" : "right");
    };
    one->tree.on_node_click = [&](int index) { events.push_back(one->tree.Node(index).text); };
  };
  Run("node frmOne.TreeView1 Other\nnode-right frmOne.TreeView1 #2\n");
  EXPECT_THAT(events, ElementsAre("left", "Other", "right", "Below"));
}

TEST_F(DriverTest, TreesPrintTheirNodesWithTheAttributesThatApply) {
  set_up = [this] {
    TreeNode top;
    top.text = "Top";
    top.image = "1";
    top.bold = true;
    TreeNode below;
    below.text = "Below";
    below.grey = true;
    below.tag = " <<Not Visible>>";
    below.parent = one->tree.Add(top);
    one->tree.Add(below);
  };
  Run("show\n");
  EXPECT_THAT(lines,
              ElementsAre("page frmOne", "visible frmOne", "frmOne.TreeView1 kind=tree enabled=1 visible=1",
                          "  - Top image=1 bold", "    - Below grey tag=\" <<Not Visible>>\""));
}

TEST_F(DriverTest, PrintTellsEveryKindOfControl) {
  set_up = [this] {
    one->secret.masked = true;
    one->secret.SetText("pässword");
    one->secret.EnableWithColor(false);
    one->list.SetHorizontalExtent(40);
    one->list.SetVisible(false);
  };
  Run("print frmOne.Secret\nprint frmOne.List\nprint frmOne.Next\nprint frmOne.lblStatus\nprint "
      "frmOne.Frame\n"
      "print frmOne.Image\nprint frmOne.Line\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne",
                                 "frmOne.Secret kind=textbox enabled=0 visible=1 text=\"********\" back=face",
                                 "frmOne.List kind=list enabled=1 visible=0 selected=0 extent=set",
                                 "frmOne.Next kind=button enabled=1 visible=1 text=\"&Next >\"",
                                 "frmOne.lblStatus kind=label enabled=1 visible=1 text=\"&Words\"",
                                 "frmOne.Frame kind=frame enabled=1 visible=1 text=\"Frame\"",
                                 "frmOne.Image kind=image enabled=1 visible=1",
                                 "frmOne.Line kind=line enabled=1 visible=1"));
}

TEST_F(DriverTest, PrintTellsAFormsState) {
  set_up = [this] {
    two->SetMousePointer(Pointer::kHourglass);
    two->SetEnabled(false);
  };
  Run("print frmOne\nprint frmTwo\n");
  EXPECT_THAT(lines,
              ElementsAre("page frmOne", "frmOne kind=form visible=1 enabled=1 busy=0 text=\"Sample page\"",
                          "frmTwo kind=form visible=0 enabled=0 busy=1 text=\"Sample page\""));
}

TEST_F(DriverTest, ActingOnWhatCannotBeUsedIsToldAndDoesNothing) {
  bool acted = false;
  set_up = [&] {
    one->next.on_click = two->next.on_click = [&] { acted = true; };
    one->box.SetEnabled(false);
    one->list.SetVisible(false);
    one->tree.SetEnabled(false);
    TreeNode node;
    node.text = "Node";
    one->tree.Add(node);
    one->tree.on_node_click = [&](int) { acted = true; };
    one->list.Add("entry");
  };
  Run("type frmOne.Box x\npick frmOne.List entry\nnode frmOne.TreeView1 Node\nclick frmTwo.Next\nclose "
      "frmTwo\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "disabled frmOne.Box", "disabled frmOne.List",
                                 "disabled frmOne.TreeView1", "disabled frmTwo.Next", "disabled frmTwo"));
  EXPECT_FALSE(acted);
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, BusyPageTakesNoCommands) {
  set_up = [this] {
    one->next.on_click = [this] {
      one->SetMousePointer(Pointer::kHourglass);
      RunTool("tool");
      one->SetMousePointer(Pointer::kDefault);
    };
  };
  Run("meanwhile click frmOne.Cancel\nclick frmOne.Next\nclose frmOne\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "disabled frmOne.Cancel", "run[hidden] tool -> 0",
                                 "hide frmOne", "end"));
}

TEST_F(DriverTest, ModalDialogTakesTheCommandsUntilItIsHidden) {
  set_up = [this] {
    one->next.on_click = [this] {
      dialog->ShowModal();
      dialogs->Message("Back.");
    };
    dialog->cancel.on_click = [this] { dialog->Hide(); };
  };
  Run("click frmOne.Next\nclick frmOne.Next\nshow\nclick frmDialog.Cancel\nclick frmOne.Cancel\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "modal frmDialog", "disabled frmOne.Next", "visible frmOne",
                                 "visible frmDialog", "frmOne.TreeView1 kind=tree enabled=1 visible=1",
                                 "modal-end frmDialog", "message Back."));
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, ScriptThatEndsInAModalDialogEndsTheRunQuietly) {
  set_up = [this] {
    one->next.on_click = [this] {
      dialog->ShowModal();
      dialogs->Message("Never told.");
      two->Show();
    };
  };
  Run("click frmOne.Next\nsay last\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "modal frmDialog", "say last"));
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, QueuedAnswersServeTheNextActingCommandAndAreThenDropped) {
  set_up = [this] {
    one->next.on_click = [this] { Ask(); };
    one->cancel.on_click = [] {};
  };
  Run("answer OK\nanswer Cancel\nsay not acting\nclick frmOne.Next\nclick frmOne.Next\nsay never\n");
  EXPECT_THAT(lines,
              ElementsAre("page frmOne", "say not acting", "question Sure? [OK|Cancel] default=Cancel -> OK",
                          "question Sure? [OK|Cancel] default=Cancel -> Cancel",
                          "FAIL line 5: the question has no queued answer"));
  EXPECT_EQ(status, 2);
}

TEST_F(DriverTest, CommandThatClosesADialogKeepsItsAnswersForWhatFollows) {
  set_up = [this] {
    one->next.on_click = [this] {
      dialog->ShowModal();
      Ask();
      Ask();
    };
    dialog->next.on_click = [] {};
    dialog->cancel.on_click = [this] { dialog->Hide(); };
  };
  Run("answer OK\nclick frmOne.Next\n"
      "answer Yes\nclick frmDialog.Next\n"
      "answer Cancel\nclick frmDialog.Cancel\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "modal frmDialog", "modal-end frmDialog",
                                 "question Sure? [OK|Cancel] default=Cancel -> Cancel",
                                 "question Sure? [OK|Cancel] default=Cancel -> OK"));
  EXPECT_EQ(status, 0);
}

TEST_F(DriverTest, AnswerThatTheQuestionHasNoButtonForEndsTheRun) {
  set_up = [this] { one->next.on_click = [this] { Ask(); }; };
  Run("answer Retry\nclick frmOne.Next\n");
  EXPECT_EQ(lines.back(), "FAIL line 2: the question has no button Retry");
  EXPECT_EQ(status, 2);
}

TEST_F(DriverTest, UnansweredQuestionIsClosedAndNothingMoreIsShown) {
  platform::Answer answer = platform::Answer::kOk;
  set_up = [&] {
    one->next.on_click = [&] {
      answer = Ask();
      two->Show();
    };
  };
  Run("click frmOne.Next\n");
  EXPECT_EQ(answer, platform::Answer::kCancel);
  EXPECT_THAT(lines, ElementsAre("page frmOne", "question Sure? [OK|Cancel] default=Cancel -> Cancel",
                                 "FAIL line 1: the question has no queued answer"));
  EXPECT_EQ(status, 2);
}

TEST_F(DriverTest, MessagesAndQuestionsNameATitleThatIsNotTheProgramsOwn) {
  set_up = [this] {
    one->next.on_click = [this] {
      dialogs->CriticalMessage("Bad\r\nnews");
      dialogs->Question("Text?", {platform::Answer::kYes, platform::Answer::kNo}, platform::Answer::kYes,
                        "Confirm Cancel");
    };
  };
  Run("answer No\nclick frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "message! Bad<CR><LF>news",
                                 "question(Confirm Cancel) Text? [Yes|No] default=Yes -> No"));
}

TEST_F(DriverTest, FileAndFolderDialogsAnswerFromTheQueueOrCancel) {
  std::vector<std::string> answers;
  set_up = [&] {
    one->next.on_click = [&] {
      answers.push_back(dialogs->OpenFile("Open", "All (*.*)|*.*", "C:\\Start", "a.txt"));
      answers.push_back(dialogs->BrowseForFolder("Folder", "C:\\Start"));
      answers.push_back(dialogs->OpenFile("Open", "All (*.*)|*.*", "", ""));
      answers.push_back(dialogs->BrowseForFolder("Folder", ""));
    };
  };
  Run("file C:\\b c.txt\nfile cancel\nfolder C:\\F\nclick frmOne.Next\n");
  EXPECT_THAT(answers, ElementsAre("C:\\b c.txt", "C:\\F", "", ""));
  EXPECT_THAT(
      lines,
      ElementsAre("page frmOne", "file-dialog Open | All (*.*)|*.* | C:\\Start\\a.txt -> C:\\b c.txt",
                  "folder-dialog Folder | C:\\Start -> C:\\F",
                  "file-dialog Open | All (*.*)|*.* |  -> cancel", "folder-dialog Folder |  -> cancel"));
}

TEST_F(DriverTest, HelpTellsItsContextNumber) {
  set_up = [this] { one->next.on_click = [this] { EXPECT_TRUE(dialogs->ShowHelp("ZED.chm", 1001).ok()); }; };
  Run("click frmOne.Next\n");
  EXPECT_EQ(lines.back(), "help 1001");
}

TEST_F(DriverTest, MenusTakeTheQueuedChoice) {
  std::vector<std::string> chosen;
  PopupMenu menu("mnuSample",
                 {{"IsLocal", "&Install Feature", true, false, [&] { chosen.push_back("IsLocal"); }},
                  {"NotLocal", "Do &Not Install", false, false, [&] { chosen.push_back("NotLocal"); }},
                  {"Invisible", "In&visible", true, true, [&] { chosen.push_back("Invisible"); }}});
  set_up = [&] { one->next.on_click = [&] { one->ShowPopup(menu); }; };
  Run("menu Invisible\nclick frmOne.Next\nmenu dismiss\nclick frmOne.Next\nclick frmOne.Next\n"
      "menu Do Not Install\nclick frmOne.Next\nmenu Gone\nclick frmOne.Next\n");
  EXPECT_THAT(chosen, ElementsAre("Invisible"));
  const std::string shown = "menu Install Feature|(Do Not Install)|[x] Invisible -> ";
  EXPECT_THAT(lines, ElementsAre("page frmOne", shown + "Invisible", shown + "dismiss", shown + "dismiss",
                                 shown + "Do Not Install", "disabled frmOne.NotLocal", shown + "dismiss",
                                 "FAIL line 9: the menu mnuSample has no item Gone"));
  EXPECT_EQ(status, 2);
}

TEST_F(DriverTest, ActivateReachesAHiddenPage) {
  std::vector<std::string> activated;
  set_up = [&] { two->on_activate = [&] { activated.push_back(two->Visible() ? "visible" : "hidden"); }; };
  Run("activate frmTwo\n");
  EXPECT_THAT(activated, ElementsAre("hidden"));
}

TEST_F(DriverTest, ActivationBringsTheToolForwardWhileItIsRedirected) {
  int activated = 0;
  int forward = 0;
  set_up = [&] {
    one->on_activate = [&] { ++activated; };
    one->next.on_click = [&] { host->RedirectActivation(*one, [&] { ++forward; }); };
    one->cancel.on_click = [&] { host->RedirectActivation(*one, {}); };
  };
  Run("click frmOne.Next\nactivate frmOne\nclick frmOne.Cancel\nactivate frmOne\n");
  EXPECT_EQ(forward, 1);
  EXPECT_EQ(activated, 2);
}

TEST_F(DriverTest, StatusWindowTellsEachPhaseOnce) {
  set_up = [this] {
    one->next.on_click = [this] {
      for (const char* phase : {"Copying.", "Packing."}) {
        status_window->label.SetText(phase);
        status_window->Show();
      }
      status_window->Hide();
      status_window->label.SetText("Cleaning.");
      status_window->Show();
      status_window->Hide();
    };
  };
  Run("click frmOne.Next\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "status Copying.", "status Packing.", "status-end",
                                 "status Cleaning.", "status-end"));
}

TEST_F(DriverTest, ExpectFindsLinesInTheirOrderAndEachOnlyOnce) {
  Run("say a\nsay b\nsay c\nexpect say a\nexpect say c\nexpect say c\nsay d\nexpect say d\n");
  EXPECT_THAT(lines, Contains("FAIL line 6: expected say c"));
  EXPECT_THAT(lines, Not(Contains(StartsWith("FAIL line 4"))));
  EXPECT_THAT(lines, Not(Contains(StartsWith("FAIL line 8"))));
  EXPECT_EQ(status, 1);
}

TEST_F(DriverTest, ExpectComparesWholeLinesAsTheyArePrinted) {
  set_up = [this] { one->list.Add("\tentry"); };
  Run("print frmOne.List\nexpect   | <TAB>entry\nsay abc\nexpect say ab\n");
  EXPECT_EQ(lines.back(), "FAIL line 4: expected say ab");
}

TEST_F(DriverTest, RejectFailsOnALineSinceTheLastExpectAndTheRunGoesOn) {
  Run("say a\nexpect say a\nreject say a\nsay b\nreject say c\nreject say b\nsay end\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "say a", "say b", "FAIL line 6: rejected say b", "say end"));
  EXPECT_EQ(status, 1);
}

TEST_F(DriverTest, RejectPassesOverLinesThatWereThereAtTheLastExpect) {
  Run("say a\nsay b\nexpect say a\nreject say b\nexpect say b\nsay b\nreject say b\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "say a", "say b", "say b", "FAIL line 7: rejected say b"));
}

TEST_F(DriverTest, FormThatNothingHasMadeYetCountsAsHidden) {
  Run("click frmLate.Next\nprint frmLate\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "disabled frmLate.Next",
                                 "frmLate kind=form visible=0 enabled=1 busy=0 text=\"Sample page\""));
  EXPECT_EQ(status, 0);
}

class BadScriptTest : public DriverTest,
                      public ::testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(BadScriptTest, EndsTheRunWithStatusTwo) {
  Run(std::string("expect nothing\n") + GetParam().first + "\nsay never\n");
  EXPECT_THAT(lines, ElementsAre("page frmOne", "FAIL line 1: expected nothing",
                                 std::string("FAIL line 2: ") + GetParam().second));
  EXPECT_EQ(status, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, BadScriptTest,
    ::testing::Values(std::pair{"hop frmOne.Next", "unknown command hop"},
                      std::pair{"click frmNone.Next", "unknown form frmNone"},
                      std::pair{"click frmOne.None", "unknown control frmOne.None"},
                      std::pair{"click frmOne", "no control named in frmOne"},
                      std::pair{"click frmOne.lblStatus", "nothing to click in frmOne.lblStatus"},
                      std::pair{"type frmOne.Next x", "no text to type in frmOne.Next"},
                      std::pair{"pick frmOne.Next x", "nothing to pick in frmOne.Next"},
                      std::pair{"pick frmOne.List x", "no entry x in frmOne.List"},
                      std::pair{"pick frmOne.Grid #2", "no entry #2 in frmOne.Grid"},
                      std::pair{"node frmOne.List x", "no nodes in frmOne.List"},
                      std::pair{"node frmOne.TreeView1 x", "no node x in frmOne.TreeView1"},
                      std::pair{"close frmNone", "unknown form frmNone"},
                      std::pair{"activate frmNone", "unknown form frmNone"},
                      std::pair{"print frmNone", "unknown form frmNone"},
                      std::pair{"print frmOne.None", "unknown control frmOne.None"},
                      std::pair{"answer Maybe", "unknown button Maybe"},
                      std::pair{"set NAME", "set needs NAME=VALUE"},
                      std::pair{"set =VALUE", "set needs NAME=VALUE"}));

}  // namespace
}  // namespace kw::ui::drive
