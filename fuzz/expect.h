#ifndef KITWRIGHT_FUZZ_EXPECT_H_
#define KITWRIGHT_FUZZ_EXPECT_H_

#include <cstdio>
#include <cstdlib>

namespace kw::fuzz {

/// Ends the process, as a finding, where something does not hold.
inline void Expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace kw::fuzz

#endif  // KITWRIGHT_FUZZ_EXPECT_H_
