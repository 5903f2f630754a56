#ifndef KITWRIGHT_SHELL_PROGRAM_ENTRY_H_
#define KITWRIGHT_SHELL_PROGRAM_ENTRY_H_

#include "shell/page_contract.h"

namespace kw {

/// Decides whether the wizard may run on this machine, fills in what the run takes for granted about the
/// installed product, and shows the welcome page. Every refusal is told in one box and ends the program.
void RunProgramEntry(PageContext& context);

}  // namespace kw

#endif  // KITWRIGHT_SHELL_PROGRAM_ENTRY_H_
