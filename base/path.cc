#include "base/path.h"

namespace kw {

std::string FileNameOf(std::string_view path) {
  const size_t slash = path.rfind('\\');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string ParentOf(std::string_view path) {
  const size_t slash = path.rfind('\\');
  return std::string(slash == std::string_view::npos ? std::string_view() : path.substr(0, slash));
}

std::string JoinPath(std::string_view folder, std::string_view name) {
  std::string result(folder);
  if (result.empty() || result.back() != '\\') result += '\\';
  return result.append(name);
}

}  // namespace kw
