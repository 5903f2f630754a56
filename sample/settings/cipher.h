#ifndef KITWRIGHT_SAMPLE_SETTINGS_CIPHER_H_
#define KITWRIGHT_SAMPLE_SETTINGS_CIPHER_H_

#include <string>

#include "base/result.h"
#include "base/storage.h"

namespace kw::sample {

// The cipher of the stand-in library: libsodium's, with a key of the library's own that never leaves it.

/// Enciphers a host file into another, in pieces, authenticated: DecipherFile gives the same bytes back, and
/// refuses a file in which anything was changed, cut off or put behind. The target appears whole or stays as
/// it was.
Status EncipherFile(Storage& storage, const std::string& source, const std::string& target);
/// kErrorInvalidData for what EncipherFile did not make.
Status DecipherFile(Storage& storage, const std::string& source, const std::string& target);

/// Enciphers 8-bit text of a code page: as long as before, without NUL, every byte one that the page knows,
/// and no character left as it was, but control characters. In pages of one byte a character `encipher` false
/// undoes it; in others what is not ASCII becomes ASCII for good.
std::string CipherText(std::string text, int code_page, bool encipher);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_SETTINGS_CIPHER_H_
