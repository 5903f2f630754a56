#include "cabinet/mspack_folder.h"

#include <mspack.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace kw::cabinet {
namespace {

// The library reads whole cabinets only. It is shown one that holds nothing but the folder, as a single file:
// a head made here, and behind it the folder's blocks as they lie in the real cabinet.
constexpr size_t kShownHead = kHeaderSize + kReserveFieldsSize + kFolderRecordSize + kFileRecordSize + 2;

struct Shown {
  mspack_system system{};  // first, so that the library's pointer to it is a pointer to this
  StorageFile* file = nullptr;
  const TakeBytes* take = nullptr;
  uint64_t data_offset = 0;
  uint64_t size = 0;
  std::byte head[kShownHead] = {};
  bool stopped = false;
  Status read_outcome;
};

struct Stream {
  Shown* shown;
  uint64_t position;
};

Stream* StreamOf(mspack_file* file) { return reinterpret_cast<Stream*>(file); }

mspack_file* Open(mspack_system* self, const char*, int) {
  auto* stream = static_cast<Stream*>(std::malloc(sizeof(Stream)));
  if (stream != nullptr) *stream = {reinterpret_cast<Shown*>(self), 0};
  return reinterpret_cast<mspack_file*>(stream);
}

void Close(mspack_file* file) { std::free(file); }

int Read(mspack_file* file, void* buffer, int bytes) {
  Stream& stream = *StreamOf(file);
  Shown& shown = *stream.shown;
  auto* out = static_cast<std::byte*>(buffer);
  size_t done = 0;
  const size_t want = static_cast<size_t>(std::max(bytes, 0));
  while (done < want && stream.position < kShownHead) out[done++] = shown.head[stream.position++];
  if (done < want) {
    const Result<size_t> got =
        shown.file->ReadAt(shown.data_offset + stream.position - kShownHead, {out + done, want - done});
    if (!got.ok()) {
      shown.read_outcome = got.status();
      return -1;
    }
    stream.position += *got;
    done += *got;
  }
  return static_cast<int>(done);
}

int Write(mspack_file* file, void* buffer, int bytes) {
  Shown& shown = *StreamOf(file)->shown;
  if (!(*shown.take)({static_cast<const std::byte*>(buffer), static_cast<size_t>(bytes)})) {
    shown.stopped = true;
    return -1;
  }
  return bytes;
}

int Seek(mspack_file* file, off_t offset, int mode) {
  Stream& stream = *StreamOf(file);
  const int64_t base = mode == MSPACK_SYS_SEEK_START ? 0
                       : mode == MSPACK_SYS_SEEK_CUR ? static_cast<int64_t>(stream.position)
                                                     : static_cast<int64_t>(stream.shown->size);
  if (base + offset < 0) return -1;
  stream.position = static_cast<uint64_t>(base + offset);
  return 0;
}

off_t Tell(mspack_file* file) { return static_cast<off_t>(StreamOf(file)->position); }
void Message(mspack_file*, const char*, ...) {}
void* Alloc(mspack_system*, size_t bytes) { return std::malloc(bytes); }
void Free(void* memory) { std::free(memory); }
void Copy(void* from, void* to, size_t bytes) { std::memcpy(to, from, bytes); }

struct DestroyDecompressor {
  void operator()(mscab_decompressor* cab) const { mspack_destroy_cab_decompressor(cab); }
};

const char* Sentence(int error) {
  switch (error) {
    case MSPACK_ERR_CHECKSUM:
      return "a data block does not match its checksum.";
    case MSPACK_ERR_READ:
    case MSPACK_ERR_SEEK:
      return "a data block is cut off.";
    case MSPACK_ERR_NOMEMORY:
      return "there is not enough memory.";
    default:
      return "a data block is damaged.";
  }
}

}  // namespace

Status DecodeFolderWithMspack(StorageFile& file, const CabinetFolder& folder, uint8_t reserved_data,
                              uint64_t end, const TakeBytes& take) {
  Shown shown;
  shown.system = {Open, Close, Read, Write, Seek, Tell, Message, Alloc, Free, Copy, nullptr};
  shown.file = &file;
  shown.take = &take;
  shown.data_offset = folder.data_offset;
  KW_ASSIGN_OR_RETURN(const uint64_t real_size, file.Size());
  shown.size = kShownHead + (real_size - std::min<uint64_t>(real_size, folder.data_offset));
  const uint64_t content = std::min<uint64_t>(end, uint64_t{folder.blocks} * kBlockSize);
  std::byte* at = shown.head;
  PutU32(at, kSignature);
  PutU32(at + 8, static_cast<uint32_t>(std::min<uint64_t>(shown.size, kMaxCabinetSize)));
  PutU32(at + 16, kShownHead - kFileRecordSize - 2);
  at[24] = std::byte{3};
  at[25] = std::byte{1};
  PutU16(at + 26, 1);
  PutU16(at + 28, 1);
  PutU16(at + 30, kFlagReserve);
  at += kHeaderSize;
  at[3] = std::byte{reserved_data};
  at += kReserveFieldsSize;
  PutU32(at, kShownHead);
  PutU16(at + 4, folder.blocks);
  PutU16(at + 6, folder.type);
  at += kFolderRecordSize;
  PutU32(at, static_cast<uint32_t>(content));
  PutU16(at + 10, 0x21);
  at[kFileRecordSize] = std::byte{'x'};

  const std::unique_ptr<mscab_decompressor, DestroyDecompressor> cab(
      mspack_create_cab_decompressor(&shown.system));
  if (cab == nullptr) return {kErrorFunctionFailed, "the decompressor could not be started."};
  mscabd_cabinet* opened = cab->open(cab.get(), "folder");
  if (opened == nullptr) return {kErrorInvalidData, Sentence(cab->last_error(cab.get()))};
  const int error = cab->extract(cab.get(), opened->files, "content");
  cab->close(cab.get(), opened);
  if (shown.stopped || error == MSPACK_ERR_OK) return {};
  if (!shown.read_outcome.ok()) return shown.read_outcome;
  return {kErrorInvalidData, Sentence(error)};
}

}  // namespace kw::cabinet
