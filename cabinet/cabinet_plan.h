#ifndef KITWRIGHT_CABINET_CABINET_PLAN_H_
#define KITWRIGHT_CABINET_CABINET_PLAN_H_

#include <vector>

#include "cabinet/cabinet_writer.h"

namespace kw::cabinet {

/// Where each file goes in a cabinet, known before any content is read.
struct PlannedFile {
  std::string stored_name;  ///< bytes as they stand in the cabinet
  uint32_t size = 0;
  uint32_t offset = 0;  ///< of its first byte in its folder
  uint16_t folder = 0;
  FileStamp stamp;
};

struct PlannedFolder {
  uint32_t size = 0;    ///< uncompressed bytes
  uint16_t blocks = 0;  ///< data blocks
};

struct CabinetPlan {
  std::vector<PlannedFile> files;
  std::vector<PlannedFolder> folders;
  uint64_t content_size = 0;
  /// Bytes before the first data block, and of those the ones before the file records.
  uint64_t head_size = 0;
  uint64_t files_offset = 0;
};

/// Looks at every file and lays out the cabinet, or says why it cannot be made. `largest_folder` is
/// kMaxFolderSize but in tests.
Result<CabinetPlan> PlanCabinet(Storage& storage, const std::vector<CabinetFile>& files,
                                const WriterOptions& options, uint32_t largest_folder = kMaxFolderSize);

/// The bytes before the first data block. `folder_offsets` has the place of each folder's first block.
std::vector<std::byte> HeadOf(const CabinetPlan& plan, const WriterOptions& options,
                              const std::vector<uint64_t>& folder_offsets, uint64_t cabinet_size);

/// WriteCabinet for a finished plan.
Result<WrittenCabinet> WritePlannedCabinet(Storage& storage, const std::string& path,
                                           const std::vector<CabinetFile>& files,
                                           const WriterOptions& options, const CabinetPlan& plan);

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_CABINET_PLAN_H_
