#ifndef KITWRIGHT_CABINET_CABINET_WRITER_H_
#define KITWRIGHT_CABINET_CABINET_WRITER_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "base/storage.h"
#include "cabinet/format.h"
#include "cabinet/host_file.h"

namespace kw::cabinet {

/// One file to pack.
struct CabinetFile {
  std::string host_path;           ///< where its content is, a host path in UTF-8
  std::string name;                ///< the entry's name in UTF-8, kept as it is
  std::optional<FileStamp> stamp;  ///< date, time and attributes; those of the host file when not given
};

struct WriterOptions {
  bool compress = true;          ///< MSZIP; else stored
  uint16_t reserved_header = 0;  ///< bytes of zeros kept free behind the header, at most kMaxReservedHeader
  int code_page = 1252;          ///< of entry names; a name it cannot hold is kept in UTF-8 and marked so
  unsigned threads = 0;          ///< packing threads; 0 means one for each processor. The output is the same
  uint64_t max_size = kMaxCabinetSize;  ///< a cabinet that would grow beyond this fails
};

/// What was written.
struct WrittenCabinet {
  uint64_t size = 0;          ///< bytes of the cabinet
  uint64_t content_size = 0;  ///< bytes of all files
  size_t folders = 0;
  std::vector<uint64_t> sizes;  ///< bytes of each file, in the order given
};

/// Packs `files` in the given order into one new cabinet at the host path `path`. A new folder inside the
/// cabinet is begun when the present one can take no more. Files are read once, in pieces. What cannot fit
/// (too many files, a file or name that is too long) is refused before anything is written. The cabinet grows
/// under another name beside `path` and takes its place at the end, so that a failure leaves `path` as it
/// was.
Result<WrittenCabinet> WriteCabinet(Storage& storage, const std::string& path,
                                    const std::vector<CabinetFile>& files, const WriterOptions& options);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_CABINET_WRITER_H_
