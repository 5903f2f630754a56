#include "sample/archive/appended_cabinet.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>

#include "base/text.h"
#include "cabinet/cabinet_reader.h"
#include "cabinet/folder_sink.h"

namespace kw::sample {
namespace {

constexpr char kMark[] = "SMPLCAB1";
constexpr size_t kTrailerSize = 16;

/// A part of a file as if it were the whole file.
class FilePart : public StorageFile {
 public:
  FilePart(std::unique_ptr<StorageFile> file, AppendedCabinet part) : file_(std::move(file)), part_(part) {}

  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
    if (offset >= part_.size) return size_t{0};
    const uint64_t left = part_.size - offset;
    return file_->ReadAt(part_.offset + offset,
                         buffer.first(static_cast<size_t>(std::min<uint64_t>(left, buffer.size()))));
  }
  Status WriteAt(uint64_t, std::span<const std::byte>) override { return ReadOnly(); }
  Result<uint64_t> Size() override { return part_.size; }
  Status Truncate(uint64_t) override { return ReadOnly(); }
  Status Sync() override { return {}; }

 private:
  static Status ReadOnly() {
    return Status(kErrorAccessDenied, "The cabinet behind a program is only read.");
  }

  std::unique_ptr<StorageFile> file_;
  AppendedCabinet part_;
};

/// Opens the program as its cabinet and everything else as it is.
class PartStorage : public Storage {
 public:
  PartStorage(Storage& storage, std::string program, AppendedCabinet part)
      : storage_(storage), program_(std::move(program)), part_(part) {}

  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override {
    auto file = storage_.Open(path, mode);
    if (!file.ok() || path != program_) return file;
    return std::unique_ptr<StorageFile>(std::make_unique<FilePart>(std::move(*file), part_));
  }
  Status Rename(const std::string& from, const std::string& to) override { return storage_.Rename(from, to); }
  Status Remove(const std::string& path) override { return storage_.Remove(path); }
  bool Exists(const std::string& path) override { return storage_.Exists(path); }
  Status CreateFolder(const std::string& path) override { return storage_.CreateFolder(path); }

 private:
  Storage& storage_;
  std::string program_;
  AppendedCabinet part_;
};

Status CopyBytes(StorageFile& from, uint64_t size, StorageFile& to, uint64_t& at) {
  std::vector<std::byte> buffer(1 << 18);
  for (uint64_t done = 0; done < size;) {
    const size_t wanted = static_cast<size_t>(std::min<uint64_t>(buffer.size(), size - done));
    KW_ASSIGN_OR_RETURN(const size_t got, from.ReadAt(done, std::span(buffer).first(wanted)));
    if (got == 0) return Status(kErrorIo, "A file became shorter while it was read.");
    KW_RETURN_IF_ERROR(to.WriteAt(at, std::span(buffer).first(got)));
    done += got;
    at += got;
  }
  return {};
}

Status Join(Storage& storage, const std::string& program, uint64_t program_size, const std::string& cabinet,
            const std::string& out) {
  KW_ASSIGN_OR_RETURN(auto front, storage.Open(program, Storage::Mode::kRead));
  KW_ASSIGN_OR_RETURN(auto back, storage.Open(cabinet, Storage::Mode::kRead));
  KW_ASSIGN_OR_RETURN(const uint64_t size, back->Size());
  KW_ASSIGN_OR_RETURN(auto joined, OpenAnew(storage, out));
  uint64_t at = 0;
  KW_RETURN_IF_ERROR(CopyBytes(*front, program_size, *joined, at));
  KW_RETURN_IF_ERROR(CopyBytes(*back, size, *joined, at));
  std::array<char, kTrailerSize> trailer;
  std::memcpy(trailer.data(), kMark, 8);
  for (size_t i = 0; i < 8; ++i) trailer[8 + i] = static_cast<char>((size >> (8 * i)) & 0xFF);
  return joined->WriteAt(at, std::as_bytes(std::span(trailer)));
}

}  // namespace

Result<AppendedCabinet> FindAppendedCabinet(Storage& storage, const std::string& path) {
  const Error none{kErrorInvalidData, "There is no cabinet behind " + path + "."};
  KW_ASSIGN_OR_RETURN(auto file, storage.Open(path, Storage::Mode::kRead));
  KW_ASSIGN_OR_RETURN(const uint64_t size, file->Size());
  if (size < kTrailerSize) return none;
  std::array<std::byte, kTrailerSize> trailer;
  KW_ASSIGN_OR_RETURN(const size_t got, file->ReadAt(size - kTrailerSize, trailer));
  if (got != kTrailerSize || std::memcmp(trailer.data(), kMark, 8) != 0) return none;
  AppendedCabinet found;
  for (size_t i = 0; i < 8; ++i) found.size |= std::to_integer<uint64_t>(trailer[8 + i]) << (8 * i);
  if (found.size > size - kTrailerSize) return none;
  found.offset = size - kTrailerSize - found.size;
  return found;
}

Status ExtractAppendedCabinet(Storage& storage, const std::string& program, const std::string& folder,
                              int code_page, const std::vector<std::string>& names) {
  KW_ASSIGN_OR_RETURN(const AppendedCabinet part, FindAppendedCabinet(storage, program));
  PartStorage parts(storage, program, part);
  KW_ASSIGN_OR_RETURN(cabinet::CabinetReader reader, cabinet::CabinetReader::Open(parts, program, code_page));
  cabinet::FolderSink sink(storage, folder);
  return reader.Extract(sink, [&](const cabinet::CabinetEntry& entry) {
    return names.empty() || std::any_of(names.begin(), names.end(), [&](const std::string& name) {
             return EqualsNoCase(name, entry.name);
           });
  });
}

Status WriteBehindProgram(Storage& storage, const std::string& program,
                          const std::vector<cabinet::CabinetFile>& files, const std::string& target,
                          int code_page) {
  const Result<AppendedCabinet> present = FindAppendedCabinet(storage, program);
  uint64_t program_size = 0;
  if (present.ok()) {
    program_size = present->offset;
  } else {
    if (present.number() != kErrorInvalidData) return present.status();
    KW_ASSIGN_OR_RETURN(auto file, storage.Open(program, Storage::Mode::kRead));
    KW_ASSIGN_OR_RETURN(program_size, file->Size());
  }
  const std::string cabinet = target + ".cab.part";
  const std::string joined = target + ".part";
  cabinet::WriterOptions options;
  options.code_page = code_page;
  Status status = cabinet::WriteCabinet(storage, cabinet, files, options).status();
  if (status.ok()) status = Join(storage, program, program_size, cabinet, joined);
  if (status.ok()) status = storage.Rename(joined, target);
  if (!status.ok()) storage.Remove(joined).IgnoreError();
  storage.Remove(cabinet).IgnoreError();
  return status;
}

Result<std::vector<cabinet::CabinetFile>> FilesBelow(const std::string& folder) {
  std::vector<cabinet::CabinetFile> files;
  std::error_code error;
  std::filesystem::recursive_directory_iterator at(folder, error);
  for (; !error && at != std::filesystem::recursive_directory_iterator(); at.increment(error)) {
    if (!at->is_regular_file(error)) continue;
    cabinet::CabinetFile file;
    file.host_path = at->path().string();
    file.name = ReplaceAll(file.host_path.substr(folder.size() + 1), "/", "\\");
    files.push_back(std::move(file));
  }
  if (error) {
    return Result<std::vector<cabinet::CabinetFile>>(
        kErrorPathNotFound, "Could not list " + folder + ": " + error.message() + ".");
  }
  std::sort(files.begin(), files.end(),
            [](const auto& a, const auto& b) { return CompareNoCase(a.name, b.name) < 0; });
  return files;
}

}  // namespace kw::sample
