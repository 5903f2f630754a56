#include "base/text.h"
#include "sample/package/machine_writer.h"

namespace kw::sample {
namespace {

void WriteDefinitions(const std::string& archive, const std::string& info, Output& output) {
  const std::string folder = "payloads/" + archive + "/";
  output.WriteText(folder + "PKGINFO.INI", info);
  output.Write(folder + "SIGS.DAT", MadeUpData("4160/SIGS.DAT", 52000));
  output.Write(folder + "LABELS.DAT", MadeUpData("4160/LABELS.DAT", 9400));
  output.Write(folder + "REPAIR.DAT", MadeUpData("4160/REPAIR.DAT", 21800));
}

void WriteEngine(const std::string& archive, const std::string& library, Output& output) {
  const std::string folder = "payloads/" + archive + "/";
  output.Copy(library, folder + "TXENG32.DLL");
  output.Write(folder + "TEXTS.DAT", MadeUpData("4160/TEXTS.DAT", 5300));
  output.Write(folder + "ENGINE.DAT", MadeUpData("4160/ENGINE.DAT", 17900));
  output.WriteText(folder + "SIGTERMS.TXT", "Terms of use of the virus definitions, engine 4.1.60\n");
}

std::string ExampleRegistryFile(const std::string& value) {
  return "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Example]\n\"Value\"=\"" + value +
         "\"\n\"Number\"=dword:0000002a\n\n";
}

}  // namespace

void WritePayloads(const std::string& programs, Output& output) {
  WriteDefinitions("dat", "[Dat]\nVersion=4160\nDate=Mon 12/31/2001\n\n[Zip]\nFiles=4\n", output);
  WriteDefinitions("dat-one-slash", "[Dat]\nVersion=4160\nDate=12/2001\n", output);
  WriteDefinitions("dat-no-version", "[Dat]\nDate=Mon 12/31/2001\n", output);
  WriteEngine("engine", programs + "/TxEng32New.dll", output);
  WriteEngine("engine-no-version", programs + "/TxEng32Bare.dll", output);
  const std::string loose = "payloads/loose/";
  output.Write(loose + "bad.zip", "PK\x03\x04" + MadeUpData("bad.zip", 600));
  output.WriteText(loose + "SiteList.xml", SiteList(false));
  output.Copy(programs + "/AgentPkg.exe", loose + "AgentPkg.exe");
  output.Copy(programs + "/tool.exe", loose + "tool.exe");
  output.WriteText(loose + "readme.txt", "An additional file that bears the name of one of the product's.\n");
  output.WriteText(loose + "notes.txt", "Notes for those who install the product.\n");
  output.WriteText(loose + "extra.reg", ExampleRegistryFile("all systems"));
  output.WriteText(loose + "nt.reg", ExampleRegistryFile("NT"));
  output.WriteText(loose + "w2k.reg", ExampleRegistryFile("2000"));
  output.WriteText(loose + "XP.REG", ExampleRegistryFile("XP"));

  // What the firewall's installers carry: a folder for each, packed behind the installer program.
  const std::string bulwark = "payloads/bulwark/";
  const std::string plain = "[General]\nInstallPath=\nSTC=0\nLangID=0409\nSilent=0\n";
  output.WriteText(bulwark + "Bulwark8/MDF.INI", plain);
  output.WriteText(bulwark + "Bulwark8/BulwarkPrefs.TXT", BulwarkPreferences("installer"));
  output.WriteText(bulwark + "BulwarkPref8/MDF.INI", plain);
  output.WriteText(bulwark + "BulwarkPref8/BulwarkPrefs.TXT", BulwarkPreferences("installer of both names"));
  output.WriteText(bulwark + "BulwarkPref8/BulwarkPref.TXT", BulwarkPreferences("installer of both names"));
  output.WriteText(bulwark + "BulwarkBare/BulwarkPrefs.TXT", BulwarkPreferences("bare installer"));
  output.WriteText(bulwark + "BulwarkSet/MDF.INI",
                   "[General]\nInstallPath=D:\\Security\\Bulwark\nSTC=1\nLangID=0409\nSilent=1\n");
  output.WriteText(bulwark + "BulwarkSet/BulwarkPrefs.TXT", BulwarkPreferences("installer with choices"));
}

}  // namespace kw::sample
