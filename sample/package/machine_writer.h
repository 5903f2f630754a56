#ifndef KITWRIGHT_SAMPLE_PACKAGE_MACHINE_WRITER_H_
#define KITWRIGHT_SAMPLE_PACKAGE_MACHINE_WRITER_H_

#include <string>

#include "sample/package/description.h"
#include "sample/package/output.h"

namespace kw::sample {

/// A registry-editor file of keys below one root, in UTF-16 with its mark.
std::string RegistryFile(const std::string& root, const std::vector<RegistryEntry>& entries);

/// Writes the machine on which the product is installed, below "machine/": `machine.ini`, `registry/`, and
/// `drive_c/` with the installed files and the firewall's preferences.
void WriteMachine(const Description& product, const std::string& programs, Output& output);

/// Writes the loose payloads and the sources of the archives, below "payloads/".
void WritePayloads(const std::string& programs, Output& output);

/// The repository list of the machine, or the one among the payloads.
std::string SiteList(bool of_the_machine);
/// The firewall's preferences, as the installed firewall or its installer holds them.
std::string BulwarkPreferences(const std::string& owner);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_PACKAGE_MACHINE_WRITER_H_
