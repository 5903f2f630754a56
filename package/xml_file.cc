#include "package/xml_file.h"

namespace kw {

bool IsLoadableXmlFile(platform::Services& services, const std::string& path) {
  if (!services.files->FileExists(path)) return false;
  const auto document = services.xml->CreateDocument();
  return document.ok() && (*document)->Load(path).ok();
}

}  // namespace kw
