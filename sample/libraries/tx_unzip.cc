// TxUnzip: the stand-in for the library that unpacks archives.

#include "platform/shared/library_abi.h"
#include "sample/libraries/library_calls.h"
#include "sample/libraries/zip_archive.h"
#include "sample/settings/answers.h"

int TxUnzip(const char* archive, const char* folder) {
  const kw::sample::CallContext call;
  kw::Status status;
  if (kw::sample::MustFail("TxUnzip")) {
    status = kw::Status(kw::kErrorFunctionFailed, "Asked to fail.");
  } else {
    status = kw::sample::UnpackZip(kw::SystemStorage(), call.HostOf(archive), call.HostOf(folder));
  }
  kw::sample::SetRaised(status.number());
  return status.number();
}
