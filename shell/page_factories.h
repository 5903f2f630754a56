#ifndef KITWRIGHT_SHELL_PAGE_FACTORIES_H_
#define KITWRIGHT_SHELL_PAGE_FACTORIES_H_

#include "shell/page_table.h"

namespace kw {

/// The program's forms by their names.
FormFactories AllFormFactories();

}  // namespace kw

#endif  // KITWRIGHT_SHELL_PAGE_FACTORIES_H_
