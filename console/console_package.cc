#include "console/console_package.h"

#include <memory>
#include <string>

#include "console/package_catalog.h"
#include "package/file_rules.h"
#include "payloads/frm_beaconry_server.h"

namespace kw {
namespace {

constexpr const char* kSetupCommand = "setup /Q";
constexpr const char* kBulwarkPlugIn = "BULWARK80.OVP";

std::string DetectionScript(bool level_700) { return level_700 ? "KT700Det.TxS" : "KT710Det.TxS"; }

CatalogRequest ProductRequest(const RunState& run) {
  return {DetectionScript(run.PackageIs700),          "SETUP.EXE",           ", /q",
          run.PackageIs700 ? "KTE\\700" : "KTE\\710", run.DestinationFolder, run.PackageLocale};
}

// Catalogue, then descriptor: the descriptor's own file joins the list behind the catalogue.
void WriteProductFiles(PageContext& context, FileListPtr& files) {
  const CatalogRequest request = ProductRequest(context.run);
  WritePackageCatalog(context, request, files);
  WriteInstallDescriptor(context, files, request.template_folder, request.output_folder, kSetupCommand,
                         context.run.PackageLocale);
}

std::string BulwarkPlugIn(PageContext& context) {
  return context.services.system->ProgramFolder() + "\\BWK\\" + kBulwarkPlugIn;
}

}  // namespace

void CreateConsolePackage(PageContext& context) {
  RunState& run = context.run;
  auto combined = std::make_unique<FileList>();
  AddPrefixedFileNames(run.DestinationFileList, combined, "");
  if (run.BeaconryFileList) {
    WritePackageCatalog(context,
                        {"BC470Det.TxS", "", "", "BCN", run.DestinationFolder + "\\BCN", run.BeaconryLocale},
                        run.BeaconryFileList);
    AddPrefixedFileNames(run.BeaconryFileList, combined, "BCN\\");
  }
  if (run.BulwarkIncluded) {
    const std::string folder = run.DestinationFolder + "\\BWK";
    if (!run.BulwarkFileList) run.BulwarkFileList = std::make_unique<FileList>();
    run.BulwarkFileList->names.push_back("Bulwark.EXE");
    AddPrefixedFileNames(run.BulwarkFileList, combined, "BWK\\");
    WritePackageCatalog(context, {"BulwarkDet.TxS", "Bulwark.EXE", "", "BWK", folder, run.BulwarkLocale},
                        run.BulwarkFileList);
    WriteInstallDescriptor(context, run.BulwarkFileList, "BWK", folder, "Bulwark.EXE", run.BulwarkLocale);
    CopyFileToFolder(context.services, BulwarkPlugIn(context), folder, run.BulwarkFileList);
  }
  WriteProductFiles(context, combined);
}

void CreateOptimizedConsolePackage(PageContext& context) {
  RunState& run = context.run;
  platform::FileSystem& files = *context.services.files;
  WriteProductFiles(context, run.DestinationFileList);
  const std::string beaconry_plug_in = run.BeaconrySourceFolder + "\\BCN470.OVP";
  // A plug-in that cannot be copied is passed over like every fault of these writers.
  if (context.navigator.Get<frmBeaconryServer>().InstallBeaconry.Checked() &&
      files.FileExists(beaconry_plug_in)) {
    CopyOver(context.services, beaconry_plug_in, run.DestinationFolder + "\\BCN470.OVP").IgnoreError();
  }
  if (run.BulwarkIncluded) {
    CopyOver(context.services, BulwarkPlugIn(context), run.DestinationFolder + "\\" + kBulwarkPlugIn)
        .IgnoreError();
  }
}

void CreateSettingsConsolePackage(PageContext& context) {
  RunState& run = context.run;
  WritePackageCatalog(context,
                      {DetectionScript(run.ProductIs700), "ZEDInstall.txs", "",
                       run.ProductIs700 ? "ZED\\700" : "ZED\\710", run.DestinationFolder, run.ProductLocale},
                      run.DestinationFileList);
}

}  // namespace kw
