// The database engine beside the common free library, in one run: changes by key, a join of two tables,
// opening a large package, and one changed property beside a 500 MB stream.
//
//   database_bench [GREATEST_ROWS_FOR_THE_PEER] [MEGABYTES_OF_THE_LARGE_STREAM]
//
// The peer's times grow with the square of the rows; it is left out beyond the first number (8000 by
// default).

#include <libmsi-1.0/libmsi.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/storage.h"
#include "msi/database.h"

namespace {

using kw::Result;
using kw::Status;
using kw::msi::Database;
using kw::msi::OpenMode;
using kw::msi::Record;

template <typename T>
T Get(Result<T> result) {
  if (!result.ok()) throw std::runtime_error(result.error().message);
  return *std::move(result);
}

void Check(const Status& status) {
  if (!status.ok()) throw std::runtime_error(status.message());
}

// Processor time of this thread, for work that waits for nothing: what else the machine does disturbs it
// least.
double ProcessorSeconds(const std::function<void()>& work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  };
  const double start = now();
  work();
  return now() - start;
}

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Host files whose written bytes are counted.
class CountingStorage : public kw::Storage {
 public:
  class File : public kw::StorageFile {
   public:
    File(CountingStorage& owner, std::unique_ptr<kw::StorageFile> inner)
        : owner_(owner), inner_(std::move(inner)) {}
    Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
      return inner_->ReadAt(offset, buffer);
    }
    Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
      owner_.written += data.size();
      return inner_->WriteAt(offset, data);
    }
    Result<uint64_t> Size() override { return inner_->Size(); }
    Status Truncate(uint64_t size) override { return inner_->Truncate(size); }
    Status Sync() override { return inner_->Sync(); }

   private:
    CountingStorage& owner_;
    std::unique_ptr<kw::StorageFile> inner_;
  };
  Result<std::unique_ptr<kw::StorageFile>> Open(const std::string& path, Mode mode) override {
    KW_ASSIGN_OR_RETURN(auto file, kw::SystemStorage().Open(path, mode));
    return std::unique_ptr<kw::StorageFile>(std::make_unique<File>(*this, std::move(file)));
  }
  Status Rename(const std::string& from, const std::string& to) override {
    return kw::SystemStorage().Rename(from, to);
  }
  Status Remove(const std::string& path) override { return kw::SystemStorage().Remove(path); }
  bool Exists(const std::string& path) override { return kw::SystemStorage().Exists(path); }
  Status CreateFolder(const std::string& path) override { return kw::SystemStorage().CreateFolder(path); }

  uint64_t written = 0;
};

std::string Key(int i) { return "file_key_number_" + std::to_string(i); }

void MakeRows(const std::string& path, int rows) {
  const auto database = Get(Database::Open(kw::SystemStorage(), path, OpenMode::kCreate));
  for (const char* sql :
       {"CREATE TABLE `File` (`File` CHAR(72) NOT NULL, `Component_` CHAR(72) NOT NULL, `FileName` CHAR(255) "
        "NOT NULL, `FileSize` LONG NOT NULL, `Sequence` LONG NOT NULL PRIMARY KEY `File`)",
        "CREATE TABLE `Component` (`Component` CHAR(72) NOT NULL, `Directory_` CHAR(72) NOT NULL PRIMARY "
        "KEY `Component`)"}) {
    Check(Get(database->OpenView(sql))->Execute(nullptr));
  }
  const auto files =
      Get(database->OpenView("INSERT INTO `File` (`File`, `Component_`, `FileName`, `FileSize`, `Sequence`) "
                             "VALUES (?, ?, ?, ?, ?)"));
  const auto components =
      Get(database->OpenView("INSERT INTO `Component` (`Component`, `Directory_`) VALUES (?, ?)"));
  for (int i = 0; i < rows; ++i) {
    Record file(5);
    Check(file.SetString(1, Key(i)));
    Check(file.SetString(2, "component_" + std::to_string(i)));
    Check(file.SetString(3, "NAME" + std::to_string(i) + ".DLL"));
    Check(file.SetInteger(4, i * 10));
    Check(file.SetInteger(5, i + 1));
    Check(files->Execute(&file));
    Record component(2);
    Check(component.SetString(1, "component_" + std::to_string(i)));
    Check(component.SetString(2, "directory_" + std::to_string(i % 100)));
    Check(components->Execute(&component));
  }
  Check(database->Commit());
}

constexpr const char* kUpdate = "update `File` set `FileName` = ? where `File` = ?";
constexpr const char* kJoin =
    "select `File`.`File`, `Component`.`Directory_` from `File`, `Component` where `Component`.`Component` = "
    "`File`.`Component_`";

double OurUpdates(const std::string& path, int rows) {
  const auto database = Get(Database::Open(kw::SystemStorage(), path, OpenMode::kTransact));
  return ProcessorSeconds([&] {
    for (int i = 0; i < rows; ++i) {
      // As the wizard does it: a view for each statement.
      const auto view = Get(database->OpenView(kUpdate));
      Record record(2);
      Check(record.SetString(1, "name" + std::to_string(i) + ".dll"));
      Check(record.SetString(2, Key(i)));
      Check(view->Execute(&record));
    }
  });
}

double OurJoin(const std::string& path, int rows) {
  const auto database = Get(Database::Open(kw::SystemStorage(), path, OpenMode::kReadOnly));
  return ProcessorSeconds([&] {
    const auto view = Get(database->OpenView(kJoin));
    Check(view->Execute(nullptr));
    int count = 0;
    while (const auto record = Get(view->Fetch())) count += record->IsNull(2) ? 0 : 1;
    if (count != rows) throw std::runtime_error("the join gives " + std::to_string(count) + " rows");
  });
}

double PeerUpdates(const std::string& path, int rows) {
  LibmsiDatabase* database = libmsi_database_new(path.c_str(), LIBMSI_DB_FLAGS_TRANSACT, nullptr, nullptr);
  if (!database) throw std::runtime_error("the peer does not open " + path);
  const double seconds = ProcessorSeconds([&] {
    for (int i = 0; i < rows; ++i) {
      LibmsiQuery* query = libmsi_query_new(database, kUpdate, nullptr);
      LibmsiRecord* record = libmsi_record_new(2);
      libmsi_record_set_string(record, 1, ("name" + std::to_string(i) + ".dll").c_str());
      libmsi_record_set_string(record, 2, Key(i).c_str());
      if (!query || !libmsi_query_execute(query, record, nullptr))
        throw std::runtime_error("the peer's update failed");
      g_object_unref(record);
      g_object_unref(query);
    }
  });
  g_object_unref(database);
  return seconds;
}

double PeerJoin(const std::string& path, int rows) {
  LibmsiDatabase* database = libmsi_database_new(path.c_str(), LIBMSI_DB_FLAGS_READONLY, nullptr, nullptr);
  if (!database) throw std::runtime_error("the peer does not open " + path);
  const double seconds = ProcessorSeconds([&] {
    LibmsiQuery* query = libmsi_query_new(database, kJoin, nullptr);
    int count = 0;
    if (!query || !libmsi_query_execute(query, nullptr, nullptr))
      throw std::runtime_error("the peer's join failed");
    while (LibmsiRecord* record = libmsi_query_fetch(query, nullptr)) {
      ++count;
      g_object_unref(record);
    }
    g_object_unref(query);
    if (count != rows) throw std::runtime_error("the peer's join gives " + std::to_string(count) + " rows");
  });
  g_object_unref(database);
  return seconds;
}

void CompareWithPeer(const std::string& folder, int peer_rows) {
  std::printf("\n%8s %14s %8s %12s %8s %14s %8s %12s %8s\n", "rows", "update ours s", "growth", "peer s",
              "ratio", "join ours s", "growth", "peer s", "ratio");
  double last_update = 0;
  double last_join = 0;
  for (int rows = 1000; rows <= 128000; rows *= 2) {
    const std::string path = folder + "/rows.msi";
    MakeRows(path, rows);
    double update = OurUpdates(path, rows);
    double join = OurJoin(path, rows);
    for (int again = 0; again < 9; ++again) {
      update = std::min(update, OurUpdates(path, rows));
      join = std::min(join, OurJoin(path, rows));
    }
    std::printf("%8d %14.5f %8.2f ", rows, update, last_update > 0 ? update / last_update : 0.0);
    std::string peer_join = "           -        -";
    if (rows <= peer_rows) {
      const double peer_update = PeerUpdates(path, rows);
      const double seconds = PeerJoin(path, rows);
      std::printf("%12.3f %8.0f ", peer_update, peer_update / update);
      char text[64];
      std::snprintf(text, sizeof text, "%12.3f %8.0f", seconds, seconds / join);
      peer_join = text;
    } else {
      std::printf("%12s %8s ", "-", "-");
    }
    std::printf("%14.5f %8.2f %s\n", join, last_join > 0 ? join / last_join : 0.0, peer_join.c_str());
    last_update = update;
    last_join = join;
  }
}

void OpenLarge(const std::string& folder) {
  const std::string path = folder + "/large.msi";
  MakeRows(path, 100000);
  double read = 1e9;
  double open = 1e9;
  size_t size = 0;
  for (int i = 0; i < 5; ++i) {
    read = std::min(
        read, ProcessorSeconds([&] { size = Get(kw::ReadWholeFile(kw::SystemStorage(), path)).size(); }));
    open = std::min(
        open, ProcessorSeconds([&] { Get(Database::Open(kw::SystemStorage(), path, OpenMode::kReadOnly)); }));
  }
  std::printf("\nopening 100000 + 100000 rows (%zu bytes): %.2f ms; reading the bytes: %.2f ms; ratio %.2f\n",
              size, open * 1e3, read * 1e3, open / read);
}

void ChangeBesideLarge(const std::string& folder, uint64_t megabytes) {
  const std::string path = folder + "/stream.msi";
  const std::string source = folder + "/stream.bin";
  for (const uint64_t part : {megabytes / 10, megabytes}) {
    const uint64_t bytes = part << 20;
    {
      const auto file = Get(kw::SystemStorage().Open(source, kw::Storage::Mode::kCreateAlways));
      Check(file->Truncate(bytes));
    }
    MakeRows(path, 1000);
    CountingStorage storage;
    const auto database = Get(Database::Open(storage, path, OpenMode::kTransact));
    Check(Get(database->OpenView(
                  "CREATE TABLE `Cabs` (`Name` CHAR(72) NOT NULL, `Data` OBJECT PRIMARY KEY `Name`)"))
              ->Execute(nullptr));
    Record record(1);
    Check(record.SetStream(1, storage, source));
    const auto insert = Get(database->OpenView("INSERT INTO `Cabs` (`Data`, `Name`) VALUES (?, 'Cab1.CAB')"));
    const double store = Seconds([&] {
      Check(insert->Execute(&record));
      Check(database->Commit());
    });
    storage.written = 0;
    const double change = Seconds([&] {
      Check(Get(database->OpenView("update `File` set `FileName` = 'x' where `File` = '" + Key(5) + "'"))
                ->Execute(nullptr));
      Check(database->Commit());
    });
    std::printf(
        "stream of %llu MB: stored in %.2f s; one cell changed and committed in %.1f ms, %llu bytes written "
        "(%.4f %%)\n",
        static_cast<unsigned long long>(part), store, change * 1e3,
        static_cast<unsigned long long>(storage.written),
        100.0 * static_cast<double>(storage.written) / static_cast<double>(bytes));
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int peer_rows = argc > 1 ? std::atoi(argv[1]) : 8000;
  const uint64_t megabytes = argc > 2 ? static_cast<uint64_t>(std::atoll(argv[2])) : 500;
  utsname system{};
  uname(&system);
  std::printf("%s %s %s, %ld processors\n", system.sysname, system.release, system.machine,
              sysconf(_SC_NPROCESSORS_ONLN));
  char folder[] = "/tmp/database_bench.XXXXXX";
  if (!mkdtemp(folder)) return 1;
  int code = 0;
  try {
    CompareWithPeer(folder, peer_rows);
    OpenLarge(folder);
    ChangeBesideLarge(folder, megabytes);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "database_bench: %s\n", error.what());
    code = 1;
  }
  for (const char* name : {"rows.msi", "large.msi", "stream.msi", "stream.bin"}) {
    kw::SystemStorage().Remove(std::string(folder) + "/" + name).IgnoreError();  // one that was never made
  }
  rmdir(folder);
  return code;
}
