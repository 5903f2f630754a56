#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

#include "base/errno_number_linux.h"
#include "base/machine_paths.h"
#include "base/text.h"
#include "base/uninterrupted_linux.h"

namespace kw {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

// An errno that says more than that there is nothing.
bool IsRefusal(int error) { return error != 0 && error != ENOENT && error != ENOTDIR; }

bool Exists(const std::string& path, int& error) {
  struct stat info {};
  error = Uninterrupted([&] { return lstat(path.c_str(), &info); }) == 0 ? 0 : errno;
  return error == 0;
}

// The name in `folder` that equals `name` but for case; "" when there is none, or none that could be found
// for the error.
std::string FindNoCase(const std::string& folder, const std::string& name, int& error) {
  std::unique_ptr<DIR, CloseFolder> open;
  for (int tries = 0; open == nullptr && tries < 100; ++tries) {
    open.reset(opendir(folder.empty() ? "/" : folder.c_str()));
    error = open == nullptr ? errno : 0;
    if (error != EINTR) break;
  }
  std::string best;
  while (open != nullptr) {
    errno = 0;
    const dirent* const entry = readdir(open.get());
    if (entry == nullptr) {
      error = errno;
      break;
    }
    const std::string_view found = entry->d_name;
    if (EqualsNoCase(found, name) && (best.empty() || found < best)) best = found;
  }
  return best;
}

std::string FolderOfDrive(const std::string& root, char letter) {
  const char lower = static_cast<char>(letter | 0x20);
  return lower == 'z' ? std::string() : root + "/drive_" + lower;
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string DefaultRoot() {
  const std::string data = Environment("XDG_DATA_HOME");
  return (data.empty() ? Environment("HOME") + "/.local/share" : data) + "/kitwright";
}

}  // namespace

MachinePaths MachinePaths::OfThisProcess() {
  std::string root = Environment("KITWRIGHT_ROOT");
  if (root.empty()) root = DefaultRoot();
  std::string current = Environment("KITWRIGHT_CWD");
  if (current.empty()) {
    char buffer[PATH_MAX];
    const char* folder = getcwd(buffer, sizeof buffer);
    current = MachinePaths(root, "Z:\\").WindowsPath(folder == nullptr ? "/" : folder);
  }
  return {std::move(root), std::move(current)};
}

std::string MachinePaths::HostPath(std::string_view path) const {
  int refusal = 0;
  return HostPath(path, refusal);
}

std::string MachinePaths::HostPath(std::string_view path, int& refusal) const {
  refusal = 0;
  const std::string full = FullPath(path);
  const bool unc = full.starts_with("\\\\");
  std::string host = unc ? root_ + "/unc" : FolderOfDrive(root_, full[0]);
  bool exists = true;
  for (const std::string& part : Split(std::string_view(full).substr(2), '\\')) {
    if (part.empty()) continue;
    std::string next = host + "/" + part;
    int error = 0;
    if (exists && !Exists(next, error) && !IsRefusal(error)) {
      const std::string other = FindNoCase(host, part, error);
      exists = !other.empty();
      if (exists) next = host + "/" + other;
    }
    if (refusal == 0 && IsRefusal(error)) refusal = ErrorNumberOfErrno(error);
    host = std::move(next);
  }
  return host.empty() ? "/" : host;
}

std::string MachinePaths::WindowsPath(std::string_view host_path) const {
  const std::string drives = root_ + "/drive_";
  std::string drive = "Z:";
  std::string_view rest = host_path;
  if (rest.starts_with(drives) && rest.size() > drives.size() &&
      (rest.size() == drives.size() + 1 || rest[drives.size() + 1] == '/')) {
    drive[0] = ToUpper(rest.substr(drives.size(), 1))[0];
    rest.remove_prefix(drives.size() + 1);
  }
  return FullPath(drive + "\\" + std::string(rest));
}

}  // namespace kw
