#include "sample/libraries/site_list.h"

#include <pugixml.hpp>

#include "base/text.h"

namespace kw::sample {

std::string ChangedSiteList(const std::string& xml) {
  constexpr std::string_view kAttribute = " Version=\"";
  const size_t at = xml.find(kAttribute);
  const size_t from = at == std::string::npos ? at : at + kAttribute.size();
  const size_t to = from == std::string::npos ? from : xml.find('"', from);
  if (to == std::string::npos) return xml + "<!-- edited -->\n";
  const long long version = LeadingInteger(xml.substr(from, to - from));
  return xml.substr(0, from) + std::to_string(version + 1) + xml.substr(to);
}

std::string ComplaintAboutSiteList(const std::string& xml) {
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer(xml.data(), xml.size());
  if (!result) return std::string("This is no list: ") + result.description() + ".";
  return document.document_element() ? "" : "This list is empty.";
}

}  // namespace kw::sample
