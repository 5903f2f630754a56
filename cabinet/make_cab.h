#ifndef KITWRIGHT_CABINET_MAKE_CAB_H_
#define KITWRIGHT_CABINET_MAKE_CAB_H_

#include <string>
#include <vector>

#include "base/machine_paths.h"
#include "base/result.h"
#include "base/storage.h"
#include "cabinet/cabinet_writer.h"
#include "cabinet/directive_file.h"

namespace kw::cabinet {

/// Makes the one cabinet that a directive file asks for, and the INF and report files that it names.
/// `directive_path` and `default_folder` are Windows paths in any form; the cabinet goes to `default_folder`,
/// or the current folder when that is "", unless the directives name a folder. The directive file is text in
/// `code_page`. On a failure no cabinet is left under the cabinet's name, not even one from an earlier run.
Status MakeCabinet(Storage& storage, const MachinePaths& paths, const std::string& directive_path,
                   const std::string& default_folder, int code_page);

/// Text of the INF file and of the report, in UTF-8 with CR LF.
std::string InfText(const Directives& directives, const std::vector<CabinetFile>& files,
                    const WrittenCabinet& written);
std::string ReportText(const WrittenCabinet& written, double seconds);

/// The program `MakeCab.exe`: `/f <directive file> [/l <folder>]`. Arguments without the program's name. A
/// value may hold blanks without quotes.
Status RunMakeCab(Storage& storage, const MachinePaths& paths, const std::vector<std::string>& arguments,
                  int code_page);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_MAKE_CAB_H_
