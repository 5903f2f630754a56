#include "platform/shared/msi_installer.h"

#include <ctime>
#include <utility>

#include "base/text.h"
#include "msi/database.h"
#include "msi/session.h"

namespace kw::platform {
namespace {

/// Shared by all objects of one installer.
using Ground = std::shared_ptr<const InstallerGround>;

/// A local time in units of 100 nanoseconds since the beginning of 1601 (UTC).
uint64_t FileTimeOf(const LocalTime& time) {
  std::tm parts{};
  parts.tm_year = time.year - 1900;
  parts.tm_mon = time.month - 1;
  parts.tm_mday = time.day;
  parts.tm_hour = time.hour;
  parts.tm_min = time.minute;
  parts.tm_sec = time.second;
  parts.tm_isdst = -1;
  constexpr int64_t kSecondsFrom1601To1970 = 11644473600;
  return static_cast<uint64_t>(static_cast<int64_t>(std::mktime(&parts)) + kSecondsFrom1601To1970) * 10000000;
}

/// A path as the program writes it, and where it lies for the engine.
struct PathPair {
  PathPair(const InstallerGround& ground, const std::string& path)
      : shown(path), host(ground.host_path(path)) {}
  /// The engine's failure, in words that name the path as people know it.
  Status Tell(const Status& status) const {
    if (status.ok()) return status;
    return Status(status.number(), ReplaceAll(status.message(), host, shown));
  }
  template <typename T>
  Result<T> Tell(Result<T> result) const {
    if (result.ok()) return result;
    return Tell(result.status()).error();
  }

  std::string shown;
  std::string host;
};

class MsiRecord : public Record {
 public:
  /// `files` are those that the record's streams are read from.
  MsiRecord(Ground ground, msi::Record inner, std::vector<PathPair> files)
      : ground_(std::move(ground)), inner_(std::move(inner)), files_(std::move(files)) {}
  const msi::Record& Inner() const { return inner_; }
  msi::Record& Inner() { return inner_; }
  /// As PathPair::Tell, for all files of its streams.
  Status Tell(Status status) const {
    for (const PathPair& file : files_) status = file.Tell(status);
    return status;
  }

  int FieldCount() const override { return inner_.FieldCount(); }
  bool IsNull(int field) const override { return inner_.IsNull(field); }
  std::string StringData(int field) const override { return inner_.StringData(field); }
  Status SetStringData(int field, std::string_view value) override { return inner_.SetString(field, value); }
  int32_t IntegerData(int field) const override { return inner_.IntegerData(field); }
  Status SetIntegerData(int field, int32_t value) override { return inner_.SetInteger(field, value); }
  Status SetStream(int field, const std::string& path) override {
    files_.emplace_back(*ground_, path);
    return Tell(inner_.SetStream(field, ground_->storage, files_.back().host));
  }
  Result<std::string> ReadStream(int field, int length) override {
    auto bytes = inner_.ReadStream(field, length > 0 ? static_cast<size_t>(length) : 0);
    if (!bytes.ok()) return Tell(bytes.status()).error();
    return bytes;
  }
  void ClearData() override { inner_.ClearData(); }

 private:
  Ground ground_;
  msi::Record inner_;
  std::vector<PathPair> files_;
};

Error ForeignObject() {
  return {kErrorInvalidParameter, "The record or the database comes from another installer."};
}

class MsiView : public View {
 public:
  /// `file` is the database's own.
  MsiView(Ground ground, PathPair file, std::unique_ptr<msi::View> inner)
      : ground_(std::move(ground)), file_(std::move(file)), inner_(std::move(inner)) {}

  Status Execute(const Record* parameters) override {
    if (parameters == nullptr) return file_.Tell(inner_->Execute(nullptr));
    const auto* record = dynamic_cast<const MsiRecord*>(parameters);
    if (record == nullptr) return ForeignObject();
    return record->Tell(file_.Tell(inner_->Execute(&record->Inner())));
  }

  Result<std::shared_ptr<Record>> Fetch() override {
    KW_ASSIGN_OR_RETURN(std::optional<msi::Record> row, file_.Tell(inner_->Fetch()));
    std::shared_ptr<Record> record;
    if (row) record = std::make_shared<MsiRecord>(ground_, std::move(*row), std::vector{file_});
    return record;
  }

  Status Modify(ModifyMode mode, Record& record) override {
    auto* ours = dynamic_cast<MsiRecord*>(&record);
    if (ours == nullptr) return ForeignObject();
    return ours->Tell(file_.Tell(inner_->Modify(static_cast<msi::ModifyMode>(mode), ours->Inner())));
  }

  void Close() override { inner_->Close(); }

 private:
  Ground ground_;
  PathPair file_;
  std::unique_ptr<msi::View> inner_;
};

class MsiSummaryInfo : public SummaryInfo {
 public:
  /// `file` is the database's own.
  MsiSummaryInfo(Ground ground, PathPair file, std::unique_ptr<msi::SummaryInfo> inner)
      : ground_(std::move(ground)), file_(std::move(file)), inner_(std::move(inner)) {}

  int32_t IntegerProperty(int id) const override { return inner_->IntegerProperty(id); }
  std::string TextProperty(int id) const override { return inner_->TextProperty(id); }
  Status SetIntegerProperty(int id, int32_t value) override { return inner_->SetInteger(id, value); }
  Status SetTextProperty(int id, std::string_view value) override { return inner_->SetText(id, value); }
  Status SetTimePropertyToNow(int id) override {
    return inner_->SetTime(id, FileTimeOf(ground_->system.Now()));
  }
  Status Persist() override { return file_.Tell(inner_->Persist()); }

 private:
  Ground ground_;
  PathPair file_;
  std::unique_ptr<msi::SummaryInfo> inner_;
};

class MsiDatabase : public Database {
 public:
  MsiDatabase(Ground ground, PathPair file, std::shared_ptr<msi::Database> inner)
      : ground_(std::move(ground)), file_(std::move(file)), inner_(std::move(inner)) {}
  const std::shared_ptr<msi::Database>& Inner() const { return inner_; }
  const PathPair& File() const { return file_; }

  Result<std::unique_ptr<View>> OpenView(std::string_view sql) override {
    KW_ASSIGN_OR_RETURN(std::unique_ptr<msi::View> view, file_.Tell(inner_->OpenView(sql)));
    return std::unique_ptr<View>(std::make_unique<MsiView>(ground_, file_, std::move(view)));
  }
  Status Commit() override { return file_.Tell(inner_->Commit()); }
  Status Export(const std::string& table, const std::string& folder, const std::string& file) override {
    const PathPair target(*ground_, folder);
    return target.Tell(inner_->Export(table, target.host, file));
  }
  Status Import(const std::string& folder, const std::string& file) override {
    const PathPair source(*ground_, folder);
    return source.Tell(inner_->Import(source.host, file));
  }
  Result<std::unique_ptr<SummaryInfo>> SummaryInformation(int updates) override {
    KW_ASSIGN_OR_RETURN(std::unique_ptr<msi::SummaryInfo> info,
                        file_.Tell(inner_->SummaryInformation(updates)));
    return std::unique_ptr<SummaryInfo>(std::make_unique<MsiSummaryInfo>(ground_, file_, std::move(info)));
  }

 private:
  Ground ground_;
  PathPair file_;
  std::shared_ptr<msi::Database> inner_;
};

class MsiSession : public Session {
 public:
  MsiSession(std::unique_ptr<msi::Session> inner, std::shared_ptr<bool> present)
      : inner_(std::move(inner)), present_(std::move(present)) {
    *present_ = true;
  }
  ~MsiSession() override { *present_ = false; }

  bool Mode(int mode) const override { return inner_->Mode(mode); }
  std::string Property(std::string_view name) const override { return inner_->Property(name); }
  Status SetProperty(std::string_view name, std::string_view value) override {
    inner_->SetProperty(name, value);
    return {};
  }
  int DoAction(std::string_view action) override { return inner_->DoAction(action); }

 private:
  std::unique_ptr<msi::Session> inner_;
  std::shared_ptr<bool> present_;
};

class MsiInstaller : public Installer {
 public:
  explicit MsiInstaller(InstallerGround ground)
      : ground_(std::make_shared<const InstallerGround>(std::move(ground))) {}

  std::shared_ptr<Record> CreateRecord(int field_count) override {
    return std::make_shared<MsiRecord>(ground_, msi::Record(field_count), std::vector<PathPair>());
  }

  Result<std::shared_ptr<Database>> OpenDatabase(const std::string& path, OpenMode mode) override {
    PathPair file(*ground_, path);
    auto database = msi::Database::Open(ground_->storage, file.host, static_cast<msi::OpenMode>(mode));
    if (!database.ok()) return file.Tell(database.status()).error();
    return std::shared_ptr<Database>(
        std::make_shared<MsiDatabase>(ground_, std::move(file), std::move(*database)));
  }

  Result<std::unique_ptr<Session>> OpenPackage(const std::shared_ptr<Database>& database) override {
    const auto* ours = dynamic_cast<const MsiDatabase*>(database.get());
    if (ours == nullptr) return ForeignObject();
    if (*session_present_) {
      return Error{kErrorFunctionFailed, "Another installation session is open already."};
    }
    KW_ASSIGN_OR_RETURN(std::unique_ptr<msi::Session> session,
                        ours->File().Tell(msi::Session::Open(ours->Inner())));
    return std::unique_ptr<Session>(std::make_unique<MsiSession>(std::move(session), session_present_));
  }

  // Sessions of this engine never show anything.
  void SetUiLevel(int) override {}

  std::vector<std::string> RelatedProducts(const std::string& upgrade_code) override {
    return ground_->products.RelatedProducts(upgrade_code);
  }
  int FeatureState(const std::string& product_code, const std::string& feature) override {
    return ground_->products.FeatureState(product_code, feature);
  }
  int64_t FileSize(const std::string& path) override {
    const auto entry = ground_->files.GetFile(path);
    return entry.ok() ? entry->size : -1;
  }

 private:
  Ground ground_;
  std::shared_ptr<bool> session_present_ = std::make_shared<bool>(false);
};

}  // namespace

std::unique_ptr<Installer> MakeMsiInstaller(InstallerGround ground) {
  return std::make_unique<MsiInstaller>(std::move(ground));
}

}  // namespace kw::platform
