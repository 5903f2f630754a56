#ifndef KITWRIGHT_PACKAGE_XML_FILE_H_
#define KITWRIGHT_PACKAGE_XML_FILE_H_

#include <string>

#include "platform/services.h"

namespace kw {

/// True if the file exists and loads as XML; nothing external is fetched for that.
bool IsLoadableXmlFile(platform::Services& services, const std::string& path);

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_XML_FILE_H_
