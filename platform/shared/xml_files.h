#ifndef KITWRIGHT_PLATFORM_SHARED_XML_FILES_H_
#define KITWRIGHT_PLATFORM_SHARED_XML_FILES_H_

#include <memory>

#include "platform/file_system.h"
#include "platform/xml.h"

namespace kw::platform {

/// XML documents on any file system, which must outlive the documents.
class XmlFiles : public XmlFactory {
 public:
  explicit XmlFiles(FileSystem& files) : files_(files) {}
  Result<std::unique_ptr<XmlDocument>> CreateDocument() override;

 private:
  FileSystem& files_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_XML_FILES_H_
