#include "cabinet/host_file.h"

#include <filesystem>

#include "base/text.h"

namespace kw::cabinet {
namespace {

namespace fs = std::filesystem;

constexpr int kMostTries = 1000;  // of a call that a signal interrupts

fs::path PathOf(const std::string& utf8) { return {std::u8string(utf8.begin(), utf8.end())}; }

}  // namespace

Result<FolderNames> NamesInHostFolder(const std::string& path) {
  std::error_code error;
  FolderNames names;
  fs::directory_iterator it;
  for (int tries = 0; tries < kMostTries; ++tries) {
    it = fs::directory_iterator(PathOf(path), error);
    if (error != std::errc::interrupted) break;
  }
  for (; !error && it != fs::directory_iterator(); it.increment(error)) {
    const std::u8string bytes = it->path().filename().u8string();
    const std::string name(bytes.begin(), bytes.end());
    names.emplace(ToUpper(name), name);
  }
  if (error) return {kErrorPathNotFound, "Could not read the folder " + path + ": " + error.message() + "."};
  return names;
}

Status MakeHostFolder(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(PathOf(path), error);
  if (status.type() == fs::file_type::directory) return {};
  if (status.type() != fs::file_type::not_found) {
    return {kErrorAccessDenied, "The folder " + path + " is a file or a link."};
  }
  if (!fs::create_directory(PathOf(path), error)) {
    return {kErrorAccessDenied, "Could not make the folder " + path + ": " + error.message() + "."};
  }
  return {};
}

}  // namespace kw::cabinet
