#include "resources/pictures.h"

namespace kw::resources {

namespace {

struct NamedPicture {
  std::string_view name;
  std::string_view stem;
};

constexpr NamedPicture kNames[] = {
    {"TITLEBITMAP", "title_band"},
    {"LOGO", "logo"},
    {"APP", "app"},
    {"WELCOME", "welcome"},
    {"1", "page_done"},
    {"2", "page_done_grey"},
    {"Installed", "feature_installed"},
    {"NotInstalled", "feature_not_installed"},
};

}  // namespace

std::string_view PictureSvg(std::string_view name) {
  for (const NamedPicture& named : kNames) {
    if (named.name != name) continue;
    for (int i = 0; i < kPictureFileCount; ++i) {
      if (named.stem == kPictureFiles[i].stem) return kPictureFiles[i].svg;
    }
  }
  return "";
}

}  // namespace kw::resources
