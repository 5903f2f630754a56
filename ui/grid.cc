#include <algorithm>
#include <utility>

#include "ui/controls.h"

namespace kw::ui {

Grid::Grid(Form& form, std::string name) : Control(form, ControlKind::kGrid, std::move(name), "") {}

void Grid::SetColumns(const std::vector<std::string>& headings, const std::vector<int>& widths) {
  widths_ = widths;
  cells_.assign(2, std::vector<std::string>(widths.size()));
  for (size_t i = 0; i < headings.size() && i < widths.size(); ++i) cells_[0][i] = headings[i];
  selected_ = 1;
  Notify(Change::kItems);
}

void Grid::SetRows(int rows) {
  if (rows < 1 || rows == Rows()) return;
  cells_.resize(static_cast<size_t>(rows), std::vector<std::string>(widths_.size()));
  selected_ = std::max(1, std::min(selected_, rows - 1));
  Notify(Change::kItems);
}

void Grid::InsertRow(int before) {
  if (before < 1 || before > Rows()) return;
  cells_.insert(cells_.begin() + before, std::vector<std::string>(widths_.size()));
  Notify(Change::kItems);
}

void Grid::RemoveRow(int row) {
  if (row < 1 || row >= Rows()) return;
  cells_.erase(cells_.begin() + row);
  selected_ = std::max(1, std::min(selected_, Rows() - 1));
  Notify(Change::kItems);
}

const std::string& Grid::Cell(int row, int column) const {
  static const std::string empty;
  if (row < 0 || row >= Rows() || column < 0 || column >= Columns()) return empty;
  return cells_[static_cast<size_t>(row)][static_cast<size_t>(column)];
}

void Grid::SetCell(int row, int column, std::string text) {
  if (row < 0 || row >= Rows() || column < 0 || column >= Columns()) return;
  std::string& cell = cells_[static_cast<size_t>(row)][static_cast<size_t>(column)];
  if (cell == text) return;
  cell = std::move(text);
  Notify(Change::kItems);
}

void Grid::ClearRow(int row) {
  for (int column = 0; column < Columns(); ++column) SetCell(row, column, "");
}

void Grid::SelectRow(int row) {
  row = std::max(1, std::min(row, Rows() - 1));
  if (row == selected_) return;
  selected_ = row;
  Notify(Change::kSelection);
}

void Grid::SetHighlight(bool highlight) {
  if (highlight == highlight_) return;
  highlight_ = highlight;
  Notify(Change::kSelection);
}

void Grid::UserPick(int row) {
  SelectRow(row);
  if (on_click) on_click();
}

}  // namespace kw::ui
