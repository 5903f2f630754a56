#ifndef KITWRIGHT_SETTINGS_PRODUCT_TOOL_H_
#define KITWRIGHT_SETTINGS_PRODUCT_TOOL_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Result of RunProductTool when the product's folder is unknown.
inline constexpr int kToolNotStarted = 3;

/// Runs one of the product's configuration tools against the staging branch, from the product's folder, and
/// waits for it: with " /ZEDW" it loads the live settings, with " /ZEDRW" (a configured page, or a source
/// that is not the live system) the staging branch. `asking` is the page or dialog that asks for it, which
/// the build may have hidden. Meanwhile the page tree on screen is disabled, and a click on the window on
/// screen brings the tool's window forward. The tool's exit code; any that is not zero is a failure.
int RunProductTool(PageContext& context, ui::Form& asking, const std::string& command,
                   bool already_configured);

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_PRODUCT_TOOL_H_
