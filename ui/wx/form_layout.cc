#include "ui/wx/form_layout.h"

#include <wx/button.h>
#include <wx/statbox.h>

#include <algorithm>
#include <utility>

#include "ui/wx/label_text.h"
#include "ui/wx/list_side.h"

namespace kw::ui {

namespace {

// Distances in pixels at 100 %.
constexpr int kMargin = 16;        // around a page's content
constexpr int kEdge = 12;          // around dialogs and button rows
constexpr int kGap = 10;           // between controls
constexpr int kTightGap = 4;       // between a label and what it names
constexpr int kOptionGap = 6;      // between check boxes or options
constexpr int kIndent = 22;        // of what belongs to an option
constexpr int kButtonWidth = 88;   // least width of a push button
constexpr int kLeastLabel = 160;   // to which a label may be squeezed on a page
constexpr int kBandHeight = 86;    // of the title band: title and two lines, so that pages look alike
constexpr int kBandPicture = 190;  // at its right end, where the words stay away
constexpr int kDialogLabel = 400;  // and in a dialog

bool IsChoice(const Control& control) {
  return control.Kind() == ControlKind::kCheckBox || control.Kind() == ControlKind::kOption;
}

}  // namespace

bool NeedsName(const Control& control) {
  switch (control.Kind()) {
    case ControlKind::kTextBox:
    case ControlKind::kListBox:
    case ControlKind::kComboBox:
    case ControlKind::kGrid:
    case ControlKind::kTree:
    case ControlKind::kEditor:
      return true;
    default:
      return false;
  }
}

namespace {

/// The control at the end, or at the beginning, of a part of the layout.
const Control* Outermost(const Layout& layout, bool last) {
  if (layout.kind == Layout::Kind::kControl) return layout.control;
  if (layout.children.empty()) return nullptr;
  return Outermost(last ? layout.children.back() : layout.children.front(), last);
}

/// Lines that explain something stand apart; they name no control.
bool IsParagraph(const Layout& layout) { return layout.kind == Layout::Kind::kColumn; }

int GapBetween(const Layout& before, const Layout& after) {
  const Control* upper = Outermost(before, true);
  const Control* lower = Outermost(after, false);
  if (!upper || !lower) return kGap;
  if (upper->Kind() == ControlKind::kLabel && NeedsName(*lower)) {
    return IsParagraph(before) ? kGap : kTightGap;
  }
  if (upper->Kind() == ControlKind::kLabel && lower->Kind() == ControlKind::kLabel) return kTightGap;
  if (IsChoice(*upper) && IsChoice(*lower)) return kOptionGap;
  if (IsChoice(*upper) && after.kind == Layout::Kind::kIndent) return kOptionGap;
  return kGap;
}

}  // namespace

FormLayout::FormLayout(Layout layout, FormStyle style, wxPanel* panel, Maker maker)
    : layout_(std::move(layout)), style_(style), panel_(panel), maker_(std::move(maker)) {
  scrolled_part_ = ScrolledPart();
  Plan(layout_, {});
  PlanLabels(layout_);
}

const Layout* FormLayout::ScrolledPart() const {
  if (style_ != FormStyle::kPage || layout_.kind != Layout::Kind::kColumn) return nullptr;
  for (const Layout& part : layout_.children) {
    if (part.kind == Layout::Kind::kRow && part.stretch > 0 && !part.children.empty()) {
      return &part.children.back();
    }
  }
  return nullptr;
}

void FormLayout::Plan(const Layout& layout, Place place) {
  if (&layout == scrolled_part_) place.scrolled = true;
  place.at_side =
      scrolled_part_ && !place.scrolled && layout.control && layout.control->Kind() == ControlKind::kTree;
  if (layout.control) places_[layout.control] = place;
  if (layout.kind == Layout::Kind::kFrame || layout.kind == Layout::Kind::kBand) {
    place.container = layout.control;
  }
  for (const Layout& child : layout.children) Plan(child, place);
}

void FormLayout::PlanLabels(const Layout& layout) {
  const Layout* before = nullptr;
  for (const Layout& child : layout.children) {
    if (before && child.kind != Layout::Kind::kFrame && !IsParagraph(*before)) {
      const Control* named = Outermost(child, false);
      const Control* label = Outermost(*before, true);
      const bool labels = label && (label->Kind() == ControlKind::kLabel || IsChoice(*label));
      if (named && NeedsName(*named) && labels) labels_[named] = label;
      if (named && named->Kind() == ControlKind::kButton && label && NeedsName(*label) &&
          layout.kind == Layout::Kind::kRow) {
        fields_of_buttons_[named] = label;
      }
    }
    PlanLabels(child);
    before = &child;
  }
}

wxWindow* FormLayout::ParentOf(const Place& place) {
  if (place.container) return Ensure(*place.container)->Window();
  if (place.at_side) {
    if (!list_side_) list_side_ = new ListSide(panel_);
    return list_side_;
  }
  if (!place.scrolled) return panel_;
  if (!scroller_) {
    scroller_ =
        new wxScrolledWindow(panel_, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxVSCROLL | wxTAB_TRAVERSAL);
    scroller_->SetScrollRate(0, Dip(10));
  }
  return scroller_;
}

ControlView* FormLayout::Ensure(Control& control) {
  ControlView*& view = views_[&control];
  if (!view) view = maker_(control, ParentOf(places_[&control]));
  return view;
}

void FormLayout::Build(const std::vector<Control*>& controls) {
  for (Control* control : controls) {
    if (places_.count(control)) Ensure(*control);
  }
  auto* whole = new wxBoxSizer(wxVERTICAL);
  if (style_ == FormStyle::kPage && layout_.kind == Layout::Kind::kColumn) {
    AddPage(*whole);
  } else {
    auto* inner = new wxBoxSizer(wxVERTICAL);
    Add(layout_, *inner, false, 0);
    inner->GetItem(static_cast<size_t>(0))->SetProportion(1);
    whole->Add(inner, 1, wxEXPAND | wxALL, Dip(kEdge));
  }
  panel_->SetSizer(whole);
}

void FormLayout::AddPage(wxSizer& whole) {
  for (const Layout& part : layout_.children) {
    if (part.kind == Layout::Kind::kRow && part.stretch > 0) {
      AddMiddle(part, whole);
    } else if (part.kind == Layout::Kind::kButtons) {
      whole.Add(ButtonRow(part), 0, wxEXPAND | wxALL, Dip(kEdge));
    } else {
      Add(part, whole, false, 0);
    }
  }
}

void FormLayout::AddMiddle(const Layout& row, wxSizer& whole) {
  auto* middle = new wxBoxSizer(wxHORIZONTAL);
  for (const Layout& child : row.children) {
    if (&child != scrolled_part_) {
      if (child.control && places_[child.control].at_side) {
        list_side_->Hold(*views_[child.control]->Window());
        middle->Add(list_side_, 0, wxEXPAND);
        continue;
      }
      Add(child, *middle, true, 0);
      middle->GetItem(middle->GetItemCount() - 1)->SetFlag(wxEXPAND);
      continue;
    }
    auto* content = new wxBoxSizer(wxVERTICAL);
    auto* inner = new wxBoxSizer(wxVERTICAL);
    Add(child, *inner, false, 0);
    inner->GetItem(static_cast<size_t>(0))->SetProportion(1);
    content->Add(inner, 1, wxEXPAND | wxALL, Dip(kMargin));
    wxWindow* scroller = ParentOf({true, false, nullptr});
    scroller->SetSizer(content);
    middle->Add(scroller, 1, wxEXPAND);
  }
  whole.Add(middle, 1, wxEXPAND);
}

wxSizer* FormLayout::Children(const Layout& layout, bool in_row) {
  auto* sizer = new wxBoxSizer(in_row ? wxHORIZONTAL : wxVERTICAL);
  const Layout* before = nullptr;
  for (const Layout& child : layout.children) {
    int gap = 0;
    // Buttons keep their distance also where the room in front of them is used up.
    const bool behind_space = before && before->kind == Layout::Kind::kSpace;
    if (behind_space && child.kind == Layout::Kind::kButtons) {
      gap = kEdge;
    } else if (before && !behind_space && child.kind != Layout::Kind::kSpace) {
      gap = in_row ? kGap - 2 : GapBetween(*before, child);
    }
    Add(child, *sizer, in_row, gap);
    before = &child;
  }
  return sizer;
}

wxSizer* FormLayout::FieldPairs(const Layout& layout) {
  auto* grid = new wxFlexGridSizer(2, Dip(kGap - 2), Dip(kGap - 2));
  grid->AddGrowableCol(1, 1);
  bool label = true;
  for (const Layout& child : layout.children) {
    auto* cell = new wxBoxSizer(wxHORIZONTAL);
    Layout field = child;
    if (!label && field.stretch == 0) field.stretch = 1;
    Add(field, *cell, true, 0);
    grid->Add(cell, 0, wxALIGN_CENTRE_VERTICAL | (label ? 0 : wxEXPAND));
    label = !label;
  }
  return grid;
}

wxSizer* FormLayout::ButtonRow(const Layout& layout) {
  wxSize same(Dip(kButtonWidth), -1);
  for (const Layout& child : layout.children) {
    if (child.control) same.IncTo(views_[child.control]->Window()->GetBestSize());
  }
  auto* row = new wxBoxSizer(wxHORIZONTAL);
  bool first = true;
  for (const Layout& child : layout.children) {
    if (!child.control) {
      row->AddStretchSpacer(1);
      first = true;
      continue;
    }
    wxWindow* button = views_[child.control]->Window();
    button->SetMinSize(same);
    row->Add(button, 0, first ? 0 : wxLEFT, Dip(kGap - 2));
    first = false;
  }
  return row;
}

void FormLayout::AllowWrap(ControlView* view) {
  if (auto* wrapping = dynamic_cast<WrappingView*>(view)) {
    wrapping->AllowWrap(Dip(style_ == FormStyle::kPage ? kLeastLabel : kDialogLabel));
  }
}

void FormLayout::AddControl(const Layout& child, wxSizer& sizer, bool in_row, int gap) {
  ControlView* view = views_[child.control];
  const int side = in_row ? wxLEFT : wxTOP;
  if (in_row) {
    const bool tall =
        child.control->Kind() == ControlKind::kListBox || child.control->Kind() == ControlKind::kGrid ||
        child.control->Kind() == ControlKind::kTree || child.control->Kind() == ControlKind::kEditor;
    if (child.stretch > 0) AllowWrap(view);
    sizer.Add(view->Window(), child.stretch, (tall ? int{wxEXPAND} : int{wxALIGN_CENTRE_VERTICAL}) | side,
              Dip(gap));
    return;
  }
  AllowWrap(view);
  const bool natural = child.control->Kind() == ControlKind::kButton;
  sizer.Add(view->Window(), child.stretch, (natural ? int{wxALIGN_LEFT} : int{wxEXPAND}) | side, Dip(gap));
}

void FormLayout::Add(const Layout& child, wxSizer& sizer, bool in_row, int gap) {
  const int side = in_row ? wxLEFT : wxTOP;
  const int flags = wxEXPAND | side;
  switch (child.kind) {
    case Layout::Kind::kControl:
      AddControl(child, sizer, in_row, gap);
      break;
    case Layout::Kind::kRow:
      sizer.Add(Children(child, true), child.stretch, flags, Dip(gap));
      break;
    case Layout::Kind::kColumn:
      sizer.Add(Children(child, false), child.stretch, flags, Dip(gap));
      break;
    case Layout::Kind::kFields:
      sizer.Add(FieldPairs(child), child.stretch, flags, Dip(gap));
      break;
    case Layout::Kind::kFrame: {
      auto* box = static_cast<wxStaticBox*>(views_[child.control]->Window());
      auto* framed = new wxStaticBoxSizer(box, wxVERTICAL);
      auto* inner = new wxBoxSizer(wxVERTICAL);
      for (const Layout& part : child.children) Add(part, *inner, false, 0);
      if (inner->GetItemCount() == 1) inner->GetItem(static_cast<size_t>(0))->SetProportion(1);
      framed->Add(inner, 1, wxEXPAND | wxALL, Dip(kGap - 2));
      sizer.Add(framed, child.stretch, flags, Dip(gap));
      break;
    }
    case Layout::Kind::kIndent: {
      auto* moved = new wxBoxSizer(wxHORIZONTAL);
      auto* inner = new wxBoxSizer(wxVERTICAL);
      for (const Layout& part : child.children) Add(part, *inner, false, 0);
      moved->Add(inner, 1, wxEXPAND | wxLEFT, Dip(kIndent));
      sizer.Add(moved, child.stretch, flags, Dip(gap));
      break;
    }
    case Layout::Kind::kBand: {
      wxWindow* band = views_[child.control]->Window();
      auto* inner = new wxBoxSizer(wxVERTICAL);
      inner->AddStretchSpacer(1);
      for (const Layout& part : child.children) Add(part, *inner, false, 0);
      inner->AddStretchSpacer(1);
      auto* spaced = new wxBoxSizer(wxHORIZONTAL);
      spaced->Add(inner, 1, wxEXPAND | wxLEFT, Dip(kEdge));
      spaced->AddSpacer(Dip(kBandPicture));
      band->SetSizer(spaced);
      band->SetMinSize(wxSize(-1, ScaledSize(*band, wxSize(0, kBandHeight)).y));
      sizer.Add(band, 0, wxEXPAND | side, Dip(gap));
      break;
    }
    case Layout::Kind::kButtons:
      sizer.Add(ButtonRow(child), 0, flags, Dip(gap));
      break;
    case Layout::Kind::kSpace:
      sizer.AddStretchSpacer(std::max(1, child.stretch));
      break;
  }
}

}  // namespace kw::ui
