#include "ui/wx/access_keys.h"

namespace kw::ui {

bool PressAccessKey(FormView&, const wxKeyEvent&) { return false; }

}  // namespace kw::ui
