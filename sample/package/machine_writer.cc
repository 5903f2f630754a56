#include "sample/package/machine_writer.h"

#include <map>
#include <set>

#include "base/text.h"
#include "formats/reg_file.h"
#include "sample/package/package_writer.h"

namespace kw::sample {
namespace {

/// The data as a registry-editor file is given it: text with its terminators.
std::string FileData(const RegistryEntry& entry) {
  switch (entry.type) {
    case 1:
    case 2:
      return entry.data + std::string(1, '\0');
    case 7:
      return entry.data + std::string(2, '\0');
    default:
      return entry.data;
  }
}

std::string MachineIni(const Description& product) {
  std::string text =
      "; The machine that this folder is. Lines can be changed by hand.\n"
      "[machine]\nmemory=1073741824\nadmin=1\nlocale=1033\ntemp=C:\\Temp\nnow=\n\n[product1]\nupgrade=" +
      std::string(kUpgradeCode) + "\ncode=" + product.product_code + "\n";
  std::string second = "\n[product2]\nupgrade=" + std::string(kUpgradeCode) +
                       "\ncode={3B1E9F54-66A7-4C11-9A41-0C5D52B76000}\n";
  for (const Feature& feature : product.features) {
    // 3: installed; 2: absent.
    const bool installed = feature.level > 0 && feature.level <= 100;
    text += feature.key + (installed ? "=3\n" : "=2\n");
    second += feature.key + "=2\n";
  }
  return text + second;
}

}  // namespace

std::string RegistryFile(const std::string& root, const std::vector<RegistryEntry>& entries) {
  std::map<std::string, std::vector<const RegistryEntry*>, LessNoCase> keys;
  for (const RegistryEntry& entry : entries) {
    // Every key on the way stands in the file, as the registry editor writes it.
    for (size_t at = entry.key.find('\\'); at != std::string::npos; at = entry.key.find('\\', at + 1)) {
      keys.try_emplace(entry.key.substr(0, at));
    }
    keys[entry.key].push_back(&entry);
  }
  formats::RegFileWriter writer;
  writer.AddKey(root);
  for (const auto& [key, values] : keys) {
    writer.AddKey(root + "\\" + key);
    for (const RegistryEntry* value : values) writer.AddValue(value->name, value->type, FileData(*value));
  }
  return writer.File();
}

std::string SiteList(bool of_the_machine) {
  const std::string site = of_the_machine ? "Machine" : "Payload";
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!-- Update sites, tried from the first on -->\n"
         "<SiteLists Version=\"20011107\">\n"
         "  <SiteList Default=\"1\" Name=\"" +
         site +
         " list\">\n"
         "    <HttpSite Type=\"fallback\" Name=\"" +
         site +
         " fallback\" Order=\"1\" Enabled=\"1\" "
         "Server=\"update.orvantic.example:80\">\n"
         "      <RelativePath>Common</RelativePath>\n"
         "      <UseAuth>0</UseAuth>\n"
         "    </HttpSite>\n"
         "    <UNCSite Type=\"repository\" Name=\"" +
         site + " share\" Order=\"2\" Enabled=\"" + (of_the_machine ? "1" : "0") +
         "\" Server=\"\\\\files\\updates\"/>\n"
         "  </SiteList>\n"
         "</SiteLists>\n";
}

std::string BulwarkPreferences(const std::string& owner) {
  return "[General]\nOwner=" + owner +
         "\nProtectionLevel=2\nLearnMode=0\nLogPackets=1\n\n"
         "[Rules]\nRule1=allow out tcp 80\nRule2=allow out tcp 443\nRule3=deny in all\n";
}

void WriteMachine(const Description& product, const std::string& programs, Output& output) {
  output.WriteText("machine/machine.ini", MachineIni(product));
  output.Write("machine/registry/HKEY_LOCAL_MACHINE.reg",
               RegistryFile("HKEY_LOCAL_MACHINE", product.registry));
  const std::vector<RegistryEntry> user = {{"SOFTWARE\\Orvantic\\Desktop", "szUser", 1, "Administrator"},
                                           {"Control Panel\\Desktop", "Wallpaper", 1, ""}};
  output.Write("machine/registry/HKEY_CURRENT_USER.reg", RegistryFile("HKEY_CURRENT_USER", user));
  for (const char* folder : {"C:\\Temp", "C:\\Windows\\System32", "C:\\Windows\\Fonts",
                             "C:\\Program Files\\Common Files", "C:\\Documents and Settings"}) {
    output.MakeFolder("machine/" + OnDrive(folder));
  }
  std::map<std::string, std::string> places;
  for (const Folder& folder : product.folders) places[folder.key] = folder.path;
  places["FontsFolder"] = "C:\\Windows\\Fonts";
  std::set<std::string> installed;
  for (const Feature& feature : product.features) {
    if (feature.level > 0 && feature.level <= 100) installed.insert(feature.key);
  }
  for (const PackedFile& file : product.files) {
    if (installed.count(file.feature) == 0) continue;
    WriteProductFile(product, file, programs, "machine/" + OnDrive(places[file.folder] + "\\" + file.name),
                     output);
  }
  output.WriteText("machine/" + OnDrive(std::string(kAgentDataPath) + "\\SiteList.xml"), SiteList(true));
  output.WriteText("machine/" + OnDrive(std::string(kAgentPath) + "\\Agent.ini"),
                   "[Agent]\nVersion=3.1.0.211\n");
  output.WriteText("machine/" + OnDrive("C:\\ProgramData\\Orvantic\\Tamrix Bulwark\\BulwarkPrefs.TXT"),
                   BulwarkPreferences("machine"));
}

}  // namespace kw::sample
