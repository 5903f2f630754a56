#include "ui/wx/picture_panel.h"

namespace kw::ui {

bool PicturePanel::ChildrenPaintTheirBackground() { return true; }

}  // namespace kw::ui
