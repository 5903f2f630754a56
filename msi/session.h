#ifndef KITWRIGHT_MSI_SESSION_H_
#define KITWRIGHT_MSI_SESSION_H_

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "base/result.h"
#include "msi/database.h"

namespace kw::msi {

/// An installation session on a database, as far as source paths need one. It reads the database when it is
/// made and never writes to it.
class Session {
 public:
  /// The run mode that says that the source uses short file names.
  static constexpr int kShortNames = 9;
  /// Results of DoAction.
  static constexpr int kNotImplemented = 0;
  static constexpr int kSuccess = 1;
  static constexpr int kFailure = 3;

  /// Fails when the database has no readable tables to make a session of.
  static Result<std::unique_ptr<Session>> Open(std::shared_ptr<Database> database);

  /// A run mode: kShortNames by bit 0 of the summary information's word count; all others are off.
  bool Mode(int mode) const { return mode == kShortNames && short_names_; }
  /// A property; "" when there is none.
  std::string Property(std::string_view name) const;
  void SetProperty(std::string_view name, std::string_view value);
  /// Runs a standard action. "CostInitialize" resolves the directories: kFailure when a directory's parent is
  /// missing or is its own descendant, or when there is no table `Directory`. Other actions are
  /// kNotImplemented.
  int DoAction(std::string_view action);
  /// The source path of a directory, relative to the package, after CostInitialize; "" when unknown.
  std::string SourcePath(std::string_view directory) const;

 private:
  explicit Session(std::shared_ptr<Database> database) : database_(std::move(database)) {}
  Status LoadProperties();
  Status ResolveDirectories();

  std::shared_ptr<Database> database_;
  bool short_names_ = false;
  std::map<std::string, std::string, std::less<>> properties_;
  std::map<std::string, std::string, std::less<>> source_paths_;
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_SESSION_H_
