#ifndef KITWRIGHT_SETTINGS_PRODUCT_TOOL_H_
#define KITWRIGHT_SETTINGS_PRODUCT_TOOL_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Result of RunProductTool when the product's folder is unknown.
inline constexpr int kToolNotStarted = 3;

/// Runs one of the product's configuration tools against the staging branch, from the product's folder, and
/// waits for it: with " /ZEDW" it loads the live settings, with " /ZEDRW" (a configured page, or a source
/// that is not the live system) the staging branch. `page` is the window on screen, `tree` its page tree or
/// the tree of the page below it (may be null), disabled meanwhile; a click on the page brings the tool's
/// window forward. The tool's exit code; any that is not zero is a failure.
int RunProductTool(PageContext& context, ui::Form& page, ui::Tree* tree, const std::string& command,
                   bool already_configured);

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_PRODUCT_TOOL_H_
