#include "pages/cabinet_rebuild.h"

#include <memory>
#include <utility>
#include <vector>

#include "base/text.h"
#include "package/file_rules.h"

namespace kw {
namespace {

using platform::ModifyMode;
using platform::Record;
using platform::View;

constexpr int kFileAttributesNoncompressed = 8192;
constexpr const char* kMediaQuery = "SELECT DiskId, LastSequence, Cabinet FROM Media ORDER BY DiskId";
constexpr int kLastPrinted = 11;
constexpr int kLastSaved = 13;
constexpr int kWordCount = 15;
constexpr int kSummaryUpdates = 3;

class Rebuild {
 public:
  explicit Rebuild(PageContext& context)
      : context_(context), run_(context.run), database_(*context.run.WorkingDatabase) {}

  /// True with a cabinet embedded, False when the maker left none.
  Result<bool> Run(const std::string& source_folder) {
    KW_RETURN_IF_ERROR(ClearOldCabinet());
    KW_RETURN_IF_ERROR(OpenSession(source_folder));
    KW_RETURN_IF_ERROR(FindFirstSequence());
    KW_RETURN_IF_ERROR(WriteDirectives());
    RunAndWait(context_.services, run_, context_.host,
               context_.services.system->ProgramFolder() + "\\MakeCab.exe /f " + run_.TempFolder +
                   "\\Cab1.DDF /l " + run_.TempFolder,
               platform::WindowStyle::kHidden);
    if (!context_.services.files->FileExists(Cabinet())) return false;
    KW_RETURN_IF_ERROR(StoreCabinet());
    return true;
  }

 private:
  std::string Cabinet() const { return run_.TempFolder + "\\Cab1.CAB"; }

  Result<std::unique_ptr<View>> Execute(const char* sql) {
    KW_ASSIGN_OR_RETURN(auto view, database_.OpenView(sql));
    KW_RETURN_IF_ERROR(view->Execute(nullptr));
    return view;
  }

  // One row of Media stays, and every file belongs to it.
  Status ClearOldCabinet() {
    KW_ASSIGN_OR_RETURN(auto media, Execute(kMediaQuery));
    KW_ASSIGN_OR_RETURN(auto record, media->Fetch());
    if (record) {
      if (!record->IsNull(3)) KW_RETURN_IF_ERROR(record->SetStringData(3, ""));
      KW_RETURN_IF_ERROR(record->SetIntegerData(2, 9999));
      KW_RETURN_IF_ERROR(media->Modify(ModifyMode::kUpdate, *record));
      KW_RETURN_IF_ERROR(DeleteRest(*media));
    }
    media->Close();

    KW_ASSIGN_OR_RETURN(auto summary, database_.SummaryInformation(kSummaryUpdates));
    KW_RETURN_IF_ERROR(SetDates(*summary));
    KW_RETURN_IF_ERROR(summary->SetIntegerProperty(kWordCount, summary->IntegerProperty(kWordCount) & -3));
    KW_RETURN_IF_ERROR(summary->Persist());

    KW_ASSIGN_OR_RETURN(auto cabinets, Execute("SELECT `Name`,`Data` FROM `Cabs`"));
    KW_RETURN_IF_ERROR(DeleteRest(*cabinets));
    cabinets->Close();
    return database_.Commit();
  }

  static Status DeleteRest(View& view) {
    while (true) {
      KW_ASSIGN_OR_RETURN(auto record, view.Fetch());
      if (!record) return {};
      KW_RETURN_IF_ERROR(view.Modify(ModifyMode::kDelete, *record));
    }
  }

  static Status SetDates(platform::SummaryInfo& summary) {
    KW_RETURN_IF_ERROR(summary.SetTimePropertyToNow(kLastPrinted));
    return summary.SetTimePropertyToNow(kLastSaved);
  }

  Status OpenSession(const std::string& source_folder) {
    run_.Installer->SetUiLevel(2);
    KW_ASSIGN_OR_RETURN(session_, run_.Installer->OpenPackage(run_.WorkingDatabase));
    short_names_ = session_->Mode(9);
    if (!source_folder.empty()) KW_RETURN_IF_ERROR(session_->SetProperty("OriginalDatabase", source_folder));
    const int result = session_->DoAction("CostInitialize");
    if (result != 1) {
      context_.services.dialogs->CriticalMessage("CostInitialize failed, returned " + std::to_string(result));
    }
    return {};
  }

  // The cabinet's files are numbered above those that stay outside it.
  Status FindFirstSequence() {
    KW_ASSIGN_OR_RETURN(auto files, Execute("SELECT Sequence,Attributes FROM File"));
    while (true) {
      KW_ASSIGN_OR_RETURN(auto record, files->Fetch());
      if (!record) break;
      if ((record->IntegerData(2) & kFileAttributesNoncompressed) != 0 &&
          record->IntegerData(1) > last_sequence_) {
        last_sequence_ = record->IntegerData(1);
      }
    }
    files->Close();
    return {};
  }

  Status WriteDirectives() {
    const platform::LocalTime now = context_.services.system->Now();
    const auto two = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    std::vector<std::string> lines = {
        "; Generated from " + run_.WorkingMsiPath + " on " + std::to_string(now.year) + "-" + two(now.month) +
            "-" + two(now.day) + " " + two(now.hour) + ":" + two(now.minute) + ":" + two(now.second),
        ".Set CabinetNameTemplate=Cab1*.CAB",
        ".Set CabinetName1=Cab1.CAB",
        ".Set ReservePerCabinetSize=8",
        ".Set MaxDiskSize=CDROM",
        ".Set CompressionType=MSZIP",
        ".Set InfFileLineFormat=(*disk#*) *file#*: *file* = *Size*",
        ".Set InfFileName=" + run_.TempFolder + "\\Cab1.INF",
        ".Set RptFileName=" + run_.TempFolder + "\\Cab1.RPT",
        ".Set InfHeader=",
        ".Set InfFooter=",
        ".Set DiskDirectoryTemplate=" + run_.TempFolder,
        ".Set Compress=ON",
        ".Set Cabinet=ON",
    };
    KW_RETURN_IF_ERROR(ListFiles(lines));
    std::string text;
    for (const std::string& line : lines) text.append(line).append("\r\n");
    KW_ASSIGN_OR_RETURN(const std::string bytes, Utf8ToCodePage(text, context_.services.system->CodePage()));
    return context_.services.files->WriteFile(run_.TempFolder + "\\Cab1.DDF", bytes);
  }

  Status ListFiles(std::vector<std::string>& lines) {
    KW_ASSIGN_OR_RETURN(auto files, Execute("SELECT File,FileName,Directory_,Sequence,File.Attributes FROM "
                                            "File,Component WHERE Component_=Component ORDER BY Directory_"));
    while (true) {
      KW_ASSIGN_OR_RETURN(auto record, files->Fetch());
      if (!record) break;
      if ((record->IntegerData(5) & kFileAttributesNoncompressed) != 0) continue;
      if (record->IntegerData(4) <= last_sequence_) {
        KW_RETURN_IF_ERROR(record->SetIntegerData(4, last_sequence_ + 1));
        KW_RETURN_IF_ERROR(files->Modify(ModifyMode::kUpdate, *record));
      }
      last_sequence_ = record->IntegerData(4);
      // The file bears the key, not its name. A row without its file has taken a number and is passed over.
      const std::string key = record->StringData(1);
      const std::string path = run_.TempFolder + "\\CabData\\" + key;
      KW_ASSIGN_OR_RETURN(const bool there, FileIsThere(context_.services, path));
      if (there) lines.push_back("\"" + path + "\" \"" + key + "\"");
    }
    files->Close();
    return {};
  }

  Status StoreCabinet() {
    KW_ASSIGN_OR_RETURN(auto media, Execute(kMediaQuery));
    KW_ASSIGN_OR_RETURN(auto medium, media->Fetch());
    const ModifyMode mode = medium ? ModifyMode::kUpdate : ModifyMode::kInsert;
    if (!medium) {
      medium = run_.Installer->CreateRecord(3);
      KW_RETURN_IF_ERROR(medium->SetIntegerData(1, 1));
    }
    KW_RETURN_IF_ERROR(medium->SetIntegerData(2, last_sequence_));
    KW_RETURN_IF_ERROR(medium->SetStringData(3, "#Cabs.Cab1.CAB"));
    KW_RETURN_IF_ERROR(media->Modify(mode, *medium));
    media->Close();

    KW_ASSIGN_OR_RETURN(auto summary, database_.SummaryInformation(kSummaryUpdates));
    KW_RETURN_IF_ERROR(SetDates(*summary));
    KW_RETURN_IF_ERROR(summary->SetIntegerProperty(kWordCount, (short_names_ ? 1 : 0) + 2));
    KW_RETURN_IF_ERROR(summary->Persist());

    KW_ASSIGN_OR_RETURN(auto cabinets, Execute("SELECT `Name`,`Data` FROM Cabs"));
    const auto cabinet = run_.Installer->CreateRecord(2);
    KW_RETURN_IF_ERROR(cabinet->SetStringData(1, "Cab1.CAB"));
    KW_RETURN_IF_ERROR(cabinet->SetStream(2, Cabinet()));
    KW_RETURN_IF_ERROR(cabinets->Modify(ModifyMode::kAssign, *cabinet));
    cabinets->Close();
    return database_.Commit();
  }

  PageContext& context_;
  RunState& run_;
  platform::Database& database_;
  std::unique_ptr<platform::Session> session_;
  bool short_names_ = false;
  int last_sequence_ = 0;
};

}  // namespace

bool RebuildCabinet(PageContext& context, const std::string& source_folder) {
  const Result<bool> result = Rebuild(context).Run(source_folder);
  return CheckOrReport(context.services, result.status()) && *result;
}

}  // namespace kw
