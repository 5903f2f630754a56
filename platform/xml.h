#ifndef KITWRIGHT_PLATFORM_XML_H_
#define KITWRIGHT_PLATFORM_XML_H_

#include <memory>
#include <string>
#include <string_view>

#include "base/result.h"

namespace kw::platform {

/// A node of an XML document; valid while its document lives.
class XmlNode {
 public:
  virtual ~XmlNode() = default;
  /// The first child element of that name, or a null pointer.
  virtual std::unique_ptr<XmlNode> SelectSingleNode(std::string_view name) = 0;
  /// Adds a new element behind the last child.
  virtual std::unique_ptr<XmlNode> AppendElement(std::string_view name) = 0;
  virtual bool HasChildNodes() = 0;
  virtual void RemoveFirstChild() = 0;
  /// Replaces the node's children by one text.
  virtual void SetText(std::string_view text) = 0;
  virtual std::string Text() = 0;
};

/// An XML document. What is not touched passes through unchanged: comments, processing instructions,
/// attributes, order. External entities and document types from elsewhere are never fetched.
class XmlDocument {
 public:
  virtual ~XmlDocument() = default;
  /// Loads a file, at once and without resolving anything external; fails with the place of the fault.
  virtual Status Load(const std::string& path) = 0;
  virtual Status Save(const std::string& path) = 0;
  /// The document itself; its child elements are the root element.
  virtual std::unique_ptr<XmlNode> Document() = 0;
};

/// Makes documents.
class XmlFactory {
 public:
  virtual ~XmlFactory() = default;
  virtual Result<std::unique_ptr<XmlDocument>> CreateDocument() = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_XML_H_
