#ifndef KITWRIGHT_PAGES_FRM_PROGRAMS_H_
#define KITWRIGHT_PAGES_FRM_PROGRAMS_H_

#include <memory>
#include <string>
#include <vector>

#include "package/installer_db.h"
#include "pages/grid_page.h"

namespace kw {

/// The programs that the package carries inside itself and runs near the end of installation. The grid is the
/// page's store; the database is written when the page is left forwards.
class frmPrograms : public GridPage {
 public:
  static constexpr const char* kName = "frmPrograms";
  /// The grid's columns behind the fixed one.
  enum GridColumn { kPathname = 1, kArguments = 2, kRealFile = 3 };

  explicit frmPrograms(PageContext& context);

  /// Fills the grid from the working database; relies on a freshly loaded page.
  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;

 protected:
  void LoadPage() override;
  void LeavePage(const std::string& name) override;
  void OnBack() override;
  void OnNew() override;
  void OnEdit() override;
  void OnDelete() override;

 private:
  Status ReadPrograms();
  bool Extract(const std::string& name, const std::string& folder, const std::string& file);
  bool AllFilesExist();
  /// A program of the grid, ready to be written.
  struct Program {
    int row = 0;
    std::string binary;
    std::string action;
    std::shared_ptr<platform::Record> stream;
    std::unique_ptr<platform::View> insert_binary;
  };
  Result<std::vector<Program>> PreparePrograms();
  Status Prepare(Program& program, const std::string& path);
  Status TryRows(int row, const std::string& file);
  Status DeleteOldRows();
  Status WriteProgram(const Program& program, int finalize_sequence);
  bool HasFile(int row) const;

  InstallerDb db_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_PROGRAMS_H_
