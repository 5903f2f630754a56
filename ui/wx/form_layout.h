#ifndef KITWRIGHT_UI_WX_FORM_LAYOUT_H_
#define KITWRIGHT_UI_WX_FORM_LAYOUT_H_

#include <wx/panel.h>
#include <wx/scrolwin.h>
#include <wx/sizer.h>

#include <functional>
#include <map>
#include <vector>

#include "ui/form.h"
#include "ui/wx/control_view.h"

namespace kw::ui {

/// Turns a form's layout into sizers. The widgets are made in the order of the form's controls, which gives
/// the Tab order; the layout says inside what each of them stands.
class ListSide;

/// True for controls that bear no words of their own and are named by what stands before them.
bool NeedsName(const Control& control);

class FormLayout {
 public:
  using Maker = std::function<ControlView*(Control& control, wxWindow* parent)>;

  FormLayout(Layout layout, FormStyle style, wxPanel* panel, Maker maker);
  /// Makes the widgets of all `controls` that the layout holds, and places them.
  void Build(const std::vector<Control*>& controls);
  /// The part of a page that scrolls when it has too little room; null for other forms.
  wxScrolledWindow* Scroller() const { return scroller_; }
  /// For each control with a label beside or above it, that label.
  const std::map<const Control*, const Control*>& Labels() const { return labels_; }
  /// The field that stands before a button in the same row, by button.
  const std::map<const Control*, const Control*>& FieldsOfButtons() const { return fields_of_buttons_; }

 private:
  /// What a control stands inside: the panel, the scroller, or the widget of a container control.
  struct Place {
    bool scrolled = false;
    bool at_side = false;  ///< beside the scrolled content of a page
    Control* container = nullptr;
  };

  void Plan(const Layout& layout, Place place);
  void PlanLabels(const Layout& layout);
  const Layout* ScrolledPart() const;
  ControlView* Ensure(Control& control);
  wxWindow* ParentOf(const Place& place);

  void AddPage(wxSizer& whole);
  void AddMiddle(const Layout& row, wxSizer& whole);
  wxSizer* Children(const Layout& layout, bool in_row);
  wxSizer* FieldPairs(const Layout& layout);
  wxSizer* ButtonRow(const Layout& layout);
  /// Adds one child to a row or column. `gap` is the space before it.
  void Add(const Layout& child, wxSizer& sizer, bool in_row, int gap);
  void AddControl(const Layout& child, wxSizer& sizer, bool in_row, int gap);
  void AllowWrap(ControlView* view);
  int Dip(int pixels) const { return panel_->FromDIP(pixels); }

  Layout layout_;
  FormStyle style_;
  wxPanel* panel_;
  Maker maker_;
  wxScrolledWindow* scroller_ = nullptr;
  ListSide* list_side_ = nullptr;
  const Layout* scrolled_part_ = nullptr;
  std::map<const Control*, Place> places_;
  std::map<const Control*, ControlView*> views_;
  std::map<const Control*, const Control*> labels_;
  std::map<const Control*, const Control*> fields_of_buttons_;
};

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WX_FORM_LAYOUT_H_
