#include "sample/libraries/library_calls.h"

#include "base/machine_config.h"
#include "base/text.h"
#include "platform/shared/library_abi.h"
#include "sample/settings/this_machine.h"

namespace kw::sample {
namespace {

int g_raised = 0;

}  // namespace

CallContext::CallContext() : code_page(MachineCodePage(paths.root())) {}

std::unique_ptr<platform::Registry> CallContext::Registry() const {
  return OpenMachineRegistry(paths, code_page);
}

std::string CallContext::Wide(const char16_t* text) { return text != nullptr ? Utf16ToUtf8(text) : ""; }

std::string CallContext::Narrow(const char* text) const {
  return text != nullptr ? CodePageToUtf8(text, code_page) : "";
}

std::string CallContext::HostOf(const char16_t* path) const { return paths.HostPath(Wide(path)); }

std::string CallContext::HostOf(const char* path) const { return paths.HostPath(Narrow(path)); }

void SetRaised(int number) { g_raised = number; }

}  // namespace kw::sample

int LastCallRaised(void) { return kw::sample::g_raised; }
