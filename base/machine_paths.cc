#include "base/machine_paths.h"

#include <vector>

#include "base/path.h"
#include "base/text.h"

namespace kw {
namespace {

bool HasDrive(std::string_view path) {
  if (path.size() < 2 || path[1] != ':') return false;
  const char letter = path[0];
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

// The part of a full path that ".." cannot leave: "C:" or "\\server\share".
std::string_view AnchorOf(std::string_view full) {
  if (!full.starts_with("\\\\")) return full.substr(0, 2);
  const size_t share = full.find('\\', 2);
  if (share == std::string_view::npos) return full;
  return full.substr(0, full.find('\\', share + 1));
}

}  // namespace

MachinePaths::MachinePaths(std::string root, std::string current) : root_(std::move(root)) {
  while (root_.size() > 1 && root_.back() == '/') root_.pop_back();
  current_ = "C:\\";
  current_ = FullPath(current);
}

std::string MachinePaths::FullPath(std::string_view path) const {
  std::string text = ReplaceAll(path, "/", "\\");
  if (text.starts_with("\\\\?\\UNC\\")) {
    text.replace(0, 8, "\\\\");
  } else if (text.starts_with("\\\\?\\") || text.starts_with("\\\\.\\")) {
    text.erase(0, 4);
  }
  if (HasDrive(text)) {
    if (text.size() == 2 || text[2] != '\\') {
      const bool here = EqualsNoCase(text.substr(0, 2), AnchorOf(current_));
      text = JoinPath(here ? std::string_view(current_) : std::string_view(text).substr(0, 2),
                      std::string_view(text).substr(2));
    }
  } else if (!text.starts_with("\\\\")) {
    const std::string_view base = text.starts_with('\\') ? AnchorOf(current_) : std::string_view(current_);
    text = text.starts_with('\\') ? std::string(base) + text : JoinPath(base, text);
  }
  const std::string anchor(AnchorOf(text));
  std::vector<std::string> kept;
  for (std::string& part : Split(std::string_view(text).substr(anchor.size()), '\\')) {
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      kept.push_back(std::move(part));
    } else if (!kept.empty()) {
      kept.pop_back();
    }
  }
  std::string full = anchor;
  for (const std::string& part : kept) full.append("\\").append(part);
  if (kept.empty() && HasDrive(full)) full += '\\';
  return full;
}

}  // namespace kw
