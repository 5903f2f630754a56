#ifndef KITWRIGHT_PAGES_FOLDER_BOX_H_
#define KITWRIGHT_PAGES_FOLDER_BOX_H_

#include <string>

#include "package/file_rules.h"
#include "platform/services.h"
#include "ui/controls.h"

namespace kw {

/// What a Browse button beside a folder's text box does: the folder dialog begins at the box's folder (at the
/// current one when the box is empty), and a chosen folder replaces the text.
inline void BrowseForFolderInto(platform::Services& services, ui::TextBox& box, const char* title) {
  const std::string start = box.Text().empty() ? services.files->CurrentFolder() : box.Text();
  const std::string chosen = BrowseForFolder(services, title, start);
  if (!chosen.empty()) box.SetText(chosen);
}

/// Whether the folder behind the option of a custom installation folder can stand: there is one, and it is
/// local. A refusal is told, and the box is selected.
inline bool CustomFolderIsValid(platform::Services& services, ui::TextBox& box) {
  if (box.Text().empty()) {
    services.dialogs->Message("Please enter a custom installation folder or choose the default.");
  } else if (ValidatePath(services, "Installation folder", box.Text(), kCheckCharacters | kCheckLocal)) {
    return true;
  }
  box.SelectField();
  return false;
}

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FOLDER_BOX_H_
