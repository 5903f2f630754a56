#ifndef KITWRIGHT_UI_WIZARD_LAYOUT_H_
#define KITWRIGHT_UI_WIZARD_LAYOUT_H_

#include <vector>

#include "ui/layout.h"

namespace kw::ui {

/// The parts that every window of the wizard has in the same place. Null parts are left out.
struct WizardParts {
  Image* band = nullptr;         ///< the picture behind the title
  Image* logo = nullptr;         ///< the product's logo, in the band
  Label* title = nullptr;        ///< in the band, emphasized
  Label* description = nullptr;  ///< below the title: what the page is for
  Line* line1 = nullptr;         ///< below the band
  Tree* tree = nullptr;          ///< the list of pages, at the left
  Image* side = nullptr;         ///< a picture in the place of the tree
  Line* line2 = nullptr;         ///< above the buttons
  Button* help = nullptr;        ///< at the left end of the buttons
  std::vector<Button*> buttons;  ///< at the right end, in order; null ones are left out
};

/// The layout of a whole wizard window around the page's own `content`.
Layout WizardLayout(const WizardParts& parts, Layout content);

}  // namespace kw::ui

#endif  // KITWRIGHT_UI_WIZARD_LAYOUT_H_
