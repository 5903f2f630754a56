#include "sample/package/description.h"

#include <cstdio>

namespace kw::sample {
namespace {

std::string Numbered(const char* format, int number) {
  char text[64];
  std::snprintf(text, sizeof(text), format, number);
  return text;
}

std::vector<Feature> Features() {
  // Siblings are told apart by their Display. The feature below "Documentation" that bears the title
  // "Required" cannot be chosen, and stands apart from the scanners so that they can be switched as a group.
  return {{"Core", "", "Required", 1, 1},
          {"Console", "", "Console", 3, 1},
          {"OnAccessScanner", "Console", "On-Access Scanner", 5, 1},
          {"ScriptScan", "OnAccessScanner", "Script Scanning", 7, 1},
          {"ScriptHosts", "ScriptScan", "Script Host Support", 9, 100},
          {"OnDemandScanner", "Console", "On-Demand Scanner", 11, 1},
          {"ShellExtensions", "OnDemandScanner", "Shell Extensions", 13, 1},
          {"EmailScan", "Console", "E-Mail Scan", 15, 1},
          {"AutoUpdate", "Console", "AutoUpdate", 17, 1},
          {"MirrorTasks", "AutoUpdate", "Mirror Tasks", 19, 100},
          {"AlertClient", "", "Beaconry Client", 21, 1},
          {"AlertForwarding", "AlertClient", "Alert Forwarding", 23, 200},
          {"Documentation", "", "Documentation", 25, 1},
          {"HelpCore", "Documentation", "Required", 27, 1},
          {"HelpFiles", "Documentation", "Help Files", 29, 1},
          {"Samples", "Documentation", "Samples", 31, 200},
          {"Diagnostics", "", "Diagnostic Tools", 33, 0},
          {"LegacySupport", "", "Legacy Support", 0, 1}};
}

std::vector<Folder> Folders() {
  const std::string install = kInstallPath;
  return {{"TARGETDIR", "", "SourceDir", ""},
          {"ProgramFilesFolder", "TARGETDIR", "Program Files", ""},
          {"ProgramFiles64Folder", "TARGETDIR", "PROGRA~2|Program Files 64", ""},
          {"CommonFilesFolder", "TARGETDIR", "Common Files", ""},
          {"DesktopFolder", "TARGETDIR", "Desktop", ""},
          {"WindowsFolder", "TARGETDIR", "Windows", "C:\\Windows"},
          {"SystemFolder", "TARGETDIR", "System", ""},
          {"StartupFolder", "TARGETDIR", "Startup", ""},
          {"StartMenuFolder", "TARGETDIR", "STARTM~1|Start Menu", ""},
          {"ProgramMenuFolder", "TARGETDIR", "PROGRA~1|Program Menu", ""},
          {"SendToFolder", "TARGETDIR", "SendTo", ""},
          {"FavoritesFolder", "TARGETDIR", "FAVORI~1|Favorites", ""},
          {"FontsFolder", "TARGETDIR", "Fonts", ""},
          {"PersonalFolder", "TARGETDIR", "Personal", ""},
          {"TempFolder", "TARGETDIR", "Temp", ""},
          {"ORVANTICDIR", "ProgramFiles64Folder", "Orvantic", ""},
          {"INSTALLDIR", "ORVANTICDIR", "KESTRA~1|Kestrane Enterprise", install},
          {"ENGINEDIR", "INSTALLDIR", "Engine", install + "\\Engine"},
          {"TEXTDIR", "INSTALLDIR", "Texts", install + "\\Texts"},
          {"HELPDIR", "INSTALLDIR", "Help", install + "\\Help"},
          {"PICTUREDIR", "HELPDIR", "Pictures", install + "\\Help\\Pictures"},
          {"RULEDIR", "INSTALLDIR", "SCRIPT~1|Script Rules", install + "\\Script Rules"},
          {"SAMPLEDIR", "INSTALLDIR", "Samples", install + "\\Samples"},
          {"TOOLDIR", "INSTALLDIR", "Diagnostics", install + "\\Diagnostics"}};
}

std::vector<PackedFile> Files() {
  std::vector<PackedFile> files = {
      // The definition and engine files bear their own names as keys, by which the wizard finds them.
      {"SIGS.DAT", "ENGINEDIR", "Core", "Sigs.Dat", "", 48000},
      {"LABELS.DAT", "ENGINEDIR", "Core", "Labels.Dat", "", 9000},
      {"REPAIR.DAT", "ENGINEDIR", "Core", "Repair.Dat", "", 21000},
      {"TXENG32.DLL", "ENGINEDIR", "Core", "TxEng32.Dll", "TxEng32.dll", 0},
      {"TEXTS.DAT", "ENGINEDIR", "Core", "Texts.Dat", "", 5000},
      {"ENGINE.DAT", "ENGINEDIR", "Core", "Engine.Dat", "", 17000},
      {"SIGTERMS.TXT", "ENGINEDIR", "Core", "SigTerms.Txt", "", 2600},
      {"ReadMe", "INSTALLDIR", "Core", "ReadMe.TXT", "", 3100},
      {"License", "INSTALLDIR", "Core", "License.Txt", "", 6200},
      {"Contact", "INSTALLDIR", "Core", "Contact.Txt", "", 900},
      {"TxDesk", "INSTALLDIR", "Console", "TxDesk.Exe", "TxDesk.exe", 0},
      {"TxHelpLib", "INSTALLDIR", "Console", "TxHelpLib.Dll", "TxHelpLib.dll", 0},
      {"OasCfg32", "INSTALLDIR", "OnAccessScanner", "OasCfg32.Exe", "OasCfg32.exe", 0},
      {"OdsCfg32", "INSTALLDIR", "OnDemandScanner", "OdsCfg32.Exe", "OdsCfg32.exe", 0},
      {"TxMailScan", "INSTALLDIR", "EmailScan", "TxMailScan.Dll", "TxMailScan.dll", 0},
      {"TxFetch", "INSTALLDIR", "AutoUpdate", "TxFetch.Exe", "TxFetch.exe", 0},
      {"TxPanelLib", "INSTALLDIR", "AutoUpdate", "TxPanelLib.Dll", "TxPanelLib.dll", 0},
      {"ShellMenu", "INSTALLDIR", "ShellExtensions", "ShellMenu.Dat", "", 1500},
      {"MirrorList", "INSTALLDIR", "MirrorTasks", "Mirrors.Ini", "", 700},
      {"AlertClient", "INSTALLDIR", "AlertClient", "Alerts.Ini", "", 1200},
      {"AlertForward", "INSTALLDIR", "AlertForwarding", "Forward.Ini", "", 600},
      {"LegacyMap", "INSTALLDIR", "LegacySupport", "Legacy.Map", "", 2200},
      {"FontNote", "FontsFolder", "Console", "KestFont.Txt", "", 300},
      {"SystemNote", "WindowsFolder", "Core", "Kestrane.Ini", "", 400}};
  const int languages[] = {0x0404, 0x0407, 0x0409, 0x040A, 0x040C, 0x0410, 0x0411,
                           0x0412, 0x0413, 0x0415, 0x0416, 0x041D, 0x0804};
  for (int language : languages) {
    const std::string name = Numbered("TxStr%04X", language);
    files.push_back({name, "TEXTDIR", "Core", name + ".Dat", "", 2000 + language % 700});
  }
  for (int i = 1; i <= 32; ++i) {
    files.push_back({Numbered("Topic%02d", i), "HELPDIR", i <= 4 ? "HelpCore" : "HelpFiles",
                     Numbered("Topic%02d.Htm", i), "", 1200 + 37 * i});
  }
  for (int i = 1; i <= 24; ++i) {
    files.push_back({Numbered("Picture%02d", i), "PICTUREDIR", "HelpFiles", Numbered("Picture%02d.Bmp", i),
                     "", 2400 + 61 * i});
  }
  for (int i = 1; i <= 20; ++i) {
    files.push_back({Numbered("Rule%02d", i), "RULEDIR", i <= 12 ? "ScriptScan" : "ScriptHosts",
                     Numbered("Rule%02d.Rul", i), "", 500 + 23 * i});
  }
  for (int i = 1; i <= 12; ++i) {
    files.push_back(
        {Numbered("Sample%02d", i), "SAMPLEDIR", "Samples", Numbered("Sample%02d.Txt", i), "", 400 + 11 * i});
  }
  for (int i = 1; i <= 6; ++i) {
    files.push_back(
        {Numbered("Probe%02d", i), "TOOLDIR", "Diagnostics", Numbered("Probe%02d.Dat", i), "", 900 + 7 * i});
  }
  return files;
}

}  // namespace

std::string LevelName(Level level) { return level == Level::k700 ? "700" : "710"; }

Description Describe(Level level) {
  Description product;
  product.level = level;
  product.product_code = level == Level::k700 ? "{3B1E9F54-66A7-4C11-9A41-0C5D52B77000}"
                                              : "{3B1E9F54-66A7-4C11-9A41-0C5D52B77100}";
  product.version = level == Level::k700 ? "7.0.0" : "7.1.0";
  product.msi_name = level == Level::k700 ? "Kte700.msi" : "Kte710.msi";
  product.features = Features();
  product.folders = Folders();
  product.files = Files();
  product.properties = {{"txlocaleid", "0409"},
                        {"INSTALLLEVEL", "100"},
                        {"DATVERSION", "4.0.4155"},
                        {"DATDATE", "11/07/2001"},
                        {"ENGINEVERSION", "4.1.500"},
                        {"SUPPRESSBCSINSTALL", "TRUE"},
                        {"ARPCONTACT", "Orvantic support"},
                        {"ARPHELPLINK", "http://www.orvantic.example/support"},
                        {"ARPURLINFOABOUT", "http://www.orvantic.example"},
                        {"ENABLEONACCESSSCANNER", "defined"}};
  product.registry = LiveRegistry(level);
  return product;
}

}  // namespace kw::sample
