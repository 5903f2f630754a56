#ifndef KITWRIGHT_CONSOLE_CONSOLE_PACKAGE_H_
#define KITWRIGHT_CONSOLE_CONSOLE_PACKAGE_H_

#include "shell/page_contract.h"

namespace kw {

/// The console files of a plain package and of the companions that ride along.
void CreateConsolePackage(PageContext& context);
/// The console files of a package that the optimiser packed into one SETUP.EXE.
void CreateOptimizedConsolePackage(PageContext& context);
/// The console files of a settings file.
void CreateSettingsConsolePackage(PageContext& context);

}  // namespace kw

#endif  // KITWRIGHT_CONSOLE_CONSOLE_PACKAGE_H_
