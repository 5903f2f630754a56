#include "package/installer_db.h"

#include <utility>

#include "base/text.h"

namespace kw {

using platform::Record;
using platform::View;

InstallerDb::InstallerDb(platform::Services& services, const std::unique_ptr<platform::Installer>& installer,
                         const std::shared_ptr<platform::Database>& database)
    : services_(services), installer_(installer), database_(database) {}

InstallerDb InstallerDb::Working(platform::Services& services, RunState& run) {
  return InstallerDb(services, run.Installer, run.WorkingDatabase);
}

InstallerDb InstallerDb::Beaconry(platform::Services& services, RunState& run) {
  return InstallerDb(services, run.InstallerSecond, run.BeaconryDatabase);
}

std::shared_ptr<Record> InstallerDb::MakeRecord(const SqlValues& values) const {
  auto record = installer_->CreateRecord(static_cast<int>(values.size()));
  int field = 0;
  for (const SqlValue& value : values) {
    ++field;
    // Fields 1 to n of a new record of n fields can always be set.
    if (const auto* text = std::get_if<std::string>(&value)) {
      record->SetStringData(field, *text).IgnoreError();
    } else {
      record->SetIntegerData(field, std::get<int32_t>(value)).IgnoreError();
    }
  }
  return record;
}

Result<std::unique_ptr<View>> InstallerDb::Open(std::string_view statement) const {
  if (!database_) return Error{kErrorInvalidHandle, "No installer database is open."};
  return database_->OpenView(statement);
}

Status InstallerDb::RunSql(std::string_view statement, const SqlValues& values) const {
  KW_ASSIGN_OR_RETURN(const std::unique_ptr<View> view, Open(statement));
  KW_RETURN_IF_ERROR(view->Execute(MakeRecord(values).get()));
  view->Close();
  return {};
}

Result<std::shared_ptr<Record>> InstallerDb::QuerySql(std::string_view statement,
                                                      const SqlValues& values) const {
  KW_ASSIGN_OR_RETURN(const std::unique_ptr<View> view, Open(statement));
  KW_RETURN_IF_ERROR(view->Execute(MakeRecord(values).get()));
  auto record = view->Fetch();
  view->Close();
  return record;
}

Result<std::vector<std::shared_ptr<Record>>> InstallerDb::QueryAll(std::string_view statement,
                                                                   const SqlValues& values) const {
  KW_ASSIGN_OR_RETURN(const std::unique_ptr<View> view, Open(statement));
  KW_RETURN_IF_ERROR(view->Execute(values.empty() ? nullptr : MakeRecord(values).get()));
  std::vector<std::shared_ptr<Record>> records;
  for (;;) {
    KW_ASSIGN_OR_RETURN(auto record, view->Fetch());
    if (!record) break;
    records.push_back(std::move(record));
  }
  view->Close();
  return records;
}

Result<std::string> InstallerDb::GetProperty(std::string_view name) const {
  KW_ASSIGN_OR_RETURN(const auto record,
                      QuerySql("select `Value` from `Property` where `Property` = ?", {std::string(name)}));
  return record ? record->StringData(1) : std::string();
}

Status InstallerDb::SetProperty(std::string_view name, std::string_view value) const {
  KW_RETURN_IF_ERROR(RunSql("delete from `Property` where `Property` = ?", {std::string(name)}));
  if (value.empty()) return {};
  return RunSql("insert into `Property` (`Value`, `Property`) values (?, ?)",
                {std::string(value), std::string(name)});
}

Result<bool> InstallerDb::ExtractBinary(std::string_view name, const std::string& path) const {
  constexpr int kChunk = 1024;
  KW_ASSIGN_OR_RETURN(const std::unique_ptr<View> view,
                      Open("select `Data` from `Binary` where `Name` = '" + std::string(name) + "'"));
  KW_RETURN_IF_ERROR(view->Execute(nullptr));
  KW_ASSIGN_OR_RETURN(const auto record, view->Fetch());
  if (!record) return false;
  const auto file = services_.files->Open(path, platform::OpenHow::kOpenOrCreateExclusive);
  if (!file.ok()) return false;
  bool written = false;
  for (;;) {
    KW_ASSIGN_OR_RETURN(const std::string bytes, record->ReadStream(1, kChunk));
    written = (*file)->Write(bytes).ok();
    if (!written || bytes.size() < kChunk) break;
  }
  if (written) written = (*file)->Flush().ok();
  view->Close();
  return written;
}

Status InstallerDb::ReplaceBinary(std::string_view name, const std::string& path) const {
  const std::string key(name);
  KW_RETURN_IF_ERROR(RunSql("delete from `Binary` where `Name` = '" + key + "'"));
  KW_ASSIGN_OR_RETURN(const std::unique_ptr<View> view,
                      Open("insert into `Binary` (`Data`, `Name`) values (?, '" + key + "')"));
  const auto record = installer_->CreateRecord(1);
  KW_RETURN_IF_ERROR(record->SetStream(1, path));
  KW_RETURN_IF_ERROR(view->Execute(record.get()));
  record->ClearData();
  view->Close();
  return {};
}

Status InstallerDb::LowerCaseFileNames() const {
  KW_ASSIGN_OR_RETURN(const auto rows, QueryAll("select `File`, `FileName` from `File`"));
  for (const auto& row : rows) {
    const std::string name = row->StringData(2);
    std::string lower = ToLower(name);
    // A name that is in lower case already costs no write.
    if (lower == name) continue;
    KW_RETURN_IF_ERROR(
        RunSql("update `File` set `FileName` = ? where `File` = ?", {std::move(lower), row->StringData(1)}));
  }
  return {};
}

std::string ChooseValue(bool condition, std::string_view when_true, std::string_view when_false) {
  return std::string(condition ? when_true : when_false);
}

}  // namespace kw
