#ifndef KITWRIGHT_FORMATS_XML_TEXT_H_
#define KITWRIGHT_FORMATS_XML_TEXT_H_

#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "base/result.h"

namespace kw::formats {

/// An XML document as a tree of raw text: what stands between tags and quotes is kept letter for letter, so
/// that whatever is not touched is saved as it was. Comments, processing instructions, the document type,
/// blanks, the declaration and the encoding stay. Entities of the document type are neither expanded nor
/// fetched.
class XmlText {
 public:
  /// Reads a document in UTF-8, UTF-16 with its mark, or the 8-bit encoding that its declaration names. Fails
  /// with kErrorInvalidData and the line of the fault when it is not well-formed.
  static Result<std::unique_ptr<XmlText>> Parse(std::string_view bytes);
  /// A document without content, in UTF-8.
  XmlText() = default;

  /// The document node; nodes are good as long as this object.
  pugi::xml_node Root() { return document_; }

  /// The text of a node and all below it, entities and character references resolved; a reference that only
  /// the document type could explain stays as it is.
  static std::string TextOf(pugi::xml_node node);
  /// Replaces the children of a node by one text ("" leaves it empty).
  static void SetText(pugi::xml_node node, std::string_view text);

  /// The document in the encoding it was read in; a character that the encoding lacks becomes a character
  /// reference.
  std::string Serialize() const;

 private:
  static constexpr int kUtf16Little = -1;
  static constexpr int kUtf16Big = -2;

  Status Load(std::string text);

  pugi::xml_document document_;
  int encoding_ = 65001;  // a code page or one of the above
  bool utf8_mark_ = false;
};

}  // namespace kw::formats

#endif  // KITWRIGHT_FORMATS_XML_TEXT_H_
