#include "sample/package/machine_writer.h"

#include <cstdio>
#include <map>
#include <set>

#include "base/text.h"
#include "sample/package/package_writer.h"

namespace kw::sample {
namespace {

std::string Quoted(const std::string& text) {
  return "\"" + ReplaceAll(ReplaceAll(text, "\\", "\\\\"), "\"", "\\\"") + "\"";
}

std::string HexBytes(std::string_view bytes) {
  std::string text;
  char part[8];
  for (size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(part, sizeof(part), "%s%02x", i == 0 ? "" : ",", static_cast<uint8_t>(bytes[i]));
    text += part;
  }
  return text;
}

/// UTF-16, low byte first, with a terminating NUL.
std::string WideBytes(std::string_view utf8) {
  std::string bytes;
  for (char16_t unit : Utf8ToUtf16(utf8)) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes + std::string(2, '\0');
}

std::string ValueText(const RegistryEntry& entry) {
  switch (entry.type) {
    case 1:
      return Quoted(entry.data);
    case 2:
      return "hex(2):" + HexBytes(WideBytes(entry.data));
    case 3:
      return "hex:" + HexBytes(entry.data);
    case 4: {
      char text[24];
      const auto byte = [&](size_t i) { return static_cast<unsigned>(static_cast<uint8_t>(entry.data[i])); };
      std::snprintf(text, sizeof(text), "dword:%02x%02x%02x%02x", byte(3), byte(2), byte(1), byte(0));
      return text;
    }
    case 7:
      return "hex(7):" + HexBytes(WideBytes(entry.data + std::string(1, '\0')));
    default: {
      char kind[16];
      std::snprintf(kind, sizeof(kind), "hex(%x):", entry.type);
      return kind + HexBytes(entry.data);
    }
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

std::string Utf16Bytes(const std::string& utf8) {
  std::string bytes = "\xFF\xFE" + WideBytes(utf8);
  bytes.resize(bytes.size() - 2);
  return bytes;
}

}  // namespace

std::string RegistryText(const std::string& root, const std::vector<RegistryEntry>& entries) {
  std::map<std::string, std::string, LessNoCase> keys;
  for (const RegistryEntry& entry : entries) {
    // Every key on the way stands in the file, as the registry editor writes it.
    for (size_t at = entry.key.find('\\'); at != std::string::npos; at = entry.key.find('\\', at + 1)) {
      keys.try_emplace(entry.key.substr(0, at));
    }
    std::string& values = keys[entry.key];
    if (entry.type != 0) {
      values += (entry.name.empty() ? "@" : Quoted(entry.name)) + "=" + ValueText(entry) + "\n";
    }
  }
  std::string text = "Windows Registry Editor Version 5.00\n\n[" + root + "]\n\n";
  for (const auto& [key, values] : keys) text += "[" + root + "\\" + key + "]\n" + values + "\n";
  return text;
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
               Utf16Bytes(ReplaceAll(RegistryText("HKEY_LOCAL_MACHINE", product.registry), "\n", "\r\n")));
  const std::vector<RegistryEntry> user = {{"SOFTWARE\\Orvantic\\Desktop", "szUser", 1, "Administrator"},
                                           {"Control Panel\\Desktop", "Wallpaper", 1, ""}};
  output.Write("machine/registry/HKEY_CURRENT_USER.reg",
               Utf16Bytes(ReplaceAll(RegistryText("HKEY_CURRENT_USER", user), "\n", "\r\n")));
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
