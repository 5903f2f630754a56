// The pages that add programs and files and set the options of the package, used in real windows by mouse and
// by keyboard alone.

#include <gmock/gmock.h>
#include <wx/dataview.h>
#include <wx/timer.h>
#include <wx/uiaction.h>

#include <functional>
#include <string>
#include <vector>

#include "package/installer_db.h"
#include "pages/frm_add_program.h"
#include "pages/frm_add_remove_options.h"
#include "pages/frm_additional_file.h"
#include "pages/frm_additional_files.h"
#include "pages/frm_features.h"
#include "pages/frm_install_options.h"
#include "pages/frm_post_install_options.h"
#include "pages/frm_programs.h"
#include "shell/package_test_support.h"
#include "tests/screen/screen_test_support.h"

namespace kw {
namespace {

using platform::Answer;
using ::testing::Contains;
using ::testing::ElementsAre;

class AdditionsOnScreen : public ::testing::Test, protected testing::WizardOnScreen {
 protected:
  /// A person's deed and what shows that it has arrived.
  struct Step {
    std::function<void()> act;
    std::function<bool()> arrived;
  };

  void SetUp() override {
    WizardOnScreen::SetUp();
    if (IsSkipped()) return;
    RunState& run = app_->State();
    run.TempFolder = "C:\\Temp\\run";
    run.CabDataFolder = "C:\\Temp\\run\\CabData";
    run.SourceFolder = "C:\\Source";
    run.SourceMsiPath = "C:\\Source\\Kte710.msi";
    run.WorkingMsiPath = "C:\\Temp\\run\\Kte710.msi";
    run.WorkingSetupIniPath = "C:\\Temp\\run\\Setup.ini";
    machine_.files.AddFolder(run.CabDataFolder);
    machine_.files.AddFile(run.WorkingSetupIniPath, "[Startup]\r\n");
    machine_.files.AddFile("c:\\tools\\first.exe", "first");
    machine_.files.AddFile("c:\\tools\\second.exe", "second");
    testing::PackageWriter(machine_).WritePackage(run.SourceFolder);
    machine_.files.AddFile(run.WorkingMsiPath, machine_.files.ReadFile(run.SourceMsiPath).value());
    auto opened = run.Installer->OpenDatabase(run.WorkingMsiPath, platform::OpenMode::kDirect);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    run.WorkingDatabase = *opened;
    pages().FormByName("frmSourceAndDestination").EnsureLoaded();
  }

  PageTable& pages() { return app_->Pages(); }

  template <typename T>
  T& Open() {
    T& page = pages().Get<T>();
    page.ReadConfig();
    page.Show();
    auto* window = dynamic_cast<wxTopLevelWindow*>(wxGetTopLevelParent(host_->ViewOf(page)->Panel()));
    Wait([&] { return window->IsActive() && host_->ViewOf(page)->Painted(); });
    Serve(100);
    return page;
  }

  void Wait(const std::function<bool()>& done) {
    const wxStopWatch watch;
    while (!done() && watch.Time() < 50 * kMostTicks) Serve(20);
    if (!done()) {
      ADD_FAILURE() << "nothing happened";
      ui::testing::TakeScreenshot("stuck" + std::to_string(++stuck_));
    }
    Serve(60);
  }
  void Do(const Step& step) {
    step.act();
    Wait(step.arrived);
  }

  /// Carries out `opening`, which opens a dialog, and then the steps in it, of which the last ends it.
  void InDialog(ui::Form& dialog, const Step& opening, std::vector<Step> steps) {
    size_t next = 0;
    bool acted = false;
    int ticks = 0;
    wxTimer timer;
    timer.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
      const ui::FormView* view = host_->ViewOf(dialog);
      const bool shown = dialog.Visible() && view && view->Painted() &&
                         dynamic_cast<wxTopLevelWindow*>(wxGetTopLevelParent(view->Panel()))->IsActive();
      if (++ticks > kMostTicks) {
        ADD_FAILURE() << "step " << next << " of the dialog did not arrive";
        ui::testing::TakeScreenshot("stuck" + std::to_string(++stuck_));
        timer.Stop();
        dialog.Hide();
      } else if (acted && steps[next].arrived()) {
        acted = false;
        if (++next == steps.size()) timer.Stop();
      } else if (!acted && (next > 0 || shown)) {
        acted = true;
        steps[next].act();
      }
    });
    timer.Start(50);
    // After another dialog the window comes back, and keys reach it a moment later.
    auto* window = dynamic_cast<wxTopLevelWindow*>(host_->BoxParent());
    Wait([window] { return window->IsActive(); });
    Serve(200);
    opening.act();
    Wait([&] { return next == steps.size() || ticks > kMostTicks; });
    timer.Stop();
    EXPECT_FALSE(dialog.Visible());
    Wait(opening.arrived);
  }

  Step Key(int key, int modifiers, std::function<bool()> arrived) {
    return {[this, key, modifiers] { simulator_.Char(key, modifiers); }, std::move(arrived)};
  }
  Step Type(const ui::TextBox& box, const std::string& text) {
    return {[this, text] { simulator_.Text(text.c_str()); }, [&box, text] { return box.Text() == text; }};
  }
  /// A key that moves the focus to a control.
  Step Go(int key, int modifiers, const ui::Control& to) {
    return Key(key, modifiers, [this, &to] { return HasFocus(to); });
  }
  Step Click(const ui::Control& control, std::function<bool()> arrived) {
    return {[this, &control] {
              const wxRect place = Widget(control)->GetScreenRect();
              simulator_.MouseMove(wxPoint(place.x + place.width / 2, place.y + place.height / 2));
              simulator_.MouseClick();
            },
            std::move(arrived)};
  }

  /// A click on a data row of a grid.
  Step ClickRow(const ui::Grid& grid, int row) {
    return {[this, &grid, row] {
              auto* view = static_cast<wxDataViewCtrl*>(Widget(grid));
              const auto* model = static_cast<wxDataViewVirtualListModel*>(view->GetModel());
              const wxRect place =
                  view->GetItemRect(model->GetItem(static_cast<unsigned>(row - 1)), view->GetColumn(0));
              simulator_.MouseMove(view->ClientToScreen(wxPoint(place.x + 40, place.y + place.height / 2)));
              Serve(500);  // or it would be a double click
              simulator_.MouseClick();
            },
            [&grid, row] { return grid.SelectedRow() == row; }};
  }

  wxWindow* Widget(const ui::Control& control) {
    return host_->ViewOf(control.Owner())->ViewOf(control)->Window();
  }
  bool HasFocus(const ui::Control& control) {
    const wxWindow* focus = wxWindow::FindFocus();
    while (focus && focus != Widget(control)) focus = focus->GetParent();
    return focus != nullptr;
  }
  static std::function<bool()> Always() {
    return [] { return true; };
  }
  /// For a list that opens or a mark in it that moves: nothing else tells of them.
  static std::function<bool()> Later() {
    return [turns = 0]() mutable { return ++turns > 8; };
  }

  static constexpr int kMostTicks = 400;  ///< of 50 milliseconds
  wxUIActionSimulator simulator_;
  int stuck_ = 0;
};

TEST_F(AdditionsOnScreen, ProgramsAreAddedEditedAndDeletedByKeyboardAlone) {
  auto& page = Open<frmPrograms>();
  auto& dialog = pages().Get<frmAddProgram>();
  InDialog(dialog, Key('A', wxMOD_ALT, [&] { return page.Grid.Rows() == 3; }),
           {Type(dialog.ExeFileName, "c:\\tools\\first.exe"), Go('C', wxMOD_ALT, dialog.Parameters),
            Type(dialog.Parameters, "one"), Key(WXK_RETURN, wxMOD_NONE, [&] { return !dialog.Visible(); })});
  InDialog(
      dialog, Key('A', wxMOD_ALT, [&] { return page.Grid.Rows() == 4; }),
      {Type(dialog.ExeFileName, "c:\\tools\\second.exe"), Go(WXK_TAB, wxMOD_NONE, dialog.Browse),
       Go(WXK_TAB, wxMOD_NONE, dialog.Parameters), Type(dialog.Parameters, "two"),
       Go(WXK_TAB, wxMOD_NONE, dialog.OK), Key(WXK_SPACE, wxMOD_NONE, [&] { return !dialog.Visible(); })});
  // Escape leaves the dialog; the path that was typed stays for the next time.
  InDialog(
      dialog, Key('A', wxMOD_ALT, Always()),
      {Type(dialog.ExeFileName, "c:\\x"), Key(WXK_ESCAPE, wxMOD_NONE, [&] { return !dialog.Visible(); })});
  EXPECT_EQ(page.Grid.Rows(), 4);
  // From the button back to the grid, up a row, and Enter edits it.
  page.Grid.SetFocus();
  Wait([&] { return HasFocus(page.Grid); });
  Do(Key(WXK_UP, wxMOD_NONE, [&] { return page.Grid.SelectedRow() == 2; }));
  Do(Key(WXK_UP, wxMOD_NONE, [&] { return page.Grid.SelectedRow() == 1; }));
  InDialog(
      dialog, Key(WXK_RETURN, wxMOD_NONE, [&] { return page.Grid.Cell(1, 2) == "other"; }),
      {Go('C', wxMOD_ALT, dialog.Parameters), Key('A', wxMOD_CONTROL, Always()),
       Type(dialog.Parameters, "other"), Key(WXK_RETURN, wxMOD_NONE, [&] { return !dialog.Visible(); })});
  machine_.dialogs.answers = {Answer::kOk};
  Do(Key(WXK_DELETE, wxMOD_NONE, [&] { return page.Grid.Rows() == 3; }));
  EXPECT_EQ(page.Grid.Cell(1, 1), "c:\\tools\\second.exe");
  ui::testing::TakeScreenshot("programs-by-keyboard");
}

TEST_F(AdditionsOnScreen, ProgramsAreAddedEditedAndDeletedByMouse) {
  auto& page = Open<frmPrograms>();
  auto& dialog = pages().Get<frmAddProgram>();
  for (const char* path : {"C:\\Tools\\first.exe", "C:\\Tools\\second.exe"}) {
    const int rows = page.Grid.Rows();
    machine_.dialogs.files = {path};
    InDialog(dialog, Click(page.NewButton, [&, rows] { return page.Grid.Rows() == rows + 1; }),
             {Click(dialog.Browse, [&, path] { return dialog.ExeFileName.Text() == path; }),
              Click(dialog.OK, [&] { return !dialog.Visible(); })});
  }
  Do(ClickRow(page.Grid, 1));
  InDialog(dialog, Click(page.EditButton, [&] { return page.Grid.Cell(1, 2) == "s"; }),
           {Click(dialog.Parameters, [&] { return HasFocus(dialog.Parameters); }),
            Type(dialog.Parameters, "s"), Click(dialog.OK, [&] { return !dialog.Visible(); })});
  // A click on the blank row selects the one above it.
  Do({ClickRow(page.Grid, 3).act, [&] { return page.Grid.SelectedRow() == 2; }});
  InDialog(dialog, Click(page.NewButton, Always()),
           {Click(dialog.Cancel, [&] { return !dialog.Visible(); })});
  Do(ClickRow(page.Grid, 1));
  machine_.dialogs.answers = {Answer::kOk};
  Do(Click(page.DeleteButton, [&] { return page.Grid.Rows() == 3; }));
  EXPECT_EQ(page.Grid.Cell(1, 1), "C:\\Tools\\second.exe");
}

TEST_F(AdditionsOnScreen, FilesAreAddedEditedAndDeletedByKeyboardAlone) {
  auto& page = Open<frmAdditionalFiles>();
  auto& dialog = pages().Get<frmAdditionalFile>();
  InDialog(dialog, Key('A', wxMOD_ALT, [&] { return page.Grid.Rows() == 3; }),
           {Type(dialog.SourceFile, "c:\\tools\\first.exe"), Key('F', wxMOD_ALT, Later()),
            Key(WXK_DOWN, wxMOD_NONE, [&] { return dialog.DestinationFolder.Text() == "Product Install"; }),
            Key(WXK_DOWN, wxMOD_NONE, [&] { return dialog.DestinationFolder.Text() == "Desktop"; }),
            Key(WXK_DOWN, wxMOD_NONE, [&] { return dialog.DestinationFolder.Text() == "Windows"; }),
            Go('U', wxMOD_ALT, dialog.SubFolders), Type(dialog.SubFolders, "a\\b"),
            Key(WXK_RETURN, wxMOD_NONE, [&] { return !dialog.Visible(); })});
  EXPECT_EQ(page.Grid.Cell(1, 2), "Windows");
  EXPECT_EQ(page.Grid.Cell(1, 3), "a\\b");
  page.Grid.SetFocus();
  Wait([&] { return HasFocus(page.Grid); });
  InDialog(
      dialog, Key('E', wxMOD_ALT, [&] { return page.Grid.Cell(1, 2) == "System"; }),
      {// The open list takes the keys too.
       Key('F', wxMOD_ALT, Later()), Key(WXK_DOWN, wxMOD_ALT, Later()), Key(WXK_DOWN, wxMOD_NONE, Later()),
       Key(WXK_RETURN, wxMOD_NONE, [&] { return dialog.DestinationFolder.Text() == "System"; }),
       Go('U', wxMOD_ALT, dialog.SubFolders),
       Key(WXK_RETURN, wxMOD_NONE, [&] { return !dialog.Visible(); })});
  InDialog(dialog, Key('A', wxMOD_ALT, Always()),
           {Key(WXK_ESCAPE, wxMOD_NONE, [&] { return !dialog.Visible(); })});
  machine_.dialogs.answers = {Answer::kOk};
  Do(Key('D', wxMOD_ALT, [&] { return page.Grid.Rows() == 2; }));
  EXPECT_FALSE(page.EditButton.Enabled());
}

TEST_F(AdditionsOnScreen, FilesAreAddedEditedAndDeletedByMouse) {
  auto& page = Open<frmAdditionalFiles>();
  auto& dialog = pages().Get<frmAdditionalFile>();
  machine_.dialogs.files = {"C:\\Tools\\first.exe"};
  InDialog(dialog, Click(page.NewButton, [&] { return page.Grid.Rows() == 3; }),
           {Click(dialog.Browse, [&] { return dialog.SourceFile.Text() == "C:\\Tools\\first.exe"; }),
            Click(dialog.DestinationFolder, Later()),
            {[&] {
               simulator_.MouseMove(ui::testing::FirstEntryOf(*Widget(dialog.DestinationFolder)));
               simulator_.MouseClick();
             },
             [&] { return dialog.DestinationFolder.Text() == "Product Install"; }},
            Click(dialog.cmdOK, [&] { return !dialog.Visible(); })});
  Do(ClickRow(page.Grid, 1));
  InDialog(dialog, Click(page.EditButton, [&] { return page.Grid.Cell(1, 3) == "sub"; }),
           {Click(dialog.SubFolders, [&] { return HasFocus(dialog.SubFolders); }),
            Type(dialog.SubFolders, "sub"), Click(dialog.cmdOK, [&] { return !dialog.Visible(); })});
  ui::testing::TakeScreenshot("files-by-mouse");
  InDialog(dialog, Click(page.EditButton, Always()),
           {Click(dialog.cmdCancel, [&] { return !dialog.Visible(); })});
  machine_.dialogs.answers = {Answer::kOk};
  Do(Click(page.DeleteButton, [&] { return page.Grid.Rows() == 2; }));
}

TEST_F(AdditionsOnScreen, AFileOfThePackageShowsItsPathGreyed) {
  RunState& run = app_->State();
  Open<frmAdditionalFiles>();
  auto& page = pages().Get<frmAdditionalFiles>();
  auto& dialog = pages().Get<frmAdditionalFile>();
  machine_.files.AddFile(run.CabDataFolder + "\\_id_1_first.exe", "x");
  const InstallerDb db = InstallerDb::Working(machine_.services, run);
  ASSERT_TRUE(db.RunSql("insert into `Component` (`Component`, `Directory_`, `Attributes`) values "
                        "('_id_1_first.exe', 'INSTALLDIR', 0)")
                  .ok());
  ASSERT_TRUE(
      db.RunSql("insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Sequence`) values "
                "('_id_1_first.exe', '_id_1_first.exe', 'first.exe', 1, 9)")
          .ok());
  page.ReadConfig();
  Serve(100);
  InDialog(dialog, Key('E', wxMOD_ALT, [&] { return page.Grid.Cell(1, 3) == "sub"; }),
           {// The greyed field takes neither a click nor a letter.
            Click(dialog.SourceFile, [&] { return !HasFocus(dialog.SourceFile); }),
            {[] { ui::testing::TakeScreenshot("in-package"); }, Always()},
            Click(dialog.Browse, [&] { return dialog.SourceFile.Text() == "[IN_PACKAGE]first.exe"; }),
            Go('U', wxMOD_ALT, dialog.SubFolders),
            Type(dialog.SubFolders, "sub"),
            Key(WXK_RETURN, wxMOD_NONE, [&] { return !dialog.Visible(); })});
}

TEST_F(AdditionsOnScreen, TheHiddenColumnsOfTheGridsAreNotShown) {
  const auto columns = [this](const ui::Grid& grid) {
    auto* view = static_cast<wxDataViewCtrl*>(Widget(grid));
    std::vector<std::string> titles;
    int sum = 0;
    for (unsigned i = 0; i < view->GetColumnCount(); ++i) {
      titles.push_back(view->GetColumn(i)->GetTitle().ToStdString());
      EXPECT_GE(view->GetColumn(i)->GetWidth(), 80) << titles.back();
      sum += view->GetColumn(i)->GetWidth();
    }
    EXPECT_LE(sum, view->GetClientSize().x);
    return titles;
  };
  EXPECT_THAT(columns(Open<frmPrograms>().Grid), ElementsAre("Program pathname", "Command line arguments"));
  EXPECT_THAT(columns(Open<frmAdditionalFiles>().Grid),
              ElementsAre("Source File", "Destination Folder", "Subfolders"));
}

TEST_F(AdditionsOnScreen, AddRemoveOptionsTakeAccessKeys) {
  auto& page = Open<frmAddRemoveOptions>();
  const std::pair<int, ui::TextBox*> fields[] = {{'C', &page.Contact},    {'M', &page.Comments},
                                                 {'P', &page.About},      {'U', &page.UpdateInformation},
                                                 {'T', &page.SupportURL}, {'E', &page.SupportTelephone}};
  for (const auto& [key, field] : fields) {
    Do(Go(key, wxMOD_ALT, *field));
    Do(Type(*field, "x"));
  }
  Do(Key('A', wxMOD_ALT, [&] { return !page.AllowRemove.Checked(); }));
  Do(Key('L', wxMOD_ALT, [&] { return !page.AllowModify.Checked(); }));
  Do(Key('O', wxMOD_ALT, [&] { return !page.ShowOnPanel.Checked(); }));
  EXPECT_FALSE(page.Contact.Enabled());
  ui::testing::TakeScreenshot("add-remove");
  Do(Click(page.ShowOnPanel, [&] { return page.ShowOnPanel.Checked() && page.AllowModify.Enabled(); }));
}

TEST_F(AdditionsOnScreen, InstallationOptionsTakeAccessKeysAndTheMouse) {
  auto& page = Open<frmInstallOptions>();
  Do(Key('C', wxMOD_ALT,
         [&] { return page.SpecifyCustomDirectory.Value() && HasFocus(page.InstallDirectory); }));
  Do(Type(page.InstallDirectory, "d:\\own"));
  machine_.dialogs.folders = {"D:\\Picked"};
  Do(Key('R', wxMOD_ALT, [&] { return page.InstallDirectory.Text() == "D:\\Picked"; }));
  Serve(400);  // a button that is pressed by a key stays down for a moment
  Do(Key('I', wxMOD_ALT, [&] { return page.SilentInstall.Checked(); }));
  Do(Key('P', wxMOD_ALT, [&] { return !page.PreserveSettings.Checked(); }));
  Do(Key('U', wxMOD_ALT,
         [&] { return page.UseDefaultDirectory.Value() && !page.InstallDirectory.Enabled(); }));
  Do(Click(page.SpecifyCustomDirectory, [&] { return HasFocus(page.InstallDirectory); }));
  Do(Click(page.UseDefaultDirectory, [&] { return !page.SourceBrowse.Enabled(); }));
  Do(Click(page.SilentInstall, [&] { return !page.SilentInstall.Checked(); }));
}

TEST_F(AdditionsOnScreen, PostInstallationOptionsTakeAccessKeysAndTheMouse) {
  auto& page = Open<frmPostInstallOptions>();
  Do(Key('O', wxMOD_ALT, [&] { return page.ForceReboot.Checked(); }));
  Do(Key('D', wxMOD_ALT, [&] { return page.DisplayMessage.Checked() && HasFocus(page.RebootMessage); }));
  Do(Type(page.RebootMessage, "save"));
  Do(Key('S', wxMOD_ALT, [&] { return page.StartKestrane.Checked(); }));
  Do(Key('V', wxMOD_ALT, [&] { return page.RunUpdate.Checked(); }));
  Do(Click(page.DisplayMessage, [&] { return !page.RebootMessage.Enabled(); }));
  Do(Click(page.RunUpdate, [&] { return !page.RunUpdate.Checked(); }));
  ui::testing::TakeScreenshot("post-install");
}

}  // namespace
}  // namespace kw
