#ifndef KITWRIGHT_CABINET_BLOCK_ENCODER_H_
#define KITWRIGHT_CABINET_BLOCK_ENCODER_H_

#include <cstddef>
#include <memory>
#include <span>

struct libdeflate_compressor;
struct z_stream_s;

namespace kw::cabinet {

/// Packs one block of at most kBlockSize bytes as MSZIP: the mark "CK" and one DEFLATE stream. Blocks are
/// packed without what came before them, so that any number of threads gives the same bytes. docs/cabinets.md
/// holds the measurements behind the choice of encoder. One encoder serves one thread at a time.
class BlockEncoder {
 public:
  BlockEncoder();

  /// Packs `block` into `out`, which holds at least kMaxCompressedBlock bytes; gives the packed size. Data
  /// that does not shrink is stored inside the stream.
  size_t Encode(std::span<const std::byte> block, std::span<std::byte> out);

 private:
  struct Free {
    void operator()(libdeflate_compressor* compressor) const;
  };
  struct FreeStream {
    void operator()(z_stream_s* stream) const;
  };
  size_t EncodeCarefully(std::span<const std::byte> block, std::span<std::byte> out);

  std::unique_ptr<libdeflate_compressor, Free> compressor_;
  std::unique_ptr<z_stream_s, FreeStream> careful_;  // made when first needed
};

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_BLOCK_ENCODER_H_
