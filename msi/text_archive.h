#ifndef KITWRIGHT_MSI_TEXT_ARCHIVE_H_
#define KITWRIGHT_MSI_TEXT_ARCHIVE_H_

#include <memory>
#include <string>

#include "base/result.h"

namespace kw::msi {

class Core;

// Text archives (.idt): three lines that tell the columns, their types and the table with its key, then a
// line for each row, fields between tabs, lines ended by CR LF, in the database's code page. What
// Database::Export and Database::Import say holds.

Status ExportTable(Core& core, const std::string& table, const std::string& folder, const std::string& file);
Status ImportTable(const std::shared_ptr<Core>& core, const std::string& folder, const std::string& file);

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_TEXT_ARCHIVE_H_
