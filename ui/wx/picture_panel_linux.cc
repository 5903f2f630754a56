#include "ui/wx/picture_panel.h"

namespace kw::ui {

bool PicturePanel::ChildrenPaintTheirBackground() { return false; }

}  // namespace kw::ui
