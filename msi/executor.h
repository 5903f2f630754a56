#ifndef KITWRIGHT_MSI_EXECUTOR_H_
#define KITWRIGHT_MSI_EXECUTOR_H_

#include <vector>

#include "msi/core.h"
#include "msi/record.h"

namespace kw::msi {

/// One column of a table and the value that it is to get.
struct Assignment {
  int column = 0;
  Value value;
};

/// Adds a row. Columns without an assignment become null. Everything is checked before anything changes:
/// fails with kErrorUnrepresentableText, or with kErrorFunctionFailed on a null where none may be, on an
/// integer out of the column's range, on a value of the wrong kind and on a key that exists.
Status InsertInto(Core& core, Table& table, const std::vector<Assignment>& values, bool temporary);

/// Makes the table `name` with these rows in place of any that has the name. Everything is checked, and all
/// streams are read, before the old table goes: after a failure it is there as it was.
Status ReplaceTable(Core& core, const std::string& name, const std::vector<Column>& columns,
                    const std::vector<std::vector<Assignment>>& rows);

/// Changes cells of rows. The key must stay what it is. Checked like InsertInto.
Status UpdateRows(Core& core, Table& table, const std::vector<Assignment>& values,
                  const std::vector<Table::Row>& rows);

/// Checks an update without making it.
Status CheckUpdate(Core& core, Table& table, const std::vector<Assignment>& values, Table::Row row);

/// The row whose key the values say, or kNoRow; also when the values do not tell the whole key.
Table::Row FindByKey(Core& core, Table& table, const std::vector<Assignment>& values);

/// Removes rows.
Status DeleteRows(Core& core, Table& table, const std::vector<Table::Row>& rows);

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_EXECUTOR_H_
