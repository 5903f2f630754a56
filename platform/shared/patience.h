#ifndef KITWRIGHT_PLATFORM_SHARED_PATIENCE_H_
#define KITWRIGHT_PLATFORM_SHARED_PATIENCE_H_

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace kw::platform {

/// Carries out calls that may take long on a thread of its own, one at a time, while the thread that waits
/// for them goes on serving something. All calls come from one thread.
class Patience {
 public:
  /// `meanwhile` is called on the waiting thread, some hundred times a second while a call takes long, and
  /// now and then between many short ones. What it sets off makes no calls of its own here.
  explicit Patience(std::function<void()> meanwhile);
  ~Patience();
  Patience(const Patience&) = delete;
  Patience& operator=(const Patience&) = delete;

  /// Carries out `call` and answers with its result.
  template <typename Call>
  auto Run(Call&& call) -> decltype(call()) {
    std::optional<decltype(call())> result;
    CarryOut([&] { result.emplace(call()); });
    return std::move(*result);
  }

 private:
  void CarryOut(const std::function<void()>& task);
  void Work();
  void Serve();

  std::function<void()> meanwhile_;
  std::mutex mutex_;
  std::condition_variable changed_;
  const std::function<void()>* task_ = nullptr;  ///< what is being carried out
  bool ending_ = false;
  std::chrono::steady_clock::time_point served_ = std::chrono::steady_clock::now();
  std::thread thread_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_PATIENCE_H_
