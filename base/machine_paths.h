#ifndef KITWRIGHT_BASE_MACHINE_PATHS_H_
#define KITWRIGHT_BASE_MACHINE_PATHS_H_

#include <string>
#include <string_view>

namespace kw {

/// Where Windows paths lie on the host.
///
/// On Linux a machine is a folder: drive "C:" is the folder `drive_c` below it, "D:" `drive_d` and so on, and
/// "Z:" is the root of the host. "\\server\share" is `unc/server/share`. Names are found without regard to
/// case, beyond ASCII too. On Windows a path is its own host path, and only relative forms are made full.
///
/// Text is UTF-8. The object holds no handle and may be copied and used from several threads.
class MachinePaths {
 public:
  /// `root` is the machine's folder on the host, `current` the current drive and folder ("C:\Temp").
  MachinePaths(std::string root, std::string current);

  /// The machine and current folder of this process. On Linux the root is the environment variable
  /// KITWRIGHT_ROOT (else `kitwright` below the user's data folder), and the current folder is KITWRIGHT_CWD,
  /// else the host's current folder in its Windows form. On Windows the root is empty and the folder the
  /// system's.
  static MachinePaths OfThisProcess();

  const std::string& root() const { return root_; }
  const std::string& current() const { return current_; }

  /// `path` with drive and folder and without "." and ".." parts: "x", "\x" and "C:x" go by the current drive
  /// and folder ("D:x" while another drive is current means the root of D:). "/" counts as "\". No "\" at the
  /// end except for a root ("C:\"). Looks at no file.
  std::string FullPath(std::string_view path) const;

  /// The host path of a Windows path in any form. Each part that exists is spelled as it is on the host: the
  /// exact spelling first, else the first in byte order of those that differ by case alone. Parts that do not
  /// exist keep the given spelling, so that a file made by the result has the name that was asked for.
  std::string HostPath(std::string_view path) const;
  /// The same; `refusal` becomes 0, or the number of the error for which it could not be told how a part is
  /// spelled, so that the result may be no file although there is one.
  std::string HostPath(std::string_view path, int& refusal) const;

  /// The Windows form of an absolute host path: on "C:" (or another drive) when it lies in that drive's
  /// folder, else on "Z:".
  std::string WindowsPath(std::string_view host_path) const;

 private:
  std::string root_;
  std::string current_;
};

}  // namespace kw

#endif  // KITWRIGHT_BASE_MACHINE_PATHS_H_
