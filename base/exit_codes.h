#ifndef KITWRIGHT_BASE_EXIT_CODES_H_
#define KITWRIGHT_BASE_EXIT_CODES_H_

namespace kw {

/// The exit code of CabArc when the machine kept it from unpacking a cabinet, which may be sound: no room, an
/// error of the disk, no permission. Nothing of the cabinet is left then.
constexpr int kExitMachineFailed = 3;

}  // namespace kw

#endif  // KITWRIGHT_BASE_EXIT_CODES_H_
