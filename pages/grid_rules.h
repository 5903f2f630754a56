#ifndef KITWRIGHT_PAGES_GRID_RULES_H_
#define KITWRIGHT_PAGES_GRID_RULES_H_

#include "ui/controls.h"

namespace kw {

// The rules that the grids with a blank last row share.

/// With at least one data row the selection leaves the blank last row.
inline void LeaveBlankRow(ui::Grid& grid) {
  if (grid.Rows() >= 3 && grid.SelectedRow() == grid.Rows() - 1) grid.SelectRow(grid.Rows() - 2);
}

/// Adds a blank row at the end; the selected row stays.
inline void AddBlankRow(ui::Grid& grid) { grid.SetRows(grid.Rows() + 1); }

/// Cuts the grid to its header and one blank row.
inline void EmptyGrid(ui::Grid& grid) {
  grid.SetRows(2);
  grid.ClearRow(1);
  grid.SelectRow(1);
}

}  // namespace kw

#endif  // KITWRIGHT_PAGES_GRID_RULES_H_
