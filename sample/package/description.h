#ifndef KITWRIGHT_SAMPLE_PACKAGE_DESCRIPTION_H_
#define KITWRIGHT_SAMPLE_PACKAGE_DESCRIPTION_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kw::sample {

/// The two product levels.
enum class Level { k700, k710 };

/// "700" or "710".
std::string LevelName(Level level);

struct Feature {
  std::string key;
  std::string parent;  ///< "" at the top
  std::string title;
  int display;
  int level;
};

struct Folder {
  std::string key;
  std::string parent;
  std::string default_dir;  ///< as the table Directory holds it
  std::string path;  ///< where it lies on the installed machine, "C:\..."; "" when nothing is put there
};

/// A file of the package, and of the installed product. Its content is the program `program` where that is
/// given, otherwise made from its name and `size`.
struct PackedFile {
  std::string key;
  std::string folder;
  std::string feature;
  std::string name;
  std::string program;  ///< file name among the cross-built programs, or ""
  int size = 0;
};

/// Types as the registry numbers them: 0 none, 1 text, 2 expanding text, 3 bytes, 4 number, 7 texts, 11 long
/// number.
struct RegistryEntry {
  std::string key;
  std::string name;  ///< "" is the default value
  uint32_t type;
  std::string data;  ///< text, texts parted by NUL, or raw bytes
};

/// The product: one description for the installer package and for the machine on which it is installed.
struct Description {
  Level level;
  std::string product_code;
  std::string version;
  std::string msi_name;
  std::vector<Feature> features;
  std::vector<Folder> folders;
  std::vector<PackedFile> files;
  std::vector<std::pair<std::string, std::string>> properties;
  /// The live settings below HKEY_LOCAL_MACHINE.
  std::vector<RegistryEntry> registry;
};

/// Everything that is said about the product at a level.
Description Describe(Level level);

/// The live registry of an installed product (registry.cc).
std::vector<RegistryEntry> LiveRegistry(Level level);

/// The feature keys that the wizard asks for, in its order.
inline constexpr const char* kAskedFeatures[] = {"Console", "EmailScan", "OnAccessScanner", "OnDemandScanner",
                                                 "AutoUpdate"};

inline constexpr const char* kUpgradeCode = "{75951FF9-0087-4981-A526-56CB59DA17D9}";
inline constexpr const char* kInstallPath = "C:\\Program Files\\Orvantic\\Kestrane Enterprise";
inline constexpr const char* kAgentPath = "C:\\Program Files\\Orvantic\\Agent Core";
inline constexpr const char* kAgentDataPath = "C:\\ProgramData\\Orvantic\\Agent Core";

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_PACKAGE_DESCRIPTION_H_
