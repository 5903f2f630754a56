#ifndef KITWRIGHT_FORMATS_REG_FILE_H_
#define KITWRIGHT_FORMATS_REG_FILE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::formats {

/// One value line of a registry-editor file.
struct RegFileValue {
  std::string name;      ///< UTF-8; "" is the default value
  bool deleted = false;  ///< the line deletes the value; no type or data then
  uint32_t type = 0;     ///< the system's number: 1 text, 3 bytes, 4 a 32-bit number, ...
  std::string data;      ///< text types (1, 2, 7): UTF-8 with the stored NULs; others: the raw bytes
};

/// One key of a registry-editor file, with the values that follow it.
struct RegFileKey {
  std::string path;      ///< as written between the brackets, root key included
  bool deleted = false;  ///< the line deletes the key with all below it; no values then
  std::vector<RegFileValue> values;
};

struct RegFile {
  std::vector<RegFileKey> keys;  ///< in file order; a key may come more than once
  size_t bad_lines = 0;          ///< lines that mean nothing; they were passed over
};

/// Reads a registry-editor file: version 5.00 in UTF-16 or UTF-8 with its mark, or 8-bit (UTF-8 where the
/// bytes are that, otherwise `code_page`), and REGEDIT4 in `code_page`. Fails with kErrorInvalidData when the
/// first line is no header of such a file. Damaged lines are counted and passed over.
Result<RegFile> ParseRegFile(std::string_view bytes, int code_page);

/// As ParseRegFile, for UTF-8 text without the header line.
RegFile ParseRegLines(std::string_view utf8);

/// Writes the lines of a registry-editor file as UTF-8 with CR LF, hexadecimal data wrapped as the registry
/// editor does it: no line is longer than 80 characters unless its name is.
class RegFileWriter {
 public:
  /// Starts a key, behind an empty line.
  void AddKey(std::string_view path);
  void AddKeyDeletion(std::string_view path);
  /// A value of the key started last.
  void AddValue(std::string_view name, uint32_t type, std::string_view data);
  void AddValueDeletion(std::string_view name);

  /// The lines alone, in UTF-8.
  const std::string& lines() const { return lines_; }
  /// The whole version 5.00 file in UTF-16LE with its mark.
  std::string File() const;

 private:
  std::string lines_;
};

/// True for the types whose data is text (1, 2 and 7).
bool RegTypeIsText(uint32_t type);

}  // namespace kw::formats

#endif  // KITWRIGHT_FORMATS_REG_FILE_H_
