// Packs any bytes, some of them over and over so that several blocks come of them, and unpacks them again.

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "cabinet/block_encoder.h"
#include "cabinet/format.h"
#include "cabinet/history_inflater.h"
#include "fuzz/expect.h"

// The first byte says how often the rest comes; each time some of its bytes differ.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kw::cabinet::kBlockSize;
  if (size < 2) return 0;
  const std::span input = std::as_bytes(std::span(data, size)).subspan(1);
  std::vector<std::byte> content;
  for (size_t turn = 0; turn <= data[0] && content.size() < 3 * kBlockSize; ++turn) {
    content.insert(content.end(), input.begin(), input.end());
    content[content.size() - 1 - turn % input.size()] = static_cast<std::byte>(turn);
  }
  static kw::cabinet::BlockEncoder encoder;
  static kw::cabinet::HistoryInflater inflater;
  encoder.Restart();
  std::vector<std::byte> packed(kw::cabinet::kMaxCompressedBlock);
  std::vector<std::byte> unpacked(content.size());
  for (size_t at = 0; at < content.size(); at += kBlockSize) {
    const size_t block = std::min(kBlockSize, content.size() - at);
    const size_t length = encoder.Encode(content.data(), at, block, packed);
    kw::fuzz::Expect(length <= block + 7, "a block grows by what storing it takes at most");
    const size_t history = at == 0 ? 0 : kBlockSize;
    kw::fuzz::Expect(inflater.InflateBehind(std::span(packed).subspan(2, length - 2), history,
                                            std::span(unpacked).subspan(at - history, history + block)),
                     "what was packed is unpacked");
  }
  kw::fuzz::Expect(unpacked == content, "the bytes come back");
  return 0;
}
