#ifndef KITWRIGHT_PAGES_GRID_PAGE_H_
#define KITWRIGHT_PAGES_GRID_PAGE_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// A page whose store is a grid of entries with a blank last row, and three buttons that add, edit and delete
/// them. The Insert and Delete keys, Enter and a double click on the grid do what the buttons do.
class GridPage : public WizardPage {
 public:
  /// Keeps the selection off the blank row and sets the buttons.
  void AdjustControls();

  ui::Grid Grid;
  ui::Button NewButton;
  ui::Button EditButton;
  ui::Button DeleteButton;

 protected:
  GridPage(PageContext& context, std::string name, std::string title, std::string description, int help_id);

  ui::Layout PageLayout() override;
  /// Open the dialog for a new entry, or for the selected one; ask and delete the selected one.
  virtual void OnNew() = 0;
  virtual void OnEdit() = 0;
  virtual void OnDelete() = 0;

  /// Cuts the grid to its header and one blank row.
  void EmptyGrid();
  /// The words of the question before an entry is deleted; True on OK.
  bool ConfirmDelete(const std::string& entry);
  /// Takes the selected entry off the grid; the row number stays selected.
  void RemoveSelectedRow();
};

/// Adds a blank row at the end; the selected row stays.
inline void AddBlankRow(ui::Grid& grid) { grid.SetRows(grid.Rows() + 1); }

}  // namespace kw

#endif  // KITWRIGHT_PAGES_GRID_PAGE_H_
