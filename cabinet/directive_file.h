#ifndef KITWRIGHT_CABINET_DIRECTIVE_FILE_H_
#define KITWRIGHT_CABINET_DIRECTIVE_FILE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::cabinet {

/// What a directive file asks for. Texts are UTF-8; paths are as written, in their Windows form.
struct Directives {
  struct File {
    std::string path;
    std::string name;  ///< in the cabinet; the path's file name when the line gives none
    size_t line = 0;   ///< counted from 1
  };
  std::vector<File> files;

  bool make_cabinet = true;  ///< Cabinet
  bool compress = true;      ///< Compress
  std::string cabinet_name_template = "*.cab";
  std::string cabinet_name_1;           ///< "": from the template
  std::string disk_directory_template;  ///< "": not named
  std::string disk_directory_1;         ///< "": from the template
  uint16_t reserved_header = 0;         ///< ReservePerCabinetSize
  uint64_t max_disk_size = 0;           ///< bytes; 0 when there is no limit
  std::string inf_file_name;            ///< "": no INF file
  std::string rpt_file_name;            ///< "": no report
  std::string inf_header;               ///< a line before everything; "": none
  std::string inf_footer;
  std::string inf_file_line_format = "*disk#*,*cab#*,*file*";

  /// The one cabinet's name, and the folder that it goes to ("" when the file names none).
  std::string CabinetName() const;
  std::string OutputFolder() const;
};

/// Reads directives: `.Set NAME=VALUE` (names without regard to case; the last value counts, quotes around it
/// are taken off), `.Option Explicit`, comments behind ";" and lines `"path" ["name"]`, quoted or not.
/// Anything else is kErrorInvalidData with the line's number.
Result<Directives> ParseDirectives(std::string_view text);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_DIRECTIVE_FILE_H_
