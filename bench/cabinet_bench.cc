// Packs and unpacks two corpora beside gcab and cabextract and prints the ratios. Every figure comes from one
// run: the programs take turns, and the best of their turns counts.
//
// cabinet_bench [MEGABYTES] [--largest] [--folder FOLDER]
//
// MEGABYTES is the size of the libraries' corpus, 240 by default; the text has half of it. With --largest
// also the largest file that a cabinet holds goes in and out, for the sake of the memory it takes. FOLDER is
// where the files are written, a memory file system by default where there is one: on a disk thousands of
// small files measure the disk.

#include <sys/resource.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/storage.h"
#include "base/text.h"
#include "cabinet/cabinet_reader.h"
#include "cabinet/cabinet_writer.h"
#include "cabinet/folder_sink.h"

namespace {

namespace fs = std::filesystem;
using kw::cabinet::CabinetFile;

constexpr int kTurns = 3;

struct Corpus {
  const char* name;
  std::vector<std::string> files;
  uint64_t size = 0;
};

Corpus Collect(const char* name, const std::vector<const char*>& folders,
               const std::vector<const char*>& endings, uint64_t most) {
  std::vector<std::string> found;
  for (const char* folder : folders) {
    std::error_code error;
    fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
      const std::string path = it->path().string();
      const bool fits = std::any_of(endings.begin(), endings.end(),
                                    [&](const char* e) { return path.find(e) != std::string::npos; });
      if (fits && it->is_regular_file(error) && !it->is_symlink(error) && it->file_size(error) > 0) {
        found.push_back(path);
      }
    }
  }
  std::sort(found.begin(), found.end());
  Corpus corpus{name, {}, 0};
  std::set<std::string, kw::LessNoCase> names;  // those that differ in case alone would not unpack on Windows
  for (const std::string& path : found) {
    const uint64_t size = fs::file_size(path);
    if (!names.insert(path).second) continue;
    if (corpus.size + size > most || corpus.files.size() == kw::cabinet::kMaxEntries) continue;
    corpus.files.push_back(path);
    corpus.size += size;
  }
  return corpus;
}

// Seconds of one turn, by the clock and of processor time.
struct Took {
  double wall = 1e9;
  double cpu = 1e9;
  void KeepBest(const Took& other) {
    wall = std::min(wall, other.wall);
    cpu = std::min(cpu, other.cpu);
  }
};

double ProcessorTime() {
  double seconds = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage{};
    getrusage(who, &usage);
    for (const timeval& time : {usage.ru_utime, usage.ru_stime}) {
      seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    }
  }
  return seconds;
}

Took Measured(const auto& work) {
  const double cpu = ProcessorTime();
  const auto start = std::chrono::steady_clock::now();
  work();
  return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
          ProcessorTime() - cpu};
}

void Check(const kw::Status& status) {
  if (status.ok()) return;
  std::fprintf(stderr, "%s\n", status.message().c_str());
  std::exit(1);
}

Took RunProgram(std::vector<std::string> words) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  int status = 0;
  std::fflush(stdout);
  const Took took = Measured([&] {
    const pid_t child = fork();
    if (child == 0) {
      if (std::freopen("/dev/null", "w", stdout) == nullptr ||
          std::freopen("/dev/null", "w", stderr) == nullptr) {
        _exit(126);
      }
      execvp(argv[0], argv.data());
      _exit(127);
    }
    waitpid(child, &status, 0);
  });
  if (status != 0) {
    std::fprintf(stderr, "%s failed (%d)\n", words[0].c_str(), status);
    std::exit(1);
  }
  return took;
}

std::vector<CabinetFile> FilesOf(const Corpus& corpus) {
  std::vector<CabinetFile> files;
  for (const std::string& path : corpus.files) {
    files.push_back({path, kw::ReplaceAll(path.substr(1), "/", "\\"), std::nullopt});
  }
  return files;
}

void Unpack(const std::string& cabinet, const std::string& folder) {
  auto reader = kw::cabinet::CabinetReader::Open(kw::SystemStorage(), cabinet, 1252);
  Check(reader.status());
  kw::cabinet::FolderSink sink(kw::SystemStorage(), folder, kw::cabinet::FolderSink::Making::kTogether);
  Check(reader->Extract(sink));
}

void Measure(const Corpus& corpus, const fs::path& work) {
  const std::string ours = (work / "ours.cab").string();
  const std::string theirs = (work / "theirs.cab").string();
  const fs::path out = work / "out";
  std::vector<std::string> gcab = {"gcab", "-c", "-z", theirs};
  gcab.insert(gcab.end(), corpus.files.begin(), corpus.files.end());
  const std::vector<CabinetFile> files = FilesOf(corpus);

  // A folder of its own for each turn, removed at the end: some file systems are slow to make files just
  // after many were removed.
  int folders = 0;
  const auto into_empty_folder = [&](const auto& unpack) {
    const fs::path folder = out / std::to_string(++folders);
    fs::create_directories(folder);
    return unpack(folder.string());
  };
  Took write_ours, write_theirs, read_ours[2], read_theirs[2];
  for (int turn = 0; turn < kTurns; ++turn) {
    write_ours.KeepBest(
        Measured([&] { Check(WriteCabinet(kw::SystemStorage(), ours, files, {}).status()); }));
    write_theirs.KeepBest(RunProgram(gcab));
    for (const int i : {0, 1}) {
      const std::string& cabinet = i == 0 ? ours : theirs;
      read_ours[i].KeepBest(into_empty_folder(
          [&](const std::string& folder) { return Measured([&] { Unpack(cabinet, folder); }); }));
      read_theirs[i].KeepBest(into_empty_folder([&](const std::string& folder) {
        return RunProgram({"cabextract", "-q", "-d", folder, cabinet});
      }));
    }
  }
  const double mega = static_cast<double>(corpus.size) / 1e6;
  const auto size_ours = static_cast<double>(fs::file_size(ours));
  const auto size_theirs = static_cast<double>(fs::file_size(theirs));
  const auto print = [mega](const char* what, const char* peer, const Took& mine, const Took& other) {
    std::printf("  %-26s %7.1f MB/s, %s %6.1f MB/s: ratio %5.2f  (processor time %.2f s and %.2f s)\n", what,
                mega / mine.wall, peer, mega / other.wall, other.wall / mine.wall, mine.cpu, other.cpu);
  };
  std::printf("%s: %zu files, %.0f MB\n", corpus.name, corpus.files.size(), mega);
  print("write", "gcab", write_ours, write_theirs);
  std::printf("  %-26s %.0f bytes, gcab %.0f bytes: ratio %.4f\n", "size", size_ours, size_theirs,
              size_ours / size_theirs);
  print("read what was made by us", "cabextract", read_ours[0], read_theirs[0]);
  print("read what was made by gcab", "cabextract", read_ours[1], read_theirs[1]);
  fs::remove_all(out);
}

// Takes all bytes and keeps none.
class CountingSink : public kw::cabinet::EntrySink {
 public:
  kw::Status Begin(const kw::cabinet::CabinetEntry&) override { return {}; }
  kw::Status Write(std::span<const std::byte> data) override {
    bytes += data.size();
    return {};
  }
  kw::Status End(const kw::cabinet::CabinetEntry&, const kw::Status& outcome) override { return outcome; }

  uint64_t bytes = 0;
};

void PackTheLargest(const fs::path& work) {
  const std::string file = (work / "largest").string();
  const std::string cabinet = (work / "largest.cab").string();
  {
    auto made = kw::SystemStorage().Open(file, kw::Storage::Mode::kCreateAlways);
    Check(made.status());
    Check((*made)->Truncate(kw::cabinet::kMaxFolderSize));
  }
  Check(kw::cabinet::WriteCabinet(kw::SystemStorage(), cabinet, {{file, "largest", std::nullopt}}, {})
            .status());
  auto reader = kw::cabinet::CabinetReader::Open(kw::SystemStorage(), cabinet, 1252);
  Check(reader.status());
  CountingSink sink;
  Check(reader->Extract(sink));
  std::printf("a file of %llu bytes packed and unpacked\n", static_cast<unsigned long long>(sink.bytes));
}

}  // namespace

int main(int argc, char** argv) {
  uint64_t megabytes = 240;
  bool largest = false;
  fs::path folder = fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--largest") {
      largest = true;
    } else if (std::string_view(argv[i]) == "--folder" && i + 1 < argc) {
      folder = argv[++i];
    } else {
      megabytes = std::strtoull(argv[i], nullptr, 10);
    }
  }
  const uint64_t most = megabytes * 1000000;
  const fs::path work = folder / "kw_cabinet_bench";
  fs::remove_all(work);
  fs::create_directories(work);
  utsname system{};
  uname(&system);
  std::printf("%s %s %s, %u processors; best of %d turns, in %s\n", system.sysname, system.release,
              system.machine, std::thread::hardware_concurrency(), kTurns, work.c_str());
  std::fflush(stdout);
  Measure(Collect("libraries", {"/usr/lib"}, {".so"}, most), work);
  Measure(Collect("text", {"/usr/share/doc", "/usr/include", "/usr/share/perl", "/usr/lib/python3"},
                  {".h", ".txt", ".py", ".html", ".pm", "copyright"}, most / 2),
          work);
  if (largest) PackTheLargest(work);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::printf("peak memory of this process: %.1f MiB\n", static_cast<double>(usage.ru_maxrss) / 1024.0);
  fs::remove_all(work);
  return 0;
}