#ifndef KITWRIGHT_FORMATS_INI_FILE_H_
#define KITWRIGHT_FORMATS_INI_FILE_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::formats {

/// An initialisation file held as its lines, so that what is not changed keeps its bytes. Section and key
/// names compare without regard to case; the first section of a name and the first key in it win. Names and
/// values are UTF-8; the file is 8-bit text in a code page, UTF-8 with its mark or UTF-16LE with its mark.
class IniFile {
 public:
  /// Reads a file's bytes. Any bytes are a file: lines that mean nothing are kept and passed over.
  static IniFile Parse(std::string_view bytes, int code_page);

  /// The value of a key, trimmed of blanks and then of one pair of equal quotes around it.
  std::optional<std::string> Read(std::string_view section, std::string_view key) const;
  /// Names of the sections in file order, repeated ones too.
  std::vector<std::string> SectionNames() const;

  /// Replaces the value of a key in place, or adds the key behind the last line of its section that is not
  /// blank; a missing section is added at the end of the file. Fails, changing nothing, when the text has no
  /// place in the file's encoding (kErrorUnrepresentableText) or holds a line break
  /// (kErrorInvalidParameter).
  Status Write(std::string_view section, std::string_view key, std::string_view value);
  /// Deletes the first key of that name in the section; without one nothing happens.
  void DeleteKey(std::string_view section, std::string_view key);
  /// Deletes the first section of that name with all its lines; without one nothing happens.
  void DeleteSection(std::string_view section);

  /// The file's bytes: new lines end in CR LF, untouched ones are as they were read.
  std::string Serialize() const;

 private:
  enum class Encoding { kCodePage, kUtf8WithMark, kUtf16WithMark };
  struct Line {
    enum class Kind { kOther, kBlank, kSection, kKey };
    std::string raw;  // in the file's encoding, UTF-16 files: UTF-8; with its line end
    Kind kind = Kind::kOther;
    std::string name;   // of the section or key
    std::string value;  // of the key
  };

  std::string Decode(std::string_view raw) const;
  Result<std::string> Encode(std::string_view text) const;
  Line MakeLine(std::string_view raw) const;
  size_t FindSection(std::string_view section) const;
  size_t SectionEnd(size_t header) const;
  size_t FindKey(size_t header, std::string_view key) const;
  void EndLastLine();

  int code_page_ = 1252;
  Encoding encoding_ = Encoding::kCodePage;
  std::vector<Line> lines_;
};

}  // namespace kw::formats

#endif  // KITWRIGHT_FORMATS_INI_FILE_H_
