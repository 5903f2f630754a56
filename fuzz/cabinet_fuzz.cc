// Opens any bytes as a cabinet and unpacks all of it: no crash, and no entry longer than its record says.

#include <cstdlib>

#include "base/testing/memory_storage.h"
#include "cabinet/cabinet_reader.h"

namespace {

class CountingSink : public kw::cabinet::EntrySink {
 public:
  kw::Status Begin(const kw::cabinet::CabinetEntry& entry) override {
    left_ = entry.size;
    return {};
  }
  kw::Status Write(std::span<const std::byte> data) override {
    if (data.size() > left_) std::abort();
    left_ -= data.size();
    return {};
  }
  kw::Status End(const kw::cabinet::CabinetEntry&, const kw::Status& outcome) override {
    if (outcome.ok() && left_ != 0) std::abort();
    return {};
  }

 private:
  uint64_t left_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kw::testing::MemoryStorage storage;
  storage.Content("input").assign(reinterpret_cast<const char*>(data), size);
  auto reader = kw::cabinet::CabinetReader::Open(storage, "input", 1252);
  if (!reader.ok()) return 0;
  CountingSink sink;
  reader->Extract(sink, {}, 1).IgnoreError();
  return 0;
}
