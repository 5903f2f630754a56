#include "pages/frm_additional_files.h"

#include <set>
#include <utility>

#include "base/path.h"
#include "base/text.h"
#include "package/file_rules.h"
#include "pages/cabinet_rebuild.h"
#include "pages/frm_additional_file.h"

namespace kw {
namespace {

constexpr const char* kOwnKeyPrefix = "_id_";

}  // namespace

frmAdditionalFiles::frmAdditionalFiles(PageContext& context)
    : GridPage(context, kName, "Additional Files",
               "Specify additional files to include in the installation package.", 1023),
      db_(InstallerDb::Working(context.services, context.run)) {}

void frmAdditionalFiles::LoadPage() {
  Grid.SetColumns({"", "Source File", "Destination Folder", "Subfolders", "", ""}, {0, 5, 3, 3, 0, 0});
  AdjustControls();
}

void frmAdditionalFiles::ReadConfig() {
  EnsureLoaded();
  EmptyGrid();
  Check(ReadFiles());
  AdjustControls();
}

Status frmAdditionalFiles::ReadFiles() {
  KW_ASSIGN_OR_RETURN(const auto media,
                      db_.QueryAll("select `LastSequence` from `Media` order by `LastSequence`"));
  LastSequence = media.empty() ? 0 : media.back()->IntegerData(1);
  KW_ASSIGN_OR_RETURN(const auto files, db_.QueryAll("select `File`, `Component_`, `FileName` from `File`"));
  for (const auto& file : files) {
    const std::string key = file->StringData(1);
    if (key.starts_with(kOwnKeyPrefix)) KW_RETURN_IF_ERROR(ReadFile(key, file->StringData(2)));
  }
  return {};
}

Status frmAdditionalFiles::ReadFile(const std::string& key, const std::string& component) {
  const std::string path = JoinPath(run_.CabDataFolder, key);
  if (!services_.files->FileExists(path)) return DeleteFileRows(key);
  KW_ASSIGN_OR_RETURN(
      const auto directory,
      db_.QuerySql("select `Directory_` from `Component` where `Component` = ?", {component}));
  KW_ASSIGN_OR_RETURN(const Place place, FindPlace(directory ? directory->StringData(1) : std::string()));
  const int row = Grid.Rows() - 1;
  const size_t underscore = key.find('_', 4);
  Grid.SetCell(row, kSourceFile,
               kInPackage + (underscore == std::string::npos ? std::string() : key.substr(underscore + 1)));
  Grid.SetCell(row, kDestinationFolder, place.destination);
  Grid.SetCell(row, kSubfolders, place.subfolders);
  Grid.SetCell(row, kKey, key);
  Grid.SetCell(row, kRealFile, path);
  AddBlankRow(Grid);
  return {};
}

Result<frmAdditionalFiles::Place> frmAdditionalFiles::FindPlace(std::string directory) {
  frmAdditionalFile& dialog = navigator_.Get<frmAdditionalFile>();
  Place place;
  std::set<std::string> seen;  // a damaged package may send the walk in a circle
  while (seen.insert(directory).second) {
    KW_ASSIGN_OR_RETURN(
        const auto record,
        db_.QuerySql(
            "select `Directory`, `Directory_Parent`, `DefaultDir` from `Directory` where `Directory` = ?",
            {directory}));
    if (!record) return place;
    const std::string key = record->StringData(1);
    const std::string parent = record->StringData(2);
    const std::string default_dir = record->StringData(3);
    if (key == "INSTALLDIR") {
      place.destination = "Product Install";
      return place;
    }
    if (parent == "TARGETDIR") {
      if (default_dir != ".") {
        place.destination = dialog.GetDestinationFolderExternalName(key);
        return place;
      }
      KW_ASSIGN_OR_RETURN(const auto drive,
                          db_.QuerySql("select `Value` from `Property` where `Property` = ?", {key}));
      if (drive) place.destination = drive->StringData(1);
      if (place.destination.ends_with('\\')) place.destination.pop_back();
      return place;
    }
    if (!default_dir.empty()) {
      place.subfolders = place.subfolders.empty() ? default_dir : default_dir + "\\" + place.subfolders;
    }
    place.destination = dialog.GetDestinationFolderExternalName(parent);
    if (!place.destination.empty()) return place;
    directory = parent;
  }
  return place;
}

Status frmAdditionalFiles::DeleteFileRows(const std::string& key) {
  KW_RETURN_IF_ERROR(db_.RunSql("delete from `File` where `File` = ?", {key}));
  KW_RETURN_IF_ERROR(db_.RunSql("delete from `Component` where `Component` = ?", {key}));
  return db_.RunSql("delete from `FeatureComponents` where `Component_` = ?", {key});
}

void frmAdditionalFiles::OnNew() {
  Grid.SelectRow(Grid.Rows() - 1);
  frmAdditionalFile& dialog = navigator_.Get<frmAdditionalFile>();
  dialog.FileKey = UnusedFileKey();
  dialog.AddingNew = true;
  dialog.InPackage = false;
  dialog.SourceFile.EnableWithColor(true);
  dialog.Browse.SetEnabled(true);
  dialog.ShowModal();
}

// The package may hold files of an earlier run at this time of day.
std::string frmAdditionalFiles::UnusedFileKey() {
  while (true) {
    std::string key = MakeUniqueId(services_, run_);
    bool taken = false;
    for (int row = 1; row < Grid.Rows(); ++row) taken |= Grid.Cell(row, kKey).starts_with(key + "_");
    if (!taken) return key;
  }
}

void frmAdditionalFiles::OnEdit() {
  const int row = Grid.SelectedRow();
  frmAdditionalFile& dialog = navigator_.Get<frmAdditionalFile>();
  dialog.EnsureLoaded();
  dialog.InPackage = Grid.Cell(row, kSourceFile).starts_with(kInPackage);
  dialog.SourceFile.EnableWithColor(!dialog.InPackage);
  dialog.Browse.SetEnabled(!dialog.InPackage);
  dialog.SourceFile.SetText(Grid.Cell(row, kSourceFile));
  dialog.DestinationFolder.Select(dialog.GetDestinationFolderIndex(Grid.Cell(row, kDestinationFolder)));
  dialog.SubFolders.SetText(Grid.Cell(row, kSubfolders));
  dialog.FileKey = Grid.Cell(row, kKey);
  dialog.AddingNew = false;
  dialog.ShowModal();
}

void frmAdditionalFiles::OnDelete() {
  const int row = Grid.SelectedRow();
  if (Grid.Cell(row, kRealFile).empty()) return;
  const bool wanted = ConfirmDelete("  Source File: " + Grid.Cell(row, kSourceFile) +
                                    "\n  Destination Folder: " + Grid.Cell(row, kDestinationFolder) +
                                    "\n  Subfolders: " + Grid.Cell(row, kSubfolders));
  if (!wanted || !Check(DeleteFileRows(Grid.Cell(row, kKey)))) return;
  RemoveSelectedRow();
  AdjustControls();
}

bool frmAdditionalFiles::CreateCabFile() {
  return Check(PrepareFiles()) && RebuildCabinet(context_, run_.CabDataFolder + "\\");
}

Status frmAdditionalFiles::PrepareFiles() {
  KW_RETURN_IF_ERROR(db_.RunSql("alter table `File` add `_id_path` char temporary hold"));
  KW_RETURN_IF_ERROR(FillPaths());
  std::map<std::string, int> replaced;
  for (int row = 1; row <= Grid.Rows() - 2; ++row) KW_RETURN_IF_ERROR(PlaceFile(row, replaced));
  return {};
}

Status frmAdditionalFiles::FillPaths() {
  KW_ASSIGN_OR_RETURN(const auto files,
                      db_.QueryAll("select `File`.`File`, `Component`.`Directory_` from `File`, `Component` "
                                   "where `Component`.`Component` = `File`.`Component_`"));
  std::map<std::string, std::string> known;
  for (const auto& file : files) {
    const auto [path, is_new] = known.try_emplace(file->StringData(2));
    if (is_new) {
      KW_ASSIGN_OR_RETURN(path->second, GetFullPath(path->first));
    }
    KW_RETURN_IF_ERROR(
        db_.RunSql("update `File` set `_id_path` = ? where `File` = ?", {path->second, file->StringData(1)}));
  }
  return {};
}

Status frmAdditionalFiles::PlaceFile(int row, std::map<std::string, int>& replaced) {
  const std::string& key = Grid.Cell(row, kKey);
  KW_ASSIGN_OR_RETURN(
      const auto own,
      db_.QuerySql("select `FileName`, `_id_path` from `File` where `File`.`File` = ?", {key}));
  if (!own) {
    if (const auto other = replaced.find(key); other != replaced.end()) {
      return {kErrorFileExists, "The additional files \"" + Grid.Cell(other->second, kSourceFile) +
                                    "\" and \"" + Grid.Cell(row, kSourceFile) +
                                    "\" have the same name and the same destination."};
    }
    return {kErrorFileNotFound, "The package has no file with the key \"" + key + "\"."};
  }
  KW_ASSIGN_OR_RETURN(
      const auto rival,
      db_.QuerySql("select `File` from `File` where `FileName` = ? and `_id_path` = ? and `File` <> ?",
                   {own->StringData(1), own->StringData(2), key}));
  if (rival) {
    KW_RETURN_IF_ERROR(db_.RunSql("delete from `File` where `File` = ?", {rival->StringData(1)}));
    replaced[rival->StringData(1)] = row;
  }
  return services_.files->CopyFile(Grid.Cell(row, kRealFile), JoinPath(run_.CabDataFolder, key), true);
}

Result<std::string> frmAdditionalFiles::GetFullPath(const std::string& directory_key) {
  std::string path;
  std::string key = directory_key;
  std::set<std::string> seen;
  while (seen.insert(key).second) {
    KW_ASSIGN_OR_RETURN(
        const auto record,
        db_.QuerySql("select `Directory_Parent`, `DefaultDir` from `Directory` where `Directory` = ?",
                     {key}));
    if (!record) break;
    std::string name = record->StringData(2);
    if (const size_t bar = name.find('|'); bar != std::string::npos) name.erase(0, bar + 1);
    path = "\\" + name + path;
    key = record->StringData(1);
  }
  return ToLower(path);
}

void frmAdditionalFiles::AddChoices(ui::ListBox& list) {
  for (int row = 1; row <= Grid.Rows() - 1; ++row) {
    if (!Grid.Cell(row, kRealFile).empty()) {
      list.Add("\tSource file: " + Grid.Cell(row, kRealFile));
      list.Add("\tDestination folder: " + Grid.Cell(row, kDestinationFolder));
      if (!Grid.Cell(row, kSubfolders).empty()) {
        list.Add("\tDestination subfolder: " + Grid.Cell(row, kSubfolders));
      }
    } else if (row == 1) {
      list.Add("\tNone");
    }
  }
  list.Add("");
}

}  // namespace kw
