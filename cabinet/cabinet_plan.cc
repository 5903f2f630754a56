#include "cabinet/cabinet_plan.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"

namespace kw::cabinet {
namespace {

Result<PlannedFile> PlanFile(Storage& storage, const CabinetFile& file, int code_page) {
  PlannedFile planned;
  uint64_t size = 0;
  if (file.stamp) {
    planned.stamp = *file.stamp;
    KW_ASSIGN_OR_RETURN(auto open, storage.Open(file.host_path, Storage::Mode::kRead));
    KW_ASSIGN_OR_RETURN(size, open->Size());
  } else {
    KW_ASSIGN_OR_RETURN(const HostFileInfo info, LookAtHostFile(file.host_path));
    planned.stamp = info.stamp;
    size = info.size;
  }
  if (size > kMaxFolderSize) {
    return {kErrorUnsupported, file.host_path + " is too large for a cabinet."};
  }
  planned.size = static_cast<uint32_t>(size);
  planned.stamp.attributes &= static_cast<uint16_t>(~kNameIsUtf8);
  Result<std::string> name = Utf8ToCodePage(file.name, code_page);
  if (!name.ok()) planned.stamp.attributes |= kNameIsUtf8;
  planned.stored_name = name.value_or(file.name);
  if (planned.stored_name.empty() || planned.stored_name.size() > kMaxNameSize ||
      planned.stored_name.find('\0') != std::string::npos || !IsValidUtf8(file.name)) {
    return {kErrorInvalidName, "The name \"" + file.name + "\" cannot stand in a cabinet."};
  }
  return planned;
}

uint64_t FixedSize(const WriterOptions& options) {
  return kHeaderSize + (options.reserved_header == 0 ? 0 : kReserveFieldsSize + options.reserved_header);
}

}  // namespace

Result<CabinetPlan> PlanCabinet(Storage& storage, const std::vector<CabinetFile>& files,
                                const WriterOptions& options, uint32_t largest_folder) {
  if (files.size() > kMaxEntries) {
    return {kErrorUnsupported, std::to_string(files.size()) +
                                   " files are too many for one cabinet; it holds " +
                                   std::to_string(kMaxEntries) + "."};
  }
  if (options.reserved_header > kMaxReservedHeader) {
    return {kErrorInvalidParameter, "A cabinet cannot reserve " + std::to_string(options.reserved_header) +
                                        " bytes; the most is " + std::to_string(kMaxReservedHeader) + "."};
  }
  // A folder that were filled to the last block of a full size would need one block more than can be counted.
  const uint32_t folder_limit =
      static_cast<uint32_t>(std::min<uint64_t>(largest_folder, uint64_t{kMaxBlocksInFolder} * kBlockSize));
  CabinetPlan plan;
  plan.files.reserve(files.size());
  uint64_t names = 0;
  for (const CabinetFile& file : files) {
    KW_ASSIGN_OR_RETURN(PlannedFile planned, PlanFile(storage, file, options.code_page));
    if (plan.folders.empty() ||
        planned.size > folder_limit - std::min(folder_limit, plan.folders.back().size)) {
      plan.folders.emplace_back();
    }
    PlannedFolder& folder = plan.folders.back();
    planned.folder = static_cast<uint16_t>(plan.folders.size() - 1);
    planned.offset = folder.size;
    folder.size += planned.size;
    folder.blocks = static_cast<uint16_t>((folder.size + kBlockSize - 1) / kBlockSize);
    plan.content_size += planned.size;
    names += planned.stored_name.size() + 1;
    plan.files.push_back(std::move(planned));
  }
  plan.files_offset = FixedSize(options) + plan.folders.size() * kFolderRecordSize;
  plan.head_size = plan.files_offset + plan.files.size() * kFileRecordSize + names;
  const uint64_t least = plan.head_size + (options.compress ? 0 : plan.content_size);
  if (least > std::min<uint64_t>(options.max_size, kMaxCabinetSize)) {
    return {kErrorUnsupported, "The files are too large for one cabinet."};
  }
  return plan;
}

std::vector<std::byte> HeadOf(const CabinetPlan& plan, const WriterOptions& options,
                              const std::vector<uint64_t>& folder_offsets, uint64_t cabinet_size) {
  std::vector<std::byte> head(static_cast<size_t>(plan.head_size));
  PutU32(&head[0], kSignature);
  PutU32(&head[8], static_cast<uint32_t>(cabinet_size));
  PutU32(&head[16], static_cast<uint32_t>(plan.files_offset));
  head[24] = std::byte{3};
  head[25] = std::byte{1};
  PutU16(&head[26], static_cast<uint16_t>(plan.folders.size()));
  PutU16(&head[28], static_cast<uint16_t>(plan.files.size()));
  if (options.reserved_header != 0) {
    PutU16(&head[30], kFlagReserve);
    PutU16(&head[kHeaderSize], options.reserved_header);
  }
  std::byte* at = head.data() + FixedSize(options);
  for (size_t i = 0; i < plan.folders.size(); ++i, at += kFolderRecordSize) {
    PutU32(at, static_cast<uint32_t>(folder_offsets[i]));
    PutU16(at + 4, plan.folders[i].blocks);
    PutU16(at + 6, options.compress ? kMszip : kStored);
  }
  for (const PlannedFile& file : plan.files) {
    PutU32(at, file.size);
    PutU32(at + 4, file.offset);
    PutU16(at + 8, file.folder);
    PutU16(at + 10, file.stamp.date);
    PutU16(at + 12, file.stamp.time);
    PutU16(at + 14, file.stamp.attributes);
    std::memcpy(at + kFileRecordSize, file.stored_name.c_str(), file.stored_name.size() + 1);
    at += kFileRecordSize + file.stored_name.size() + 1;
  }
  return head;
}

}  // namespace kw::cabinet
