// TxPanelLib: the stand-in for the management agent's editor of the machine's live repository list.

#include <filesystem>

#include "base/path.h"
#include "base/storage.h"
#include "platform/shared/library_abi.h"
#include "sample/libraries/library_calls.h"
#include "sample/libraries/site_list.h"
#include "sample/settings/answers.h"
#include "sample/settings/dialog_library.h"

namespace {

using kw::sample::Answer;

kw::Result<std::string> LiveListPath() {
  const kw::sample::CallContext call;
  const auto registry = call.Registry();
  KW_ASSIGN_OR_RETURN(auto key, registry->OpenKey(kw::platform::Hive::kLocalMachine,
                                                  "SOFTWARE\\Orvantic\\RDX\\Shared Components\\AgentCore",
                                                  kw::platform::kKeyQuery));
  KW_ASSIGN_OR_RETURN(const auto folder, key->QueryValue("Data Path", kw::platform::kAnyRegistrySize));
  return call.paths.HostPath(kw::JoinPath(folder.Text(), "SiteList.xml"));
}

/// Writes over the file that is there. A read-only one is refused, for the superuser too.
kw::Status SaveBytes(const std::string& path, const std::string& bytes) {
  std::error_code error;
  const auto mode = std::filesystem::status(path, error).permissions();
  if (!error && (mode & std::filesystem::perms::owner_write) == std::filesystem::perms::none) {
    return kw::Status(kw::kErrorAccessDenied, path + " is read-only.");
  }
  return kw::WriteFileAtomically(kw::SystemStorage(), path, bytes);
}

kw::Status SaveList(const std::string& path, const kw::sample::SiteListText& list) {
  KW_ASSIGN_OR_RETURN(const std::string bytes, list.ToBytes());
  return SaveBytes(path, bytes);
}

kw::Result<int> Edit(Answer answer) {
  KW_ASSIGN_OR_RETURN(const std::string path, LiveListPath());
  KW_ASSIGN_OR_RETURN(const std::string bytes, kw::ReadWholeFile(kw::SystemStorage(), path));
  auto list = kw::sample::SiteListText::FromBytes(bytes);
  switch (answer) {
    case Answer::kRaise:
      return kw::Result<int>(kw::kErrorFunctionFailed, "Asked to fail.");
    case Answer::kFail:
    case Answer::kCancel:
      return 0;
    case Answer::kChange:
    case Answer::kFailSaved:
      list.utf8 = kw::sample::ChangedSiteList(list.utf8);
      KW_RETURN_IF_ERROR(SaveList(path, list));
      return answer == Answer::kChange ? 1 : 0;
    case Answer::kCrash:
      KW_RETURN_IF_ERROR(SaveBytes(path, bytes.substr(0, bytes.size() / 2)));
      kw::sample::Crash();
    case Answer::kDialog:
      break;
  }
  if (!kw::sample::ShowTextDialog("AutoUpdate Repository List", list.utf8,
                                  kw::sample::ComplaintAboutSiteList))
    return 0;
  KW_RETURN_IF_ERROR(SaveList(path, list));
  return 1;
}

}  // namespace

int EditSiteList(void*, int, const char*, const char16_t*) {
  const kw::Result<int> result = Edit(kw::sample::AnswerOfThisProcess());
  kw::sample::SetRaised(result.number());
  return result.value_or(0);
}
