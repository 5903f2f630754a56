#include "msi/database.h"

#include <atomic>
#include <mutex>
#include <set>

#include "msi/core.h"
#include "msi/sql_parser.h"
#include "msi/text_archive.h"

namespace kw::msi {
namespace {

constexpr size_t kMaxPrepared = 256;

// The files that this process has open for writing: a second writer would not see the first one's sectors.
class OpenFiles {
 public:
  using Key = std::pair<const Storage*, std::string>;
  bool Add(const Key& file) {
    const std::lock_guard lock(mutex_);
    return files_.insert(file).second;
  }
  void Remove(const Key& file) {
    const std::lock_guard lock(mutex_);
    files_.erase(file);
  }

 private:
  std::mutex mutex_;
  std::set<Key> files_;
};

OpenFiles& WrittenFiles() {
  static OpenFiles files;
  return files;
}

// A file that is registered as long as it is open.
class WrittenFile : public StorageFile {
 public:
  WrittenFile(std::unique_ptr<StorageFile> file, OpenFiles::Key key)
      : file_(std::move(file)), key_(std::move(key)) {}
  ~WrittenFile() override { WrittenFiles().Remove(key_); }
  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
    return file_->ReadAt(offset, buffer);
  }
  Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
    return file_->WriteAt(offset, data);
  }
  Result<uint64_t> Size() override { return file_->Size(); }
  Status Truncate(uint64_t size) override { return file_->Truncate(size); }
  Status Sync() override { return file_->Sync(); }

 private:
  std::unique_ptr<StorageFile> file_;
  OpenFiles::Key key_;
};

Result<std::unique_ptr<StorageFile>> OpenFile(Storage& storage, const std::string& path, OpenMode mode) {
  if (mode == OpenMode::kReadOnly) return storage.Open(path, Storage::Mode::kRead);
  const bool create = mode == OpenMode::kCreate || mode == OpenMode::kCreateDirect;
  if (!WrittenFiles().Add({&storage, path})) {
    return {kErrorSharingViolation, "The database " + path + " is open for writing already."};
  }
  Result<std::unique_ptr<StorageFile>> file =
      storage.Open(path, create ? Storage::Mode::kCreateAlways : Storage::Mode::kReadWrite);
  if (!file.ok()) {
    WrittenFiles().Remove({&storage, path});
    return file;
  }
  return std::unique_ptr<StorageFile>(
      std::make_unique<WrittenFile>(*std::move(file), OpenFiles::Key(&storage, path)));
}

}  // namespace

Result<std::shared_ptr<Database>> Database::Open(Storage& storage, const std::string& path, OpenMode mode) {
  KW_ASSIGN_OR_RETURN(std::unique_ptr<StorageFile> file, OpenFile(storage, path, mode));
  const bool create = mode == OpenMode::kCreate || mode == OpenMode::kCreateDirect;
  const bool direct = mode == OpenMode::kDirect || mode == OpenMode::kCreateDirect;
  std::shared_ptr<Core> core;
  Status status;
  if (create) {
    core = std::make_shared<Core>(storage, CompoundFile::Create(std::move(file)), true, direct);
    status = core->MakeEmpty();
    if (status.ok()) status = core->EndStatement();
  } else {
    Result<std::unique_ptr<CompoundFile>> compound = CompoundFile::Open(std::move(file));
    status = compound.status();
    if (status.ok()) {
      core = std::make_shared<Core>(storage, *std::move(compound), mode != OpenMode::kReadOnly, direct);
      status = core->Load();
    }
  }
  if (!status.ok()) return {status.number(), "Could not open " + path + ". " + status.message()};
  return std::shared_ptr<Database>(new Database(std::move(core)));
}

Database::~Database() = default;

Result<std::unique_ptr<View>> Database::OpenView(std::string_view sql) {
  static std::atomic<uint64_t> last_id{0};
  std::shared_ptr<Prepared>& prepared = prepared_[std::string(sql)];
  if (!prepared) {
    Result<Statement> statement = ParseSql(sql);
    if (!statement.ok()) {
      prepared_.erase(std::string(sql));
      return statement.error();
    }
    // Statements with their values in the text differ each time; no more than some are worth keeping.
    if (prepared_.size() > kMaxPrepared) {
      prepared_.clear();
      return OpenView(sql);
    }
    prepared = std::make_shared<Prepared>();
    prepared->statement = *std::move(statement);
  }
  std::unique_ptr<View> view(new View(core_, prepared, ++last_id));
  const Status names = view->CheckNames();
  if (!names.ok())
    return {names.number(), names.message() + " The statement is \"" + std::string(sql) + "\"."};
  return view;
}

Status Database::Commit() { return core_->Commit(); }

Status Database::Export(const std::string& table, const std::string& folder, const std::string& file) {
  return ExportTable(*core_, table, folder, file);
}

Status Database::Import(const std::string& folder, const std::string& file) {
  return ImportTable(core_, folder, file);
}

Result<std::unique_ptr<SummaryInfo>> Database::SummaryInformation(int updates) {
  return SummaryInfo::Open(core_, updates);
}

Persistence Database::TablePersistent(std::string_view table) const {
  const Table* found = core_->FindTable(table);
  if (!found) return Persistence::kNone;
  return found->temporary ? Persistence::kTemporary : Persistence::kPersistent;
}

Result<Record> Database::PrimaryKeys(std::string_view table) const {
  const Table* found = core_->FindTable(table);
  if (!found) return {kErrorBadQuerySyntax, "There is no table " + std::string(table) + "."};
  Record keys(static_cast<int>(found->key_columns().size()));
  for (int i = 0; i < keys.FieldCount(); ++i) {
    const int column = found->key_columns()[static_cast<size_t>(i)];
    KW_RETURN_IF_ERROR(keys.SetString(i + 1, found->columns()[static_cast<size_t>(column)].name));
  }
  return keys;
}

int Database::CodePage() const { return core_->pool().code_page(); }

Status Database::SetCodePage(int code_page) { return core_->SetCodePage(code_page); }

bool Database::ReadOnly() const { return !core_->writable(); }

}  // namespace kw::msi
