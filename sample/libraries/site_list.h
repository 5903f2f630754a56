#ifndef KITWRIGHT_SAMPLE_LIBRARIES_SITE_LIST_H_
#define KITWRIGHT_SAMPLE_LIBRARIES_SITE_LIST_H_

#include <string>

namespace kw::sample {

/// The list as a person might leave it: the number of the first attribute "Version" behind the root element
/// counted up, or a comment added where there is none.
std::string ChangedSiteList(const std::string& xml);

/// What is wrong with a text that is to be saved as a list; "" for well-formed XML.
std::string ComplaintAboutSiteList(const std::string& xml);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_LIBRARIES_SITE_LIST_H_
