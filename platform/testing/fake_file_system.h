#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_FILE_SYSTEM_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_FILE_SYSTEM_H_

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/machine_paths.h"
#include "base/storage.h"
#include "base/text.h"
#include "platform/file_system.h"

namespace kw::platform::testing {

/// What can be ordered to fail.
enum class FileOperation {
  kGetFile,
  kList,
  kCopyFile,  ///< ordered by its source or its target
  kDeleteFile,
  kDeleteFolder,
  kCreateFolder,
  kSetReadOnly,
  kOpen,
  kHandleRead,   ///< reads of an open file, by its path
  kHandleWrite,  ///< changes of an open file, by its path; those of a database among them
  kReadFile,
  kWriteFile,
  kSetCurrentFolder,
};

/// A file or a folder of a FakeFileSystem.
struct FakeNode {
  std::string name;
  bool is_folder = false;
  bool read_only = false;
  bool write_protected = false;  ///< a folder in which nothing can be made or deleted
  std::string bytes;
  std::map<std::string, std::shared_ptr<FakeNode>, LessNoCase> children;
  int readers = 0;
  bool held_exclusively = false;
  int databases = 0;                        ///< opened through FakeFileSystem::HostFiles
  std::set<std::string, LessNoCase> links;  ///< those of the children that are other nodes' by a link
};

/// Files and folders in memory, with the whole contract of FileSystem and failures to order. Begins with an
/// empty drive C:, whose root is the current folder.
class FakeFileSystem : public FileSystem {
 public:
  FakeFileSystem();
  ~FakeFileSystem() override;

  // What a test sets up. Folders on the way are made; other drives and shares too.
  void AddFolder(const std::string& path);
  void AddFile(const std::string& path, std::string_view bytes, bool read_only = false);
  /// A link to a file or folder that is there.
  void AddLink(const std::string& path, const std::string& target);
  /// Makes a folder one in which nothing can be made or deleted.
  void ProtectFolder(const std::string& path, bool protect = true);
  /// The `nth` call (from 1, counted from now) of `operation` on `path` fails with `number` and does nothing.
  /// An empty path stands for any.
  void FailNth(FileOperation operation, const std::string& path, int nth, int number);
  void FailNext(FileOperation operation, const std::string& path, int number) {
    FailNth(operation, path, 1, number);
  }
  /// Every call from now on fails.
  void FailAlways(FileOperation operation, const std::string& path, int number) {
    FailNth(operation, path, 0, number);
  }

  // What a test looks at.
  /// `path` with drive and folder, by the present current folder.
  std::string FullPath(const std::string& path) const { return paths_.FullPath(path); }
  /// A file's bytes; "(no such file)" when there is none.
  std::string Content(const std::string& path) const;
  bool IsReadOnly(const std::string& path) const;
  /// Paths of all files below a folder, relative to it, in listing order; folders that are empty end in "\".
  std::vector<std::string> Tree(const std::string& folder) const;
  /// A line for each change: "copy FROM -> TO", "delete P", "delete-folder P", "create-folder P", "write P",
  /// "read-only P", "writable P", "current P".
  std::vector<std::string> log;

  /// The same files for whatever reads host files (the package engine): host paths are the Windows paths. A
  /// file that is open there cannot be deleted here, but copied.
  Storage& HostFiles() { return *host_files_; }

  bool FileExists(const std::string& path) override;
  bool FolderExists(const std::string& path) override;
  Result<FileEntry> GetFile(const std::string& path) override;
  bool IsLink(const std::string& path) override;
  bool IsSameFolder(const std::string& one, const std::string& two) override;
  Result<std::vector<FileEntry>> List(const std::string& folder) override;
  Status CopyFile(const std::string& from, const std::string& to, bool overwrite) override;
  Status DeleteFile(const std::string& path, bool force) override;
  Status DeleteFolder(const std::string& path, bool force) override;
  Status CreateFolder(const std::string& path) override;
  Status SetReadOnly(const std::string& path, bool read_only) override;
  Result<std::unique_ptr<FileHandle>> Open(const std::string& path, OpenHow how) override;
  Result<std::string> ReadFile(const std::string& path) override;
  Status WriteFile(const std::string& path, std::string_view bytes) override;
  std::string CurrentFolder() override;
  Status SetCurrentFolder(const std::string& path) override;

 private:
  friend class FakeFileHandle;
  friend class FakeHostFiles;
  struct Place {
    std::string full;                  ///< the path with drive and folder
    std::shared_ptr<FakeNode> parent;  ///< null when a folder on the way is missing, and for a root
    std::string name;
    std::shared_ptr<FakeNode> node;  ///< null when there is none
  };
  Place Find(const std::string& path) const;
  std::shared_ptr<FakeNode> MakeFolders(const std::string& full);
  static int MissingNumber(const Place& place);
  /// The place itself; one with nothing in it in the place of a link to a file, which is to be replaced.
  Place FindTarget(const std::string& path) const;
  static bool IsLinkAt(const Place& place);
  static void Erase(const Place& place);
  /// 0, or the number that was ordered for this call.
  int Ordered(FileOperation operation, const std::string& path);
  int WriteNumber(const Place& place) const;
  Status DeleteTree(const Place& place, bool force);
  static FileEntry EntryOf(const FakeNode& node);

  struct Order {
    FileOperation operation;
    std::string full;
    int calls_left;  ///< 0: every call
    int number;
    bool done;
  };
  MachinePaths paths_{"", "C:\\"};
  FakeNode roots_;
  std::vector<Order> orders_;
  std::unique_ptr<Storage> host_files_;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_FILE_SYSTEM_H_
