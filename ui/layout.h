#ifndef KITWRIGHT_UI_LAYOUT_H_
#define KITWRIGHT_UI_LAYOUT_H_

#include <utility>
#include <vector>

#include "ui/controls.h"

namespace kw::ui {

/// What stands beside what on a form: a small tree of rows and columns. The toolkit adapter does the rest
/// (spacing, alignment, minimum sizes, wrapping of labels).
struct Layout {
  enum class Kind {
    kControl,  ///< one control
    kRow,      ///< children side by side
    kColumn,   ///< children one below the other
    kFields,   ///< children in pairs, label and field, aligned in two columns
    kFrame,    ///< a captioned frame (`control`) around one child
    kIndent,   ///< one child moved in, below an option or check box
    kBand,     ///< one child drawn on a picture (`control`) that fills the form's whole width
    kButtons,  ///< push buttons of one size in a row, at the end of a form
    kSpace     ///< stretching empty space
  };
  Kind kind = Kind::kSpace;
  Control* control = nullptr;
  std::vector<Layout> children;
  /// Share of the spare room along the parent's direction; 0 keeps the natural size.
  int stretch = 0;
};

inline Layout Place(Control& control, int stretch = 0) {
  return {Layout::Kind::kControl, &control, {}, stretch};
}
inline Layout Row(std::vector<Layout> children, int stretch = 0) {
  return {Layout::Kind::kRow, nullptr, std::move(children), stretch};
}
inline Layout Column(std::vector<Layout> children, int stretch = 0) {
  return {Layout::Kind::kColumn, nullptr, std::move(children), stretch};
}
inline Layout Fields(std::vector<Layout> children, int stretch = 0) {
  return {Layout::Kind::kFields, nullptr, std::move(children), stretch};
}
inline Layout Framed(Frame& frame, Layout child, int stretch = 0) {
  return {Layout::Kind::kFrame, &frame, {std::move(child)}, stretch};
}
inline Layout Indent(Layout child, int stretch = 0) {
  return {Layout::Kind::kIndent, nullptr, {std::move(child)}, stretch};
}
inline Layout Band(Image& picture, Layout child) {
  return {Layout::Kind::kBand, &picture, {std::move(child)}, 0};
}
inline Layout Buttons(std::vector<Layout> children) {
  return {Layout::Kind::kButtons, nullptr, std::move(children), 0};
}
inline Layout Space() { return {Layout::Kind::kSpace, nullptr, {}, 1}; }

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_LAYOUT_H_
