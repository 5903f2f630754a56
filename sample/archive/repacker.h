#ifndef KITWRIGHT_SAMPLE_ARCHIVE_REPACKER_H_
#define KITWRIGHT_SAMPLE_ARCHIVE_REPACKER_H_

#include <string>
#include <vector>

#include "base/machine_paths.h"
#include "base/result.h"
#include "base/storage.h"

namespace kw::sample {

/// The folder behind the switch -nos_o of a self-extracting package's command line, quoted or not; "" when
/// there is none.
std::string UnpackFolder(const std::string& command_line);

/// What a self-extracting package does when it is started: unpacks the cabinet behind the host file `program`
/// into the folder that the command line names, making it.
Status RunSelfExtractor(Storage& storage, const MachinePaths& paths, const std::string& program,
                        const std::string& command_line, int code_page);

/// FEADZED "<folder>" "<output>" "<language file>" -t -d: packs a folder behind the program `stub` (a host
/// path). kErrorInvalidParameter for another command line; the folder and the language file must exist.
Status RunOptimizer(Storage& storage, const MachinePaths& paths, const std::vector<std::string>& arguments,
                    const std::string& stub, int code_page);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_ARCHIVE_REPACKER_H_
