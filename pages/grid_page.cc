#include "pages/grid_page.h"

#include <utility>

namespace kw {
namespace {

using platform::Answer;

// Column of the grid that is empty in the blank row alone, where a single row is left.
constexpr int kSecondColumn = 2;

}  // namespace

GridPage::GridPage(PageContext& context, std::string name, std::string title, std::string description,
                   int help_id)
    : WizardPage(context, std::move(name), std::move(title), "Label1", std::move(description), help_id),
      Grid(*this, "Grid"),
      NewButton(*this, "NewButton", "&Add..."),
      EditButton(*this, "EditButton", "&Edit..."),
      DeleteButton(*this, "DeleteButton", "&Delete...") {
  NewButton.on_click = [this] { OnNew(); };
  EditButton.on_click = [this] { OnEdit(); };
  DeleteButton.on_click = [this] { OnDelete(); };
  Grid.on_click = [this] { AdjustControls(); };
  Grid.on_double_click = [this] {
    if (EditButton.UserCanUse()) OnEdit();
  };
  Grid.on_insert_key = [this] { OnNew(); };
  Grid.on_delete_key = [this] {
    if (DeleteButton.UserCanUse()) OnDelete();
  };
  AddButtons();
}

ui::Layout GridPage::PageLayout() {
  using namespace ui;
  return Column({Place(Grid, 1), Row({Space(), Place(NewButton), Place(EditButton), Place(DeleteButton)})},
                1);
}

void GridPage::AdjustControls() {
  if (Grid.Rows() >= 3 && Grid.SelectedRow() == Grid.Rows() - 1) Grid.SelectRow(Grid.Rows() - 2);
  const bool empty = Grid.Rows() == 2 && Grid.Cell(Grid.SelectedRow(), kSecondColumn).empty();
  EditButton.SetEnabled(!empty);
  DeleteButton.SetEnabled(!empty);
}

void GridPage::EmptyGrid() {
  Grid.SetRows(2);
  Grid.ClearRow(1);
  Grid.SelectRow(1);
}

bool GridPage::ConfirmDelete(const std::string& entry) {
  return services_.dialogs->Question("This item will be deleted:\n\n" + entry, {Answer::kOk, Answer::kCancel},
                                     Answer::kOk, "") == Answer::kOk;
}

void GridPage::RemoveSelectedRow() {
  const int row = Grid.SelectedRow();
  if (Grid.Rows() >= 3) {
    Grid.RemoveRow(row);
    Grid.SelectRow(row);
  } else {
    Grid.ClearRow(row);
  }
}

}  // namespace kw
