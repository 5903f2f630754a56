// settings-cipher encipher|decipher SOURCE TARGET
//
// What the sample's closed library makes of a settings file, for scripts that look into cabinets or make odd
// ones.

#include <cstdio>
#include <string>

#include "sample/settings/cipher.h"

int main(int argc, char** argv) {
  const std::string what = argc == 4 ? argv[1] : "";
  if (what != "encipher" && what != "decipher") {
    std::fputs("usage: settings-cipher encipher|decipher SOURCE TARGET\n", stderr);
    return 2;
  }
  kw::Storage& storage = kw::SystemStorage();
  const kw::Status done = what == "encipher" ? kw::sample::EncipherFile(storage, argv[2], argv[3])
                                             : kw::sample::DecipherFile(storage, argv[2], argv[3]);
  if (done.ok()) return 0;
  std::fprintf(stderr, "%s\n", done.message().c_str());
  return 1;
}
