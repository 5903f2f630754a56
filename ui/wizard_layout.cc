#include "ui/wizard_layout.h"

#include <utility>

namespace kw::ui {

Layout WizardLayout(const WizardParts& parts, Layout content) {
  std::vector<Layout> whole;
  std::vector<Layout> words;
  if (parts.title) words.push_back(Place(*parts.title));
  if (parts.description) words.push_back(Place(*parts.description));
  std::vector<Layout> heading;
  if (parts.logo) heading.push_back(Place(*parts.logo));
  heading.push_back(Column(std::move(words), 1));
  if (parts.band) {
    whole.push_back(Band(*parts.band, Row(std::move(heading))));
  } else {
    whole.push_back(Row(std::move(heading)));
  }
  if (parts.line1) whole.push_back(Place(*parts.line1));

  std::vector<Layout> middle;
  if (parts.tree) middle.push_back(Place(*parts.tree));
  if (parts.side) middle.push_back(Place(*parts.side));
  content.stretch = 1;
  middle.push_back(std::move(content));
  whole.push_back(Row(std::move(middle), 1));

  if (parts.line2) whole.push_back(Place(*parts.line2));
  std::vector<Layout> buttons;
  if (parts.help) buttons.push_back(Place(*parts.help));
  buttons.push_back(Space());
  for (Button* button : parts.buttons) {
    if (button) buttons.push_back(Place(*button));
  }
  whole.push_back(Buttons(std::move(buttons)));
  return Column(std::move(whole));
}

}  // namespace kw::ui
