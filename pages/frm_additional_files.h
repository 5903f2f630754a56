#ifndef KITWRIGHT_PAGES_FRM_ADDITIONAL_FILES_H_
#define KITWRIGHT_PAGES_FRM_ADDITIONAL_FILES_H_

#include <map>
#include <string>

#include "package/installer_db.h"
#include "pages/grid_page.h"

namespace kw {

/// Extra files that the package installs. A file's rows are written when its dialog ends; the bytes go into
/// the cabinet at the build.
class frmAdditionalFiles : public GridPage {
 public:
  static constexpr const char* kName = "frmAdditionalFiles";
  /// The grid's columns behind the fixed one.
  enum GridColumn { kSourceFile = 1, kDestinationFolder = 2, kSubfolders = 3, kKey = 4, kRealFile = 5 };

  explicit frmAdditionalFiles(PageContext& context);

  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  /// Puts the files where the cabinet maker finds them, lets them replace the product's own files of the same
  /// name and place, and rebuilds the cabinets. True on success.
  bool CreateCabFile();
  /// Deletes the rows of one added file from File, Component and FeatureComponents.
  Status DeleteFileRows(const std::string& key);

  /// The highest Sequence used.
  int LastSequence = 0;

 protected:
  void LoadPage() override;
  void OnNew() override;
  void OnEdit() override;
  void OnDelete() override;

 private:
  /// Where an added file goes, in the dialog's words.
  struct Place {
    std::string destination;
    std::string subfolders;
  };

  std::string UnusedFileKey();
  Status ReadFiles();
  Status ReadFile(const std::string& key, const std::string& component);
  Result<Place> FindPlace(std::string directory);
  Status PrepareFiles();
  Status FillPaths();
  /// `replaced` tells of each file that an earlier row took the place of, which row that was.
  Status PlaceFile(int row, std::map<std::string, int>& replaced);
  /// The lower-cased target folder of a directory.
  Result<std::string> GetFullPath(const std::string& directory_key);

  InstallerDb db_;
};

}  // namespace kw

#endif  // KITWRIGHT_PAGES_FRM_ADDITIONAL_FILES_H_
