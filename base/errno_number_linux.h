#ifndef KITWRIGHT_BASE_ERRNO_NUMBER_LINUX_H_
#define KITWRIGHT_BASE_ERRNO_NUMBER_LINUX_H_

namespace kw {

/// The ErrorNumber of an `errno` from a file operation. A missing file and a missing folder are one `errno`:
/// both give kErrorFileNotFound.
int ErrorNumberOfErrno(int error);

}  // namespace kw

#endif  // KITWRIGHT_BASE_ERRNO_NUMBER_LINUX_H_
