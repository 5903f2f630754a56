#include "tests/peers/engines_test_support.h"

namespace kw::msi {

std::string Print(const Answer& answer) {
  std::string text = answer.ok ? "ok" : "refused";
  for (const std::string& row : answer.rows) text += "\n    " + row;
  return text;
}

bool IsSelect(const std::string& sql) { return sql.starts_with("select") || sql.starts_with("SELECT"); }

void OurRows(Database& database, const std::string& sql, const std::string& mark, Answer& answer) {
  const auto view = database.OpenView(sql);
  answer.ok = view.ok() && (*view)->Execute(nullptr).ok();
  if (!answer.ok || !IsSelect(sql)) return;
  while (true) {
    const auto record = (*view)->Fetch();
    if (!record.ok() || !record->has_value()) break;
    std::string row = mark;
    for (int i = 1; i <= (*record)->FieldCount(); ++i) row += (*record)->StringData(i) + "|";
    answer.rows.push_back(row);
  }
}
void LibraryRows(LibmsiDatabase* database, const std::string& sql, const std::string& mark, Answer& answer) {
  LibmsiQuery* query = libmsi_query_new(database, sql.c_str(), nullptr);
  answer.ok = query && libmsi_query_execute(query, nullptr, nullptr);
  // Only a select may be asked for rows there.
  while (LibmsiRecord* record = answer.ok && IsSelect(sql) ? libmsi_query_fetch(query, nullptr) : nullptr) {
    std::string row = mark;
    for (guint i = 1; i <= libmsi_record_get_field_count(record); ++i) {
      gchar* text = libmsi_record_get_string(record, i);
      row += (text ? text : "") + std::string("|");
      g_free(text);
    }
    answer.rows.push_back(row);
    g_object_unref(record);
  }
  if (query) g_object_unref(query);
}
}  // namespace kw::msi
