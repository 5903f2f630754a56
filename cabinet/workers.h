#ifndef KITWRIGHT_CABINET_WORKERS_H_
#define KITWRIGHT_CABINET_WORKERS_H_

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace kw::cabinet {

/// A few threads that take tasks in the order they were started. One thread starts tasks and waits for them.
class Workers {
 public:
  struct Task {
    std::function<void()> run;
    bool done = true;
  };

  /// With fewer than two threads the work is done by whoever starts it, and so it is when the system has no
  /// thread to give; one that has fewer gives those.
  explicit Workers(unsigned threads);
  /// Waits for every task that was started.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  /// `task` stays the caller's and must live until Wait has returned for it or the workers are gone.
  void Start(Task& task);
  void Wait(const Task& task);

 private:
  void Loop();

  std::mutex mutex_;
  std::condition_variable started_;
  std::condition_variable finished_;
  std::deque<Task*> waiting_;
  bool closing_ = false;
  std::vector<std::thread> threads_;
};

/// How many threads to use when the caller names none: one for each processor, up to eight.
unsigned DefaultThreads();

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_WORKERS_H_
