#include "base/errno_number_linux.h"

#include <cerrno>

#include "base/result.h"

namespace kw {

int ErrorNumberOfErrno(int error) {
  switch (error) {
    case ENOENT:
      return kErrorFileNotFound;
    case ENOTDIR:
      return kErrorPathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      return kErrorAccessDenied;
    case EEXIST:
      return kErrorFileExists;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return kErrorDiskFull;
    case EBUSY:
    case EWOULDBLOCK:
    case ETXTBSY:
      return kErrorSharingViolation;
    case ENAMETOOLONG:
    case EILSEQ:
      return kErrorInvalidName;
    default:
      return kErrorIo;
  }
}

}  // namespace kw
