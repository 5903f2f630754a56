#include "base/command_line.h"

#include <algorithm>

#include "base/text.h"

namespace kw {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Where an unquoted program name ends.
size_t EndOfProgram(std::string_view line, std::string_view program) {
  const size_t first = std::min(line.find_first_of(" \t"), line.size());
  if (program.empty()) return first;
  for (size_t end = first; end <= line.size(); ++end) {
    if (end < line.size() && !IsBlank(line[end])) continue;
    std::string_view name = line.substr(0, end);
    name = name.substr(name.find_last_of("\\/:") + 1);
    if (EqualsNoCase(name, program) || EqualsNoCase(std::string(name) + ".exe", program) ||
        EqualsNoCase(name, std::string(program) + ".exe")) {
      return end;
    }
  }
  return first;
}

std::string NextArgument(std::string_view line, size_t& pos) {
  std::string argument;
  bool quoted = false;
  while (pos < line.size() && (quoted || !IsBlank(line[pos]))) {
    size_t backslashes = 0;
    while (pos < line.size() && line[pos] == '\\') ++backslashes, ++pos;
    if (pos >= line.size() || line[pos] != '"') {
      argument.append(backslashes, '\\');
      if (backslashes == 0) argument += line[pos++];
      continue;
    }
    argument.append(backslashes / 2, '\\');
    ++pos;
    if (backslashes % 2 != 0) {
      argument += '"';
    } else if (quoted && pos < line.size() && line[pos] == '"') {
      argument += '"';
      ++pos;
    } else {
      quoted = !quoted;
    }
  }
  return argument;
}

std::string Quoted(const std::string& argument) {
  if (!argument.empty() && argument.find_first_of(" \t\"") == std::string::npos) return argument;
  std::string out = "\"";
  size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '"') out.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    out += c;
  }
  return out.append(backslashes, '\\').append("\"");
}

}  // namespace

std::vector<std::string> SplitCommandLine(std::string_view line, std::string_view program) {
  std::vector<std::string> arguments;
  size_t pos = 0;
  if (line.starts_with('"')) {
    const size_t end = std::min(line.find('"', 1), line.size());
    arguments.emplace_back(line.substr(1, end - 1));
    pos = std::min(end + 1, line.size());
  } else {
    pos = EndOfProgram(line, program);
    arguments.emplace_back(line.substr(0, pos));
  }
  while (true) {
    while (pos < line.size() && IsBlank(line[pos])) ++pos;
    if (pos >= line.size()) return arguments;
    arguments.push_back(NextArgument(line, pos));
  }
}

std::string JoinCommandLine(const std::vector<std::string>& arguments) {
  std::string line;
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) line += ' ';
    // A program's name is read without escapes, so quotes alone protect its blanks.
    line += i > 0 ? Quoted(arguments[i])
                  : (arguments[i].find_first_of(" \t") == std::string::npos ? arguments[i]
                                                                            : '"' + arguments[i] + '"');
  }
  return line;
}

}  // namespace kw
