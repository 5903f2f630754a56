#ifndef KITWRIGHT_SAMPLE_ARCHIVE_APPENDED_CABINET_H_
#define KITWRIGHT_SAMPLE_ARCHIVE_APPENDED_CABINET_H_

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "base/storage.h"
#include "cabinet/cabinet_writer.h"

namespace kw::sample {

/// A program with a cabinet behind it, and behind that sixteen bytes: "SMPLCAB1" and the cabinet's size, low
/// byte first. Paths are host paths.
struct AppendedCabinet {
  uint64_t offset = 0;  ///< where the cabinet begins, which is the size of the program alone
  uint64_t size = 0;
};

/// kErrorInvalidData when there is no cabinet behind the file.
Result<AppendedCabinet> FindAppendedCabinet(Storage& storage, const std::string& path);

/// Unpacks the cabinet behind a program into a host folder that exists; only the entries of these names,
/// without regard to case, when there are any.
Status ExtractAppendedCabinet(Storage& storage, const std::string& program, const std::string& folder,
                              int code_page, const std::vector<std::string>& names = {});

/// Writes `target`: the program `program` alone, whatever is behind it now, with a cabinet of `files` behind
/// it. `target` may be `program`. It appears whole or stays as it was.
Status WriteBehindProgram(Storage& storage, const std::string& program,
                          const std::vector<cabinet::CabinetFile>& files, const std::string& target,
                          int code_page);

/// The files of a host folder and of the folders below it, by name, for WriteBehindProgram; entries are named
/// by their path below it, with "\".
Result<std::vector<cabinet::CabinetFile>> FilesBelow(const std::string& folder);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_ARCHIVE_APPENDED_CABINET_H_
