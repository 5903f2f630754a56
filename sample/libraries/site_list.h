#ifndef KITWRIGHT_SAMPLE_LIBRARIES_SITE_LIST_H_
#define KITWRIGHT_SAMPLE_LIBRARIES_SITE_LIST_H_

#include <string>

#include "base/result.h"

namespace kw::sample {

/// A list as text, and how its file spells it: in UTF-8, in UTF-16 with its mark, or with a byte for each
/// character, whatever its declaration calls them.
struct SiteListText {
  enum class Spelling { kUtf8, kUtf16Little, kUtf16Big, kBytes };
  std::string utf8;
  Spelling spelling = Spelling::kUtf8;

  static SiteListText FromBytes(const std::string& bytes);
  /// Fails with kErrorUnrepresentableText on a character that has no byte.
  Result<std::string> ToBytes() const;
};

/// The list as a person might leave it: the number of the first attribute "Version" behind the root element
/// counted up, or a comment added where there is none.
std::string ChangedSiteList(const std::string& xml);

/// What is wrong with a text that is to be saved as a list; "" for well-formed XML.
std::string ComplaintAboutSiteList(const std::string& xml);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_LIBRARIES_SITE_LIST_H_
