#include "platform/shared/pe_file_versions.h"

#include <memory>

#include "formats/version_block.h"

namespace kw::platform {
namespace {

// Reads at places out of a file that can only be read on: the last stretch read is kept, what lies between is
// read and dropped, and going back begins anew. A program's headers and resources mostly lie in order.
class ForwardSource : public formats::ByteSource {
 public:
  ForwardSource(FileSystem& files, const std::string& path) : files_(files), path_(path) {}

  Result<std::string> Read(uint64_t offset, size_t length) override {
    if (!handle_ || offset < begin_) {
      KW_ASSIGN_OR_RETURN(handle_, files_.Open(path_, OpenHow::kReadExisting));
      kept_.clear();
      begin_ = 0;
      at_end_ = false;
    }
    while (begin_ + kept_.size() < offset + length && !at_end_) {
      if (begin_ + kept_.size() <= offset) {
        begin_ += kept_.size();
        kept_.clear();
      }
      KW_ASSIGN_OR_RETURN(const std::string more, handle_->Read(kStretch));
      at_end_ = more.size() < kStretch;
      kept_ += more;
    }
    if (offset - begin_ >= kept_.size()) return std::string();
    return kept_.substr(static_cast<size_t>(offset - begin_), length);
  }

 private:
  static constexpr size_t kStretch = 65536;

  FileSystem& files_;
  const std::string& path_;
  std::unique_ptr<FileHandle> handle_;
  std::string kept_;
  uint64_t begin_ = 0;  // the place of kept_ in the file
  bool at_end_ = false;
};

}  // namespace

Result<FileVersion> PeFileVersions::Read(const std::string& path) {
  ForwardSource source(files_, path);
  const auto resource = formats::FindVersionResource(source);
  if (!resource.ok()) return {resource.number(), path + ": " + resource.error().message};
  auto block = formats::ParseVersionBlock(*resource);
  if (!block.ok()) return {block.number(), path + ": " + block.error().message};
  FileVersion version;
  version.has_fixed = block->has_fixed;
  version.file = block->file;
  version.product = block->product;
  version.translations = std::move(block->translations);
  for (formats::VersionBlock::Table& table : block->tables) {
    auto& strings = version.strings[table.digits];
    for (auto& [name, value] : table.strings) strings.try_emplace(std::move(name), std::move(value));
  }
  return version;
}

}  // namespace kw::platform
