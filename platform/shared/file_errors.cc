#include "platform/shared/file_errors.h"

namespace kw::platform {
namespace {

std::string Reason(int number) {
  switch (number) {
    case kErrorFileNotFound:
      return "it does not exist";
    case kErrorPathNotFound:
      return "the folder does not exist";
    case kErrorAccessDenied:
      return "access is denied";
    case kErrorSharingViolation:
      return "it is in use";
    case kErrorFileExists:
    case kErrorAlreadyExists:
      return "it exists already";
    case kErrorDiskFull:
      return "the disk is full";
    case kErrorInvalidName:
      return "the name is not allowed";
    case kErrorDirectoryNotEmpty:
      return "the folder is not empty";
    default:
      return "error " + std::to_string(number);
  }
}

}  // namespace

Error FileError(int number, std::string_view what, std::string_view path) {
  return {number, "Could not " + std::string(what) + " " + std::string(path) + ": " + Reason(number) + "."};
}

bool HasBadNameCharacter(std::string_view full_path) {
  for (size_t i = 0; i < full_path.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(full_path[i]);
    if (c < 0x20) return true;
    if (c == ':' && i != 1) return true;
    if (std::string_view("<>\"|?*").find(static_cast<char>(c)) != std::string_view::npos) return true;
  }
  return false;
}

}  // namespace kw::platform
