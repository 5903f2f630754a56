#ifndef KITWRIGHT_RESOURCES_PICTURES_H_
#define KITWRIGHT_RESOURCES_PICTURES_H_

#include <string_view>

namespace kw::resources {

/// A picture that the program carries: the name of its source file without the extension, and its SVG text.
struct PictureFile {
  const char* stem;
  const char* svg;
};

extern const PictureFile kPictureFiles[];
extern const int kPictureFileCount;

/// The SVG text of a picture by the name that controls use ("TITLEBITMAP", "LOGO", "1", "Installed"); "" when
/// there is none of that name. The text is a static, NUL-terminated string.
std::string_view PictureSvg(std::string_view name);

}  // namespace kw::resources

#endif  // KITWRIGHT_RESOURCES_PICTURES_H_
