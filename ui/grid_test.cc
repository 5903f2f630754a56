#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ui/controls.h"
#include "ui/form.h"
#include "ui/testing/fake_form_host.h"

namespace kw::ui {
namespace {

class GridForm : public Form {
 public:
  explicit GridForm(FormHost& host) : Form(host, "frmGrid", "Grid", FormStyle::kPage) {
    grid.SetColumns({"", "File", "Path"}, {1, 3, 0});
    grid.on_click = [this] { ++clicks; };
  }
  Layout ContentLayout() override { return Place(grid); }
  Grid grid{*this, "Grid"};
  int clicks = 0;
};

class GridTest : public ::testing::Test {
 protected:
  Transcript transcript;
  testing::FakeFormHost host{transcript};
  GridForm form{host};
  Grid& grid = form.grid;
};

TEST_F(GridTest, HasAHeaderAndOneBlankSelectedRowAtFirst) {
  EXPECT_EQ(grid.Rows(), 2);
  EXPECT_EQ(grid.Columns(), 3);
  EXPECT_EQ(grid.Cell(0, 1), "File");
  EXPECT_EQ(grid.Cell(1, 1), "");
  EXPECT_EQ(grid.SelectedRow(), 1);
}

TEST_F(GridTest, RemovalKeepsTheSelectedRowNumberAsLongAsThereIsSuchARow) {
  grid.SetRows(4);
  grid.SelectRow(2);
  grid.RemoveRow(1);
  EXPECT_EQ(grid.SelectedRow(), 2);
  grid.RemoveRow(2);
  EXPECT_EQ(grid.SelectedRow(), 1);
  EXPECT_EQ(grid.Rows(), 2);
}

TEST_F(GridTest, TheHeaderCannotBeRemovedOrDisplaced) {
  grid.RemoveRow(0);
  grid.InsertRow(0);
  grid.RemoveRow(9);
  EXPECT_EQ(grid.Rows(), 2);
  EXPECT_EQ(grid.Cell(0, 1), "File");
}

TEST_F(GridTest, InsertedRowIsBlankAndStandsInFront) {
  grid.SetCell(1, 1, "old");
  grid.InsertRow(1);
  EXPECT_EQ(grid.Cell(1, 1), "");
  EXPECT_EQ(grid.Cell(2, 1), "old");
  EXPECT_EQ(grid.SelectedRow(), 1);
}

TEST_F(GridTest, SelectionFromCodeIsCutToTheRowsAndFiresNothing) {
  grid.SetRows(3);
  grid.SelectRow(9);
  EXPECT_EQ(grid.SelectedRow(), 2);
  grid.SelectRow(0);
  EXPECT_EQ(grid.SelectedRow(), 1);
  EXPECT_EQ(form.clicks, 0);
  grid.UserPick(2);
  grid.UserPick(2);
  EXPECT_EQ(form.clicks, 2);
}

TEST_F(GridTest, CellsOutsideAreBlankAndPassedOver) {
  grid.SetCell(5, 1, "lost");
  grid.SetCell(1, 7, "lost");
  EXPECT_EQ(grid.Cell(5, 1), "");
  EXPECT_EQ(grid.Cell(-1, 0), "");
}

}  // namespace
}  // namespace kw::ui
