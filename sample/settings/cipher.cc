#include "sample/settings/cipher.h"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "base/text.h"

namespace kw::sample {
namespace {

constexpr std::string_view kMark = "ZEDCFG1\n";
constexpr size_t kPiece = 64 * 1024;
constexpr size_t kSealedPiece = kPiece + crypto_secretstream_xchacha20poly1305_ABYTES;
constexpr size_t kHeader = crypto_secretstream_xchacha20poly1305_HEADERBYTES;

using Key = std::array<unsigned char, crypto_secretstream_xchacha20poly1305_KEYBYTES>;

Key MakeKey(std::string_view purpose) {
  static constexpr std::string_view kOwner = "Kestrane Enterprise settings, stand-in library";
  Key key;
  crypto_generichash(key.data(), key.size(), reinterpret_cast<const unsigned char*>(kOwner.data()),
                     kOwner.size(), reinterpret_cast<const unsigned char*>(purpose.data()), purpose.size());
  return key;
}

const Key& FileKey() {
  static const Key key = MakeKey("settings files of this product");
  return key;
}

unsigned char* Bytes(std::vector<std::byte>& bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }

Error Damaged(const std::string& path) { return {kErrorInvalidData, path + " does not decipher."}; }

/// Reads up to `size` bytes at `at`; fewer only at the end.
Result<std::vector<std::byte>> ReadPiece(StorageFile& file, uint64_t at, size_t size) {
  std::vector<std::byte> piece(size);
  size_t filled = 0;
  while (filled < size) {
    KW_ASSIGN_OR_RETURN(const size_t got, file.ReadAt(at + filled, std::span(piece).subspan(filled)));
    if (got == 0) break;
    filled += got;
  }
  piece.resize(filled);
  return piece;
}

Status Seal(StorageFile& from, StorageFile& to) {
  KW_ASSIGN_OR_RETURN(const uint64_t size, from.Size());
  crypto_secretstream_xchacha20poly1305_state state;
  std::vector<std::byte> head(kMark.size() + kHeader);
  std::memcpy(head.data(), kMark.data(), kMark.size());
  crypto_secretstream_xchacha20poly1305_init_push(&state, Bytes(head) + kMark.size(), FileKey().data());
  KW_RETURN_IF_ERROR(to.WriteAt(0, head));
  uint64_t out = head.size();
  uint64_t at = 0;
  std::vector<std::byte> sealed(kSealedPiece);
  do {
    KW_ASSIGN_OR_RETURN(std::vector<std::byte> piece, ReadPiece(from, at, kPiece));
    at += piece.size();
    const bool last = at >= size || piece.size() < kPiece;
    unsigned long long length = 0;
    crypto_secretstream_xchacha20poly1305_push(&state, Bytes(sealed), &length, Bytes(piece), piece.size(),
                                               reinterpret_cast<const unsigned char*>(kMark.data()),
                                               kMark.size(),
                                               last ? crypto_secretstream_xchacha20poly1305_TAG_FINAL : 0);
    KW_RETURN_IF_ERROR(to.WriteAt(out, std::span(sealed).first(length)));
    out += length;
    if (last) return {};
  } while (true);
}

Status Unseal(StorageFile& from, StorageFile& to, const std::string& name) {
  KW_ASSIGN_OR_RETURN(std::vector<std::byte> head, ReadPiece(from, 0, kMark.size() + kHeader));
  crypto_secretstream_xchacha20poly1305_state state;
  if (head.size() != kMark.size() + kHeader || std::memcmp(head.data(), kMark.data(), kMark.size()) != 0 ||
      crypto_secretstream_xchacha20poly1305_init_pull(&state, Bytes(head) + kMark.size(), FileKey().data()) !=
          0) {
    return Damaged(name);
  }
  uint64_t at = head.size();
  uint64_t out = 0;
  std::vector<std::byte> plain(kPiece);
  while (true) {
    KW_ASSIGN_OR_RETURN(std::vector<std::byte> piece, ReadPiece(from, at, kSealedPiece));
    at += piece.size();
    unsigned long long length = 0;
    unsigned char tag = 0;
    if (crypto_secretstream_xchacha20poly1305_pull(
            &state, Bytes(plain), &length, &tag, Bytes(piece), piece.size(),
            reinterpret_cast<const unsigned char*>(kMark.data()), kMark.size()) != 0) {
      return Damaged(name);
    }
    KW_RETURN_IF_ERROR(to.WriteAt(out, std::span(plain).first(length)));
    out += length;
    if (tag == crypto_secretstream_xchacha20poly1305_TAG_FINAL) break;
  }
  KW_ASSIGN_OR_RETURN(const uint64_t size, from.Size());
  return at == size ? Status() : Status(Damaged(name));
}

template <typename Convert>
Status ConvertFile(Storage& storage, const std::string& source, const std::string& target, Convert convert) {
  if (sodium_init() < 0) return Status(kErrorFunctionFailed, "The cipher library does not start.");
  const std::string part = target + ".part";
  Status status;
  {
    KW_ASSIGN_OR_RETURN(auto from, storage.Open(source, Storage::Mode::kRead));
    KW_ASSIGN_OR_RETURN(auto to, OpenAnew(storage, part));
    status = convert(*from, *to);
  }
  if (status.ok()) status = storage.Rename(part, target);
  if (!status.ok()) storage.Remove(part).IgnoreError();
  return status;
}

/// True for a control character of the upper half, and for one of no meaning that stands for a byte that the
/// page leaves open.
bool IsOddCharacter(const std::string& utf8) {
  const std::u16string character = Utf8ToUtf16(utf8);
  return character.size() != 1 || character[0] < 0xA0 || (character[0] >= 0xE000 && character[0] < 0xF900);
}

/// The bytes of a code page that are one character each, without control characters, in order.
std::string Alphabet(int code_page, bool ascii) {
  std::string letters;
  for (int byte = ascii ? 0x20 : 0x80; byte < (ascii ? 0x7F : 0x100); ++byte) {
    const std::string utf8 = CodePageToUtf8(std::string(1, static_cast<char>(byte)), code_page);
    const Result<std::string> back = Utf8ToCodePage(utf8, code_page);
    if (!ascii && IsOddCharacter(utf8)) continue;
    if (back.ok() && back->size() == 1 && (*back)[0] == static_cast<char>(byte))
      letters += static_cast<char>(byte);
  }
  return letters;
}

/// True if no byte of the page begins a character of several bytes.
bool CodePageIsSingleByte(int code_page) {
  return code_page != 65001 && code_page != 932 && code_page != 936 && code_page != 949 && code_page != 950;
}

}  // namespace

Status EncipherFile(Storage& storage, const std::string& source, const std::string& target) {
  return ConvertFile(storage, source, target,
                     [](StorageFile& from, StorageFile& to) { return Seal(from, to); });
}

Status DecipherFile(Storage& storage, const std::string& source, const std::string& target) {
  return ConvertFile(storage, source, target,
                     [&](StorageFile& from, StorageFile& to) { return Unseal(from, to, source); });
}

std::string CipherText(std::string text, int code_page, bool encipher) {
  if (text.empty() || sodium_init() < 0) return text;
  static const Key key = MakeKey("texts in settings");
  static_assert(std::tuple_size_v<Key> == crypto_stream_chacha20_KEYBYTES);
  const unsigned char nonce[crypto_stream_chacha20_NONCEBYTES] = {};
  std::vector<unsigned char> stream(text.size() * 2);
  crypto_stream_chacha20(stream.data(), stream.size(), nonce, key.data());
  const std::string ascii = Alphabet(code_page, true);
  // Pages with characters of several bytes know no lone upper bytes to choose from.
  const bool one_byte = CodePageIsSingleByte(code_page);
  const std::string upper = one_byte ? Alphabet(code_page, false) : "";
  for (size_t i = 0; i < text.size(); ++i) {
    const unsigned char byte = static_cast<unsigned char>(text[i]);
    const size_t random = stream[2 * i] | static_cast<size_t>(stream[2 * i + 1]) << 8;
    const std::string& letters = byte < 0x80 ? ascii : upper;
    const size_t at = letters.find(text[i]);
    if (at != std::string::npos) {
      // Never a step of nothing: no character stays what it was.
      const size_t step = 1 + random % (letters.size() - 1);
      text[i] = letters[(at + (encipher ? step : letters.size() - step)) % letters.size()];
    } else if (byte >= 0x80) {
      text[i] = ascii[(byte + random) % ascii.size()];
    }
  }
  return text;
}

}  // namespace kw::sample
