#include "platform/shared/patient_services.h"

#include <utility>

namespace kw::platform {

namespace {

class PatientFile : public FileHandle {
 public:
  PatientFile(std::unique_ptr<FileHandle> inner, Patience& patience)
      : inner_(std::move(inner)), patience_(patience) {}
  Result<std::string> Read(size_t length) override {
    return patience_.Run([&] { return inner_->Read(length); });
  }
  Status Write(std::string_view bytes) override {
    return patience_.Run([&] { return inner_->Write(bytes); });
  }
  Status Flush() override {
    return patience_.Run([&] { return inner_->Flush(); });
  }

 private:
  std::unique_ptr<FileHandle> inner_;
  Patience& patience_;
};

class PatientFileSystem : public FileSystem {
 public:
  PatientFileSystem(FileSystem& inner, Patience& patience) : inner_(inner), patience_(patience) {}

  bool FileExists(const std::string& path) override { return inner_.FileExists(path); }
  bool FolderExists(const std::string& path) override { return inner_.FolderExists(path); }
  Result<FileEntry> GetFile(const std::string& path) override { return inner_.GetFile(path); }
  bool IsLink(const std::string& path) override { return inner_.IsLink(path); }
  bool IsSameFolder(const std::string& one, const std::string& two) override {
    return inner_.IsSameFolder(one, two);
  }
  Result<std::vector<FileEntry>> List(const std::string& folder) override { return inner_.List(folder); }
  Status CopyFile(const std::string& from, const std::string& to, bool overwrite) override {
    return patience_.Run([&] { return inner_.CopyFile(from, to, overwrite); });
  }
  Status DeleteFile(const std::string& path, bool force) override {
    return patience_.Run([&] { return inner_.DeleteFile(path, force); });
  }
  Status DeleteFolder(const std::string& path, bool force) override {
    return patience_.Run([&] { return inner_.DeleteFolder(path, force); });
  }
  Status CreateFolder(const std::string& path) override { return inner_.CreateFolder(path); }
  Status SetReadOnly(const std::string& path, bool read_only) override {
    return inner_.SetReadOnly(path, read_only);
  }
  Result<std::unique_ptr<FileHandle>> Open(const std::string& path, OpenHow how) override {
    KW_ASSIGN_OR_RETURN(auto file, inner_.Open(path, how));
    return std::unique_ptr<FileHandle>(std::make_unique<PatientFile>(std::move(file), patience_));
  }
  Result<std::string> ReadFile(const std::string& path) override {
    return patience_.Run([&] { return inner_.ReadFile(path); });
  }
  Status WriteFile(const std::string& path, std::string_view bytes) override {
    return patience_.Run([&] { return inner_.WriteFile(path, bytes); });
  }
  std::string CurrentFolder() override { return inner_.CurrentFolder(); }
  Status SetCurrentFolder(const std::string& path) override { return inner_.SetCurrentFolder(path); }

 private:
  FileSystem& inner_;
  Patience& patience_;
};

/// A row that was read, whose streams may be long.
class PatientRecord : public Record {
 public:
  PatientRecord(std::shared_ptr<Record> inner, Patience& patience)
      : inner_(std::move(inner)), patience_(patience) {}
  /// The row that views know: theirs, or that of one of these.
  static Record& Of(Record& record) {
    auto* patient = dynamic_cast<PatientRecord*>(&record);
    return patient ? *patient->inner_ : record;
  }
  static const Record* Of(const Record* record) {
    const auto* patient = dynamic_cast<const PatientRecord*>(record);
    return patient ? patient->inner_.get() : record;
  }

  int FieldCount() const override { return inner_->FieldCount(); }
  bool IsNull(int field) const override { return inner_->IsNull(field); }
  std::string StringData(int field) const override { return inner_->StringData(field); }
  Status SetStringData(int field, std::string_view value) override {
    return inner_->SetStringData(field, value);
  }
  int32_t IntegerData(int field) const override { return inner_->IntegerData(field); }
  Status SetIntegerData(int field, int32_t value) override { return inner_->SetIntegerData(field, value); }
  Status SetStream(int field, const std::string& path) override {
    return patience_.Run([&] { return inner_->SetStream(field, path); });
  }
  Result<std::string> ReadStream(int field, int length) override {
    return patience_.Run([&] { return inner_->ReadStream(field, length); });
  }
  void ClearData() override { inner_->ClearData(); }

 private:
  std::shared_ptr<Record> inner_;
  Patience& patience_;
};

class PatientView : public View {
 public:
  PatientView(std::unique_ptr<View> inner, Patience& patience)
      : inner_(std::move(inner)), patience_(patience) {}
  Status Execute(const Record* parameters) override {
    return patience_.Run([&] { return inner_->Execute(PatientRecord::Of(parameters)); });
  }
  Result<std::shared_ptr<Record>> Fetch() override {
    KW_ASSIGN_OR_RETURN(auto record, patience_.Run([&] { return inner_->Fetch(); }));
    if (!record) return std::shared_ptr<Record>();
    return std::shared_ptr<Record>(std::make_shared<PatientRecord>(std::move(record), patience_));
  }
  Status Modify(ModifyMode mode, Record& record) override {
    return patience_.Run([&] { return inner_->Modify(mode, PatientRecord::Of(record)); });
  }
  void Close() override { inner_->Close(); }

 private:
  std::unique_ptr<View> inner_;
  Patience& patience_;
};

class PatientDatabase : public Database {
 public:
  PatientDatabase(std::shared_ptr<Database> inner, Patience& patience)
      : inner_(std::move(inner)), patience_(patience) {}
  const std::shared_ptr<Database>& Inner() const { return inner_; }

  Result<std::unique_ptr<View>> OpenView(std::string_view sql) override {
    KW_ASSIGN_OR_RETURN(auto view, inner_->OpenView(sql));
    return std::unique_ptr<View>(std::make_unique<PatientView>(std::move(view), patience_));
  }
  Status Commit() override {
    return patience_.Run([&] { return inner_->Commit(); });
  }
  Status Export(const std::string& table, const std::string& folder, const std::string& file) override {
    return patience_.Run([&] { return inner_->Export(table, folder, file); });
  }
  Status Import(const std::string& folder, const std::string& file) override {
    return patience_.Run([&] { return inner_->Import(folder, file); });
  }
  Result<std::unique_ptr<SummaryInfo>> SummaryInformation(int updates) override {
    return inner_->SummaryInformation(updates);
  }

 private:
  std::shared_ptr<Database> inner_;
  Patience& patience_;
};

class PatientInstaller : public Installer {
 public:
  PatientInstaller(std::unique_ptr<Installer> inner, Patience& patience)
      : inner_(std::move(inner)), patience_(patience) {}

  std::shared_ptr<Record> CreateRecord(int field_count) override { return inner_->CreateRecord(field_count); }
  Result<std::shared_ptr<Database>> OpenDatabase(const std::string& path, OpenMode mode) override {
    auto opened = patience_.Run([&] { return inner_->OpenDatabase(path, mode); });
    if (!opened.ok()) return opened.error();
    return std::shared_ptr<Database>(std::make_shared<PatientDatabase>(std::move(*opened), patience_));
  }
  Result<std::unique_ptr<Session>> OpenPackage(const std::shared_ptr<Database>& database) override {
    // Sessions know their own kind of database only.
    const auto patient = std::dynamic_pointer_cast<PatientDatabase>(database);
    return patience_.Run([&] { return inner_->OpenPackage(patient ? patient->Inner() : database); });
  }
  void SetUiLevel(int level) override { inner_->SetUiLevel(level); }
  std::vector<std::string> RelatedProducts(const std::string& upgrade_code) override {
    return inner_->RelatedProducts(upgrade_code);
  }
  int FeatureState(const std::string& product_code, const std::string& feature) override {
    return inner_->FeatureState(product_code, feature);
  }
  int64_t FileSize(const std::string& path) override { return inner_->FileSize(path); }

 private:
  std::unique_ptr<Installer> inner_;
  Patience& patience_;
};

}  // namespace

PatientServices::PatientServices(const Services& inner, std::function<void()> meanwhile)
    : services_(inner),
      patience_(std::move(meanwhile)),
      files_(std::make_unique<PatientFileSystem>(*inner.files, patience_)) {
  services_.files = files_.get();
  services_.create_installer = [this,
                                create = inner.create_installer]() -> Result<std::unique_ptr<Installer>> {
    KW_ASSIGN_OR_RETURN(auto installer, create());
    return std::unique_ptr<Installer>(std::make_unique<PatientInstaller>(std::move(installer), patience_));
  };
}

PatientServices::~PatientServices() = default;

}  // namespace kw::platform
