// StcSign.exe "<folder>\PkgCatalog.XML" .txs /c: compresses a catalogue into PkgCatalog.z in the same folder.

#include "base/path.h"
#include "base/storage.h"
#include "base/text.h"
#include "sample/console/catalogue_file.h"
#include "sample/settings/answers.h"
#include "tools/program.h"

namespace {

kw::Result<std::string> Sign(const kw::tools::ProgramStart& start) {
  if (kw::sample::MustFail("StcSign"))
    return kw::Result<std::string>(kw::kErrorFunctionFailed, "Asked to fail.");
  const std::vector<std::string>& words = start.arguments;
  if (words.size() != 3 || !kw::EqualsNoCase(words[1], ".txs") || !kw::EqualsNoCase(words[2], "/c")) {
    return kw::Result<std::string>(kw::kErrorInvalidParameter, "usage: StcSign.exe \"catalogue\" .txs /c");
  }
  const std::string catalogue = start.paths.FullPath(words[0]);
  KW_ASSIGN_OR_RETURN(const std::string text,
                      kw::ReadWholeFile(kw::SystemStorage(), start.paths.HostPath(catalogue)));
  KW_ASSIGN_OR_RETURN(const std::string packed, kw::sample::CompressCatalogue(text));
  const std::string target = start.paths.HostPath(kw::JoinPath(kw::ParentOf(catalogue), "PkgCatalog.z"));
  KW_RETURN_IF_ERROR(kw::WriteFileAtomically(kw::SystemStorage(), target, packed));
  return std::string();
}

}  // namespace

int main(int argc, char** argv) {
  return kw::tools::EndProgram("StcSign", Sign(kw::tools::ReadProgramStart(argc, argv, "StcSign.exe")));
}
