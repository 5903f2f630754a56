#ifndef KITWRIGHT_BASE_RESULT_H_
#define KITWRIGHT_BASE_RESULT_H_

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace kw {

/// Error numbers that rules read or that people see. Values are those of the Windows calls and of the
/// automation interfaces, so that a message shows the same number on every system.
enum ErrorNumber : int {
  kErrorNone = 0,
  kErrorFileNotFound = 2,
  kErrorPathNotFound = 3,
  kErrorAccessDenied = 5,
  kErrorInvalidHandle = 6,
  kErrorInvalidData = 13,
  kErrorSharingViolation = 32,
  kErrorFileExists = 80,
  kErrorInvalidParameter = 87,
  kErrorDiskFull = 112,
  kErrorInvalidName = 123,
  kErrorModuleNotFound = 126,
  kErrorProcedureNotFound = 127,
  kErrorDirectoryNotEmpty = 145,
  kErrorAlreadyExists = 183,
  kErrorBadExeFormat = 193,
  kErrorMoreData = 234,
  kErrorNoMoreItems = 259,
  kErrorKeyDeleted = 1018,
  kErrorIo = 1117,
  kErrorFunctionFailed = 1627,
  kErrorUnrepresentableText = 1113,
  kErrorResourceTypeNotFound = 1813,
  kErrorResourceDataNotFound = 1812,
  kErrorUnknownProperty = 1608,
  kErrorBadQuerySyntax = 1615,
  kErrorOpenFailed = 110,
  kErrorInstallPackageInvalid = 1620,
  kErrorUnsupported = 50,
};

/// A failure: a number (never 0) and one sentence that names the object it happened to.
struct Error {
  int number = kErrorFunctionFailed;
  std::string message;
};

/// Success, or an Error.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : error_(std::move(error)) {}  // NOLINT: an Error is a failed Status
  Status(int number, std::string message) : error_(Error{number, std::move(message)}) {}

  bool ok() const { return !error_; }
  explicit operator bool() const { return ok(); }
  /// The failure; only when !ok().
  const Error& error() const { return *error_; }
  /// The error number, 0 on success.
  int number() const { return error_ ? error_->number : 0; }
  const std::string& message() const {
    static const std::string empty;
    return error_ ? error_->message : empty;
  }

  /// Says that this failure is passed over on purpose.
  void IgnoreError() const {}

 private:
  std::optional<Error> error_;
};

/// A value, or an Error.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}      // NOLINT
  Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}  // NOLINT
  Result(int number, std::string message)
      : state_(std::in_place_index<1>, Error{number, std::move(message)}) {}
  /// From a failed status; never from a good one.
  Result(const Status& status) : state_(std::in_place_index<1>, status.error()) {}  // NOLINT

  bool ok() const { return state_.index() == 0; }
  explicit operator bool() const { return ok(); }
  const T& value() const& { return std::get<0>(state_); }
  T& value() & { return std::get<0>(state_); }
  T&& value() && { return std::get<0>(std::move(state_)); }
  const T& operator*() const& { return value(); }
  T& operator*() & { return value(); }
  T&& operator*() && { return std::move(*this).value(); }
  const T* operator->() const { return &value(); }
  T* operator->() { return &value(); }
  const Error& error() const { return std::get<1>(state_); }
  int number() const { return ok() ? 0 : error().number; }
  /// The outcome without the value.
  Status status() const { return ok() ? Status() : Status(error()); }
  /// The value, or `fallback` on a failure.
  T value_or(T fallback) const& { return ok() ? value() : std::move(fallback); }

 private:
  std::variant<T, Error> state_;
};

}  // namespace kw

/// Returns the failure of `expr` (a Status) from the enclosing function.
#define KW_RETURN_IF_ERROR(expr)                                            \
  do {                                                                      \
    if (auto kw_status = (expr); !kw_status.ok()) return kw_status.error(); \
  } while (false)

#define KW_CONCAT_INNER(a, b) a##b
#define KW_CONCAT(a, b) KW_CONCAT_INNER(a, b)
/// Declares `decl` as the value of `expr` (a Result), or returns its failure.
#define KW_ASSIGN_OR_RETURN(decl, expr)                                                      \
  auto KW_CONCAT(kw_result_, __LINE__) = (expr);                                             \
  if (!KW_CONCAT(kw_result_, __LINE__).ok()) return KW_CONCAT(kw_result_, __LINE__).error(); \
  decl = std::move(*KW_CONCAT(kw_result_, __LINE__))

#endif  // KITWRIGHT_BASE_RESULT_H_
