// Holds docs/troubleshooting.md against the messages in the code: every one is told there, and nothing else
// is.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A string literal of the source, adjacent ones joined, escapes resolved.
struct Literal {
  std::string file;
  std::string text;
  std::string before;  ///< the source in front of it, comments removed
};

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

/// Line breaks, with the blanks around them, count as one blank.
std::string OneLine(const std::string& text) {
  static const std::regex kBreak(R"([ \t]*[\r\n]+[ \t\r\n]*)");
  return std::regex_replace(text, kBreak, " ");
}

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

char Escaped(char c) { return c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c; }

/// Every literal of one source file.
std::vector<Literal> LiteralsOf(const fs::path& path) {
  const std::string source = ReadAll(path);
  std::vector<Literal> found;
  std::string code;  // what was read, without comments and without the insides of literals
  bool adjacent = false;
  for (size_t i = 0; i < source.size(); ++i) {
    const char c = source[i];
    if (c == '/' && source.compare(i, 2, "//") == 0) {
      i = std::min(source.find('\n', i), source.size()) - 1;
    } else if (c == '\'' && (code.empty() || !std::isalnum(static_cast<unsigned char>(code.back())))) {
      i += source[i + 1] == '\\' ? 3 : 2;
      code += "''";
      adjacent = false;
    } else if (c == '"') {
      std::string text;
      for (++i; i < source.size() && source[i] != '"'; ++i)
        text += source[i] == '\\' ? Escaped(source[++i]) : source[i];
      if (adjacent) {
        found.back().text += text;
      } else {
        found.push_back({path.string(), text, code.substr(code.size() > 400 ? code.size() - 400 : 0)});
        code += "\"\"";
      }
      adjacent = true;
    } else {
      if (!std::isspace(static_cast<unsigned char>(c))) adjacent = false;
      code += c;
    }
  }
  for (Literal& literal : found) literal.text = OneLine(literal.text);
  return found;
}

std::vector<Literal> AllLiterals() {
  std::vector<Literal> all;
  for (const char* folder : {"package", "pages", "payloads", "settings", "shell", "console", "ui/wx"}) {
    for (const fs::directory_entry& entry : fs::directory_iterator(fs::path(KITWRIGHT_SOURCE_DIR) / folder)) {
      const std::string name = entry.path().filename().string();
      const bool source = entry.path().extension() == ".cc" || entry.path().extension() == ".h";
      if (!source || name.find("test") != std::string::npos || name.starts_with("main_drive")) continue;
      const std::vector<Literal> literals = LiteralsOf(entry.path());
      all.insert(all.end(), literals.begin(), literals.end());
    }
  }
  return all;
}

int Words(const std::string& text) {
  static const std::regex kWord("[A-Za-z']{2,}");
  return static_cast<int>(std::distance(std::sregex_iterator(text.begin(), text.end(), kWord), {}));
}

/// The innermost call or list around the literal: what stands in front of its bracket, and behind it.
struct Place {
  std::string callee;
  std::string arguments;
};
Place PlaceOf(const std::string& before) {
  int depth = 0;
  for (size_t i = before.size(); i-- > 0;) {
    if (before[i] == ')' || before[i] == '}') ++depth;
    if ((before[i] == '(' || before[i] == '{') && depth-- == 0) {
      return {Trimmed(before.substr(0, i)), Trimmed(OneLine(before.substr(i + 1)))};
    }
  }
  return {};
}

/// A sentence, or a part of one, that a box of the wizard shows.
bool IsMessage(const Literal& literal) {
  static const std::regex kTeller(
      R"(\b(Message|CriticalMessage|Question|Tell|Confirm|Ask|AskRetry|Stop|refuse|refusal|RefuseLanguage|CopyOrTell)$)");
  const std::string text = Trimmed(literal.text);
  if (text.find('`') != std::string::npos || literal.text.starts_with('\t')) return false;
  if (text.find("SELECT ") != std::string::npos || text.find(".Set ") != std::string::npos) return false;
  if (literal.file.find("/ui/wx/") != std::string::npos) return text.find("help book") != std::string::npos;
  const Place place = PlaceOf(literal.before);
  if (std::regex_search(place.callee, kTeller)) return Words(text) >= 3;
  // Captions and texts of pages, and lines of the review list.
  if (place.arguments.starts_with("*this,") || place.arguments.starts_with("context,")) return false;
  if (place.arguments.starts_with("&") || place.callee.ends_with("Add")) return false;
  const bool sentence = text.ends_with('.') || text.ends_with('?') || text.ends_with(':');
  return sentence && Words(text) >= 4;
}

/// The messages that the document tells: lines that hold nothing but a list's sign and one piece of code.
std::vector<std::string> DocumentedMessages() {
  static const std::regex kLine("^- `(.*)`$");
  std::ifstream in(fs::path(KITWRIGHT_SOURCE_DIR) / "docs/troubleshooting.md");
  std::vector<std::string> messages;
  std::smatch match;
  for (std::string line; std::getline(in, line);) {
    if (std::regex_match(line, match, kLine)) messages.push_back(match[1]);
  }
  return messages;
}

/// The fixed parts of a documented message, between its <names>.
std::vector<std::string> PartsOf(const std::string& message) {
  static const std::regex kName("<[a-z]+>");
  std::vector<std::string> parts;
  for (std::sregex_token_iterator part(message.begin(), message.end(), kName, -1), end; part != end; ++part) {
    if (!Trimmed(*part).empty()) parts.push_back(Trimmed(*part));
  }
  return parts;
}

/// Whether at most `pieces` literals, one behind the other, make up the text from `at` on.
bool MadeOf(const std::string& text, size_t at, const std::set<std::string>& literals, int pieces) {
  while (at < text.size() && text[at] == ' ') ++at;
  if (at == text.size()) return true;
  if (pieces == 0) return false;
  for (size_t length = text.size() - at; length > 0; --length) {
    if (literals.contains(Trimmed(text.substr(at, length))) &&
        MadeOf(text, at + length, literals, pieces - 1)) {
      return true;
    }
  }
  return false;
}

TEST(Messages, EveryMessageOfTheCodeIsInTheTroubleshootingDocument) {
  std::string told;
  for (const std::string& message : DocumentedMessages()) told += message + "\n";
  std::vector<std::string> missing;
  int messages = 0;
  for (const Literal& literal : AllLiterals()) {
    if (!IsMessage(literal)) continue;
    ++messages;
    if (told.find(Trimmed(literal.text)) == std::string::npos)
      missing.push_back(literal.file + ": " + literal.text);
  }
  EXPECT_GT(messages, 150);
  EXPECT_THAT(missing, ::testing::IsEmpty());
}

TEST(Messages, TheTroubleshootingDocumentTellsNoMessageThatDoesNotExist) {
  std::set<std::string> literals;
  for (const Literal& literal : AllLiterals()) {
    const std::string text = Trimmed(literal.text);
    // Longer ones, and signs, so that no sentence can be put together from single words.
    if (text.size() > 3 || (!text.empty() && !std::isalnum(static_cast<unsigned char>(text[0]))))
      literals.insert(text);
  }
  literals.insert({"is", "are", "to", "UNC"});
  std::vector<std::string> unknown;
  const std::vector<std::string> messages = DocumentedMessages();
  for (const std::string& message : messages) {
    for (const std::string& part : PartsOf(message)) {
      if (!MadeOf(part, 0, literals, 5)) unknown.push_back(message + "  [" + part + "]");
    }
  }
  EXPECT_GT(messages.size(), 150U);
  EXPECT_THAT(unknown, ::testing::IsEmpty());
}

TEST(Messages, NoMessageIsToldTwice) {
  std::vector<std::string> messages = DocumentedMessages();
  std::sort(messages.begin(), messages.end());
  EXPECT_EQ(std::adjacent_find(messages.begin(), messages.end()), messages.end());
}

}  // namespace
