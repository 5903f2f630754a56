#ifndef KITWRIGHT_SAMPLE_PACKAGE_OUTPUT_H_
#define KITWRIGHT_SAMPLE_PACKAGE_OUTPUT_H_

#include <filesystem>
#include <string>
#include <string_view>

#include "base/result.h"

namespace kw::sample {

/// Files below one folder of the host, written with their missing folders. Remembers the first failure, so
/// that a writer of many files asks once at its end.
class Output {
 public:
  explicit Output(std::filesystem::path folder) : folder_(std::move(folder)) {}

  /// Writes a file of raw bytes.
  void Write(const std::string& path, std::string_view bytes);
  /// Writes 8-bit text with CR LF line ends in place of LF.
  void WriteText(const std::string& path, std::string_view text);
  /// Copies a host file.
  void Copy(const std::filesystem::path& from, const std::string& path);
  void MakeFolder(const std::string& path);

  /// Takes a failure that happened elsewhere; the first one counts.
  void Fail(const Status& status) {
    if (status_.ok()) status_ = status;
  }

  const Status& status() const { return status_; }

 private:
  std::filesystem::path folder_;
  Status status_;
};

/// Bytes that look like data: always the same for the same name and size.
std::string MadeUpData(std::string_view name, int size);
/// Lines of text that name the file and the product: always the same for the same arguments.
std::string MadeUpText(std::string_view name, std::string_view product, int size);
/// A GUID text in braces, always the same for the same seed.
std::string MadeUpGuid(std::string_view seed);

/// The path below a machine's folder of a path on its drive C: "C:\Temp" gives "drive_c/Temp".
std::string OnDrive(std::string_view windows_path);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_PACKAGE_OUTPUT_H_
