#include "sample/package/package_writer.h"

#include <map>

#include "base/storage.h"
#include "base/text.h"
#include "sample/console/catalogue_file.h"

namespace kw::sample {
namespace {

std::string LongName(const std::string& default_dir) {
  const size_t bar = default_dir.find('|');
  return bar == std::string::npos ? default_dir : default_dir.substr(bar + 1);
}

std::string BareGuid(const std::string& guid) { return guid.substr(1, guid.size() - 2); }

/// Writes the elements of a folder, its files and the folders below it.
class FolderElements {
 public:
  explicit FolderElements(const Description& product) : product_(product) {}

  void Add(const Folder& folder, std::string& text) {
    text += "<Directory Id=\"" + folder.key + "\" Name=\"" + LongName(folder.default_dir) + "\">\n";
    for (const PackedFile& file : product_.files) {
      if (file.folder == folder.key) AddComponent(file, text);
    }
    for (const Folder& below : product_.folders) {
      if (below.parent == folder.key) Add(below, text);
    }
    text += "</Directory>\n";
  }

 private:
  void AddComponent(const PackedFile& file, std::string& text) {
    text += "<Component Id=\"C." + file.key + "\" Win64=\"yes\" Guid=\"" +
            BareGuid(MadeUpGuid(product_.version + file.key)) + "\"><File Id=\"" + file.key + "\" Name=\"" +
            file.name + "\" Source=\"files/" + file.key + "\" KeyPath=\"yes\"/>";
    // One value is enough to have the actions that write the registry; Registry.idt brings the rest.
    if (file.key == "ReadMe") {
      text +=
          "<RegistryValue Root=\"HKLM\" Key=\"SOFTWARE\\Orvantic\" Name=\"Maker\" Type=\"string\" "
          "Value=\"x\"/>";
    }
    text += "</Component>\n";
  }

  const Description& product_;
};

void AddFeature(const Description& product, const Feature& feature, std::string& text) {
  text += "<Feature Id=\"" + feature.key + "\" Title=\"" + feature.title + "\" Level=\"1\">\n";
  for (const PackedFile& file : product.files) {
    if (file.feature == feature.key) text += "<ComponentRef Id=\"C." + file.key + "\"/>\n";
  }
  for (const Feature& below : product.features) {
    if (below.parent == feature.key) AddFeature(product, below, text);
  }
  text += "</Feature>\n";
}

std::string ProductSource(const Description& product) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<Wix xmlns=\"http://schemas.microsoft.com/wix/2006/wi\">\n"
      "<Product Name=\"Kestrane Enterprise\" Id=\"" +
      BareGuid(product.product_code) + "\" UpgradeCode=\"" + BareGuid(kUpgradeCode) +
      "\" Language=\"1033\" Codepage=\"1252\" Version=\"" + product.version +
      "\" Manufacturer=\"Orvantic\">\n"
      "<Package Description=\"Kestrane Enterprise " +
      product.version +
      "\" Comments=\"Sample package\" InstallerVersion=\"200\" Languages=\"1033\" Compressed=\"yes\" "
      "InstallScope=\"perMachine\"/>\n"
      "<Media Id=\"1\" Cabinet=\"Cab1.CAB\" EmbedCab=\"no\"/>\n"
      "<Binary Id=\"Callagentpkg\" SourceFile=\"agent.exe\"/>\n";
  for (const auto& [name, value] : product.properties) {
    text += "<Property Id=\"" + name + "\" Value=\"" + value + "\"/>\n";
  }
  FolderElements(product).Add(product.folders.front(), text);
  for (const Feature& feature : product.features) {
    if (feature.parent.empty()) AddFeature(product, feature, text);
  }
  return text + "</Product>\n</Wix>\n";
}

std::string FeatureTable(const Description& product) {
  std::string text =
      "Feature\tFeature_Parent\tTitle\tDescription\tDisplay\tLevel\tDirectory_\tAttributes\n"
      "s38\tS38\tL64\tL255\tI2\ti2\tS72\ti2\nFeature\tFeature\n";
  for (const Feature& feature : product.features) {
    text += feature.key + "\t" + feature.parent + "\t" + feature.title + "\t" + feature.title +
            " of the product\t" + std::to_string(feature.display) + "\t" + std::to_string(feature.level) +
            "\tINSTALLDIR\t0\n";
  }
  return text;
}

std::string DirectoryTable(const Description& product) {
  std::string text = "Directory\tDirectory_Parent\tDefaultDir\ns72\tS72\tl255\nDirectory\tDirectory\n";
  for (const Folder& folder : product.folders) {
    text += folder.key + "\t" + folder.parent + "\t" + folder.default_dir + "\n";
  }
  return text;
}

/// The value as the table Registry writes it; false for the kinds that the table cannot hold.
bool RegistryCell(const RegistryEntry& entry, std::string& cell) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(entry.data[i]); };
  cell.clear();
  switch (entry.type) {
    case 1:
      cell = entry.data;
      return cell.empty() || cell[0] != '#';
    case 2:
      cell = "#%" + entry.data;
      return true;
    case 3:
      cell = "#x";
      for (size_t i = 0; i < entry.data.size(); ++i) {
        cell += kDigits[byte(i) >> 4];
        cell += kDigits[byte(i) & 15];
      }
      return true;
    case 4:
      cell = "#" + std::to_string(byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24);
      return true;
    case 7:
      for (const std::string& part : Split(entry.data, '\0'))
        cell += (cell.empty() ? "[~]" : "") + part + "[~]";
      return true;
    default:
      return false;
  }
}

std::string RegistryTable(const Description& product) {
  std::string text =
      "Registry\tRoot\tKey\tName\tValue\tComponent_"
      "\ns72\ti2\tl255\tL255\tL0\ts72\nRegistry\tRegistry\n";
  int number = 0;
  for (const RegistryEntry& entry : product.registry) {
    // The browser's key belongs to the machine, not to the product.
    if (!StartsWithNoCase(entry.key, "SOFTWARE\\Orvantic\\")) continue;
    std::string cell;
    if (!RegistryCell(entry, cell)) continue;
    text += "Reg" + std::to_string(++number) + "\t2\t" + entry.key + "\t" + entry.name + "\t" + cell +
            "\tC.ReadMe\n";
  }
  return text;
}

}  // namespace

void WriteProductFile(const Description& product, const PackedFile& file, const std::string& programs,
                      const std::string& path, Output& output) {
  if (!file.program.empty()) {
    output.Copy(programs + "/" + file.program, path);
    return;
  }
  const bool text = EndsWithNoCase(file.name, ".txt") || EndsWithNoCase(file.name, ".htm") ||
                    EndsWithNoCase(file.name, ".ini") || EndsWithNoCase(file.name, ".rul");
  output.Write(path, text ? MadeUpText(file.name, "Kestrane Enterprise " + product.version, file.size)
                          : MadeUpData(product.version + "/" + file.key, file.size));
}

void WriteProductSources(const Description& product, const std::string& programs, Output& output) {
  output.Write("product/product.wxs", ProductSource(product));
  output.Write("product/Feature.idt", ReplaceAll(FeatureTable(product), "\n", "\r\n"));
  output.Write("product/Directory.idt", ReplaceAll(DirectoryTable(product), "\n", "\r\n"));
  output.Write("product/Registry.idt", ReplaceAll(RegistryTable(product), "\n", "\r\n"));
  output.Copy(programs + "/AgentPkgShipped.exe", "product/agent.exe");
  for (const PackedFile& file : product.files) {
    WriteProductFile(product, file, programs, "product/files/" + file.key, output);
  }
}

void WriteBeaconrySources(Output& output) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<Wix xmlns=\"http://schemas.microsoft.com/wix/2006/wi\">\n"
      "<Product Name=\"Beaconry Server\" Id=\"8C0F6E52-3B0C-4B59-9C0B-7C6B64B50470\" "
      "UpgradeCode=\"71014215-9627-11D4-B865-00508B022A51\" Language=\"1033\" Codepage=\"1252\" "
      "Version=\"4.7.0\" "
      "Manufacturer=\"Tamrix\">\n"
      "<Package Description=\"Beaconry Server 4.7\" Comments=\"Sample package\" InstallerVersion=\"200\" "
      "Languages=\"1033\" Compressed=\"yes\" InstallScope=\"perMachine\"/>\n"
      "<Media Id=\"1\" Cabinet=\"beacon.cab\" EmbedCab=\"yes\"/>\n"
      "<Property Id=\"txlocaleid\" Value=\"0409\"/>\n"
      "<Directory Id=\"TARGETDIR\" Name=\"SourceDir\"><Directory Id=\"ProgramFiles64Folder\" Name=\"Program "
      "Files\">"
      "<Directory Id=\"INSTALLDIR\" Name=\"Beaconry\">\n";
  std::string references;
  for (int i = 1; i <= 12; ++i) {
    const std::string key = "Beacon" + std::to_string(i);
    output.Write("beaconry/files/" + key, MadeUpData("Beaconry/" + key, 700 + 90 * i));
    text += "<Component Id=\"C." + key + "\" Win64=\"yes\" Guid=\"" + BareGuid(MadeUpGuid(key)) +
            "\"><File Id=\"" + key + "\" Name=\"Beacon" + std::to_string(i) + ".Dat\" Source=\"files/" + key +
            "\" KeyPath=\"yes\"/>" + "</Component>\n";
    references += "<ComponentRef Id=\"C." + key + "\"/>";
  }
  text +=
      "</Directory></Directory></Directory>\n<Feature Id=\"Server\" Title=\"Beaconry Server\" Level=\"1\">" +
      references + "</Feature>\n</Product>\n</Wix>\n";
  output.Write("beaconry/beaconry.wxs", text);
  output.WriteText("beaconry/side/ReadMe.txt",
                   "Beaconry Server 4.7\n\nCopy this folder to a server of your network.\n");
  output.Write("beaconry/side/BCN470.OVP", MadeUpData("BCN470.OVP", 1800));
}

void WriteCatalogues(const Description& product, const std::string& templates, Output& output) {
  const auto add = [&](const std::string& folder, const std::string& path) {
    const Result<std::string> text =
        ReadWholeFile(SystemStorage(), templates + "/" + folder + "/PkgCatalog.XML");
    const Result<std::string> packed = text.ok() ? CompressCatalogue(*text) : text;
    if (packed.ok()) {
      output.Write(path, *packed);
    } else {
      output.Fail(packed.status());
    }
  };
  add("KTE/" + LevelName(product.level), "side/PkgCatalog.z");
  add("BCN", "beaconry/side/PkgCatalog.z");
}

void WriteSideFiles(const Description& product, const std::string& programs, Output& output) {
  const bool is_700 = product.level == Level::k700;
  const std::string level = LevelName(product.level);
  std::string setup =
      "; Settings of the Kestrane Enterprise setup program\n"
      "[Startup]\n"
      "szMsi=" +
      product.msi_name +
      "\n"
      "szProduct=Kestrane Enterprise " +
      product.version +
      "\n"
      "bSilent=0\n"
      "bPreserveSettings=1\n"
      "bRebootAlways=0\n"
      "szRebootMessage=\n"
      "\n"
      "; Windows Installer itself\n"
      "[Installer]\n"
      "szMinimum=2.0\n"
      "szCommand=/i\n";
  if (is_700) {
    setup +=
        "\n[Dat]\nDATDate=11/07/2001\nDATVersion=4.0.4155\n"
        "\n[Engine]\nEngineVersion=4.1.500\n";
  }
  output.WriteText("side/Setup.ini", setup);
  output.Copy(programs + "/Setup.exe", "side/SETUP.EXE");
  output.Write("side/CUP300.OVP", MadeUpData("CUP300.OVP", 2100));
  output.WriteText("side/CONTACT.TXT", "Orvantic support\nsupport@orvantic.example\n");
  output.WriteText("side/EXAMPLE.SMS", "[Package]\nName=Kestrane Enterprise\nCommand=setup.exe /q\n");
  output.WriteText("side/Install.pkg",
                   "[Install]\nLanguage=0409\nCommand=setup /Q\n\n[Files]\nFile0=SETUP.EXE\n");
  output.WriteText("side/Install.pkg.bak", "[Install]\nLanguage=0409\nCommand=setup\n");
  output.Write("side/KTE" + level + ".OVP", MadeUpData("KTE" + level + ".OVP", 2600));
  output.WriteText("side/KT" + level + "DET.TXS",
                   "; Finds Kestrane Enterprise " + product.version + "\nDetect\n");
  if (!is_700) {
    output.WriteText("side/README.TXT",
                     "Kestrane Enterprise " + product.version + "\n\nStart SETUP.EXE to install.\n");
    output.WriteText("side/TXVCHK.SCV", "check version " + product.version + "\n");
    output.WriteText("side/PACKING.LST", "SETUP.EXE\nSetup.ini\n" + product.msi_name + "\n");
    output.WriteText("side/SIGTERMS.TXT", "Terms of use of the virus definitions\n");
    return;
  }
  // At this level the definition and engine files lie loose beside the database.
  for (const PackedFile& file : product.files) {
    if (file.folder == "ENGINEDIR") WriteProductFile(product, file, programs, "side/" + file.key, output);
  }
}

}  // namespace kw::sample
