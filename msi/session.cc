#include "msi/session.h"

#include <set>

namespace kw::msi {
namespace {

constexpr int kWordCount = 15;

// "target:source", each "short|long": the source's name in the wanted form.
std::string SourceName(const std::string& default_dir, bool short_names) {
  std::string name =
      default_dir.substr(default_dir.find(':') == std::string::npos ? 0 : default_dir.find(':') + 1);
  const size_t bar = name.find('|');
  if (bar == std::string::npos) return name;
  return short_names ? name.substr(0, bar) : name.substr(bar + 1);
}

}  // namespace

Result<std::unique_ptr<Session>> Session::Open(std::shared_ptr<Database> database) {
  std::unique_ptr<Session> session(new Session(std::move(database)));
  KW_ASSIGN_OR_RETURN(const auto summary, session->database_->SummaryInformation(0));
  session->short_names_ = (summary->IntegerProperty(kWordCount) & 1) != 0;
  KW_RETURN_IF_ERROR(session->LoadProperties());
  return session;
}

Status Session::LoadProperties() {
  if (database_->TablePersistent("Property") == Persistence::kNone) return {};
  KW_ASSIGN_OR_RETURN(const auto view, database_->OpenView("SELECT `Property`, `Value` FROM `Property`"));
  KW_RETURN_IF_ERROR(view->Execute(nullptr));
  for (;;) {
    KW_ASSIGN_OR_RETURN(const std::optional<Record> record, view->Fetch());
    if (!record) return {};
    properties_[record->StringData(1)] = record->StringData(2);
  }
}

std::string Session::Property(std::string_view name) const {
  const auto found = properties_.find(name);
  return found == properties_.end() ? "" : found->second;
}

void Session::SetProperty(std::string_view name, std::string_view value) {
  if (value.empty()) {
    const auto found = properties_.find(name);
    if (found != properties_.end()) properties_.erase(found);
    return;
  }
  properties_[std::string(name)] = value;
}

int Session::DoAction(std::string_view action) {
  if (action != "CostInitialize") return kNotImplemented;
  return ResolveDirectories().ok() ? kSuccess : kFailure;
}

Status Session::ResolveDirectories() {
  source_paths_.clear();
  KW_ASSIGN_OR_RETURN(
      const auto view,
      database_->OpenView("SELECT `Directory`, `Directory_Parent`, `DefaultDir` FROM `Directory`"));
  KW_RETURN_IF_ERROR(view->Execute(nullptr));
  std::map<std::string, std::pair<std::string, std::string>> directories;
  for (;;) {
    KW_ASSIGN_OR_RETURN(const std::optional<Record> record, view->Fetch());
    if (!record) break;
    directories[record->StringData(1)] = {record->StringData(2),
                                          SourceName(record->StringData(3), short_names_)};
  }
  for (const auto& [name, directory] : directories) {
    // Up to a directory that is resolved already or is a root; then down again.
    std::vector<std::string> way;
    std::set<std::string> seen;
    std::string path;
    for (std::string at = name;;) {
      const auto resolved = source_paths_.find(at);
      if (resolved != source_paths_.end()) {
        path = resolved->second;
        break;
      }
      const auto found = directories.find(at);
      if (found == directories.end() || !seen.insert(at).second) {
        return {kErrorFunctionFailed, "The directory " + name + " has no way to a root."};
      }
      way.push_back(at);
      const std::string& parent = found->second.first;
      if (parent.empty() || parent == at) break;
      at = parent;
    }
    for (size_t i = way.size(); i-- > 0;) {
      const auto& [parent, own] = directories[way[i]];
      const bool root = parent.empty() || parent == way[i];
      if (!root && own != "." && !own.empty()) path += own + "\\";
      source_paths_[way[i]] = path;
    }
  }
  return {};
}

std::string Session::SourcePath(std::string_view directory) const {
  const auto found = source_paths_.find(directory);
  return found == source_paths_.end() ? "" : found->second;
}

}  // namespace kw::msi
