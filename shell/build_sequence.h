#ifndef KITWRIGHT_SHELL_BUILD_SEQUENCE_H_
#define KITWRIGHT_SHELL_BUILD_SEQUENCE_H_

#include <string>

#include "shell/page_contract.h"

namespace kw {

/// Turns the choices into output: the one sequence that writes to the destination. Each step assumes that the
/// steps before it ran. Leaves the outcome in RunState::Succeeded, tells every failure, takes back what it
/// copied when it failed, and cleans the run up in any case. `page` is busy meanwhile.
void RunBuild(PageContext& context, ui::Form& page);

/// The name of the optimiser's language file, by the language of the package.
std::string GetOptimizerLanguageFile(const std::string& package_locale);

}  // namespace kw

#endif  // KITWRIGHT_SHELL_BUILD_SEQUENCE_H_
