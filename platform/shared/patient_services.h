#ifndef KITWRIGHT_PLATFORM_SHARED_PATIENT_SERVICES_H_
#define KITWRIGHT_PLATFORM_SHARED_PATIENT_SERVICES_H_

#include <functional>
#include <memory>

#include "platform/services.h"
#include "platform/shared/patience.h"

namespace kw::platform {

/// A machine's services, of which copying, packing and committing large files do not hold up the thread that
/// asks for them: it serves `meanwhile` until they are done. For windows, which must be painted.
class PatientServices {
 public:
  /// `inner` and what `meanwhile` uses outlive this object, and it outlives all that its services made.
  PatientServices(const Services& inner, std::function<void()> meanwhile);
  ~PatientServices();

  Services& Get() { return services_; }

 private:
  Services services_;
  Patience patience_;
  std::unique_ptr<FileSystem> files_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_PATIENT_SERVICES_H_
