#ifndef KITWRIGHT_SAMPLE_LIBRARIES_LIBRARY_CALLS_H_
#define KITWRIGHT_SAMPLE_LIBRARIES_LIBRARY_CALLS_H_

#include <memory>
#include <string>

#include "base/machine_paths.h"
#include "base/result.h"
#include "platform/registry.h"

namespace kw::sample {

/// What a call of a closed library finds itself in: made anew in each call, since the current folder and the
/// environment change between calls.
struct CallContext {
  MachinePaths paths = MachinePaths::OfThisProcess();
  int code_page;
  CallContext();

  std::unique_ptr<platform::Registry> Registry() const;
  /// UTF-8 of the texts that libraries are given.
  static std::string Wide(const char16_t* text);
  std::string Narrow(const char* text) const;
  /// The host path of a Windows path given as text.
  std::string HostOf(const char16_t* path) const;
  std::string HostOf(const char* path) const;
};

/// Notes the error number that the present call raises, 0 at its start; LastCallRaised tells it.
void SetRaised(int number);

}  // namespace kw::sample

#endif  // KITWRIGHT_SAMPLE_LIBRARIES_LIBRARY_CALLS_H_
