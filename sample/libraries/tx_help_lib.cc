// TxHelpLib: the stand-in for the library that knows where the product's help lies.

#include <string>

#include "base/path.h"
#include "base/text.h"
#include "platform/shared/library_abi.h"
#include "sample/libraries/library_calls.h"

namespace {

std::u16string g_help_path;

}  // namespace

int InitializeHtmlHelpPath(const char16_t* context) {
  const kw::sample::CallContext call;
  g_help_path = kw::Utf8ToUtf16(kw::JoinPath(call.paths.current(), "Kestrane.chm") + call.Wide(context));
  return 1;
}

const char16_t* GetHtmlHelpPath(void) { return g_help_path.c_str(); }
