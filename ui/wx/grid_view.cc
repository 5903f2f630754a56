#include <wx/dataview.h>

#include <algorithm>

#include "ui/wx/form_view.h"
#include "ui/wx/mouse_press.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

/// A grid's data rows (without the header) as the widget asks for them. It keeps a copy, since the widget may
/// ask once more when the form is gone.
class RowModel : public wxDataViewVirtualListModel {
 public:
  void Take(const Grid& grid) {
    rows_.clear();
    for (int row = 1; row < grid.Rows(); ++row) {
      std::vector<std::string> cells;
      for (int column = 0; column < grid.Columns(); ++column) cells.push_back(grid.Cell(row, column));
      rows_.push_back(std::move(cells));
    }
    Reset(static_cast<unsigned>(rows_.size()));
  }

  void GetValueByRow(wxVariant& value, unsigned row, unsigned column) const override {
    value = row < rows_.size() && column < rows_[row].size() ? ToWx(rows_[row][column]) : wxString();
  }

  bool SetValueByRow(const wxVariant&, unsigned, unsigned) override { return false; }

 private:
  std::vector<std::vector<std::string>> rows_;
};

class GridView : public ControlView {
 public:
  GridView(FormView& form, Grid& grid, wxWindow* parent)
      : ControlView(form, grid),
        grid_(grid),
        view_(new wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                 wxDV_SINGLE | wxDV_ROW_LINES | wxDV_VERT_RULES | wxBORDER_THEME)),
        model_(new RowModel) {
    view_->AssociateModel(model_.get());
    view_->SetMinSize(view_->FromDIP(wxSize(300, 120)));
    view_->Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent&) { Pick(); });
    view_->Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [this](wxDataViewEvent&) {
      User([this] {
        if (grid_.on_double_click) grid_.on_double_click();
      });
    });
    view_->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) { Key(event); });
    view_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
      event.Skip();
      ShareWidth();
    });
    OnMousePress(*view_, [this](wxPoint, MouseButton, bool) { picked_ = false; });
    view_->GetMainWindow()->Bind(wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
      event.Skip();
      // A click on the row that is selected already changes no selection, and the widget says nothing of it.
      if (!picked_)
        view_->CallAfter([this] {
          if (!picked_) Pick();
        });
    });
  }

  wxWindow* Window() const override { return view_; }

 protected:
  void ApplyOwn(Changes changes) override {
    if (changes.Has(Change::kItems)) {
      MakeColumns();
      model_->Take(grid_);
    }
    ApplySelection();
  }

 private:
  /// The columns that are seen: those with a width, by their number in the grid.
  void MakeColumns() {
    std::vector<std::pair<int, std::string>> wanted;
    for (int column = 0; column < grid_.Columns(); ++column) {
      if (grid_.Widths()[static_cast<size_t>(column)] > 0) wanted.emplace_back(column, grid_.Cell(0, column));
    }
    if (wanted == columns_) return;
    columns_ = wanted;
    view_->ClearColumns();
    for (const auto& [column, heading] : columns_) {
      view_->AppendTextColumn(ToWx(heading), static_cast<unsigned>(column), wxDATAVIEW_CELL_INERT,
                              view_->FromDIP(80), wxALIGN_LEFT, wxDATAVIEW_COL_RESIZABLE);
    }
    ShareWidth();
  }

  /// Gives the columns their shares of the widget's width.
  void ShareWidth() {
    int sum = 0;
    for (const auto& [column, heading] : columns_) sum += grid_.Widths()[static_cast<size_t>(column)];
    const int room = view_->GetClientSize().x - view_->FromDIP(4);
    if (sum <= 0 || room <= 0 || view_->GetColumnCount() != columns_.size()) return;
    for (size_t i = 0; i + 1 < columns_.size(); ++i) {
      const int share = grid_.Widths()[static_cast<size_t>(columns_[i].first)];
      view_->GetColumn(static_cast<unsigned>(i))->SetWidth(room * share / sum);
    }
  }

  /// A grid that holds its blank row alone would look as if something stood in it.
  bool ShowsSelection() const {
    if (!grid_.Highlight() || grid_.Rows() < 2) return false;
    if (grid_.Rows() > 2) return true;
    for (const auto& [column, heading] : columns_) {
      if (!grid_.Cell(1, column).empty()) return true;
    }
    return false;
  }

  void ApplySelection() {
    if (!ShowsSelection()) {
      if (view_->GetSelection().IsOk()) view_->UnselectAll();
      return;
    }
    const wxDataViewItem wanted = model_->GetItem(static_cast<unsigned>(grid_.SelectedRow() - 1));
    if (view_->GetSelection() == wanted) return;
    view_->Select(wanted);
    view_->SetCurrentItem(wanted);
    view_->EnsureVisible(wanted);
  }

  void Pick() {
    picked_ = true;
    User([this] {
      const wxDataViewItem item = view_->GetSelection();
      if (item.IsOk()) grid_.UserPick(static_cast<int>(model_->GetRow(item)) + 1);
    });
    // The widget selects the row that gets the focus.
    if (!ShowsSelection()) ApplySelection();
  }

  void Key(wxKeyEvent& event) {
    const int key = event.GetKeyCode();
    if (key == WXK_DELETE || key == WXK_NUMPAD_DELETE) {
      UserByKey([this] {
        if (grid_.on_delete_key) grid_.on_delete_key();
      });
    } else if (key == WXK_INSERT || key == WXK_NUMPAD_INSERT) {
      UserByKey([this] {
        if (grid_.on_insert_key) grid_.on_insert_key();
      });
    } else {
      event.Skip();
    }
  }

  Grid& grid_;
  wxDataViewCtrl* view_;
  wxObjectDataPtr<RowModel> model_;
  std::vector<std::pair<int, std::string>> columns_;
  bool picked_ = true;
};

}  // namespace

std::unique_ptr<ControlView> MakeGridView(FormView& form, Grid& grid, wxWindow* parent) {
  return std::make_unique<GridView>(form, grid, parent);
}

}  // namespace kw::ui
