#include <cstdint>
#include <string>
#include <string_view>

#include "formats/version_block.h"

namespace {

class Input : public kw::formats::ByteSource {
 public:
  explicit Input(std::string_view bytes) : bytes_(bytes) {}
  kw::Result<std::string> Read(uint64_t offset, size_t length) override {
    if (offset >= bytes_.size()) return std::string();
    return std::string(bytes_.substr(static_cast<size_t>(offset), length));
  }

 private:
  std::string_view bytes_;
};

}  // namespace

// The input is tried as a whole program and as a bare version resource.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  Input input(bytes);
  if (const auto resource = kw::formats::FindVersionResource(input); resource.ok()) {
    kw::formats::ParseVersionBlock(*resource).status().IgnoreError();
  }
  kw::formats::ParseVersionBlock(bytes).status().IgnoreError();
  return 0;
}
