#include "cabinet/workers.h"

#include <algorithm>
#include <system_error>

namespace kw::cabinet {

Workers::Workers(unsigned threads) {
  if (threads < 2) return;
  try {
    for (unsigned i = 0; i < threads; ++i) threads_.emplace_back([this] { Loop(); });
  } catch (const std::system_error&) {
    return;  // those that there are do the work
  }
}

Workers::~Workers() {
  {
    const std::lock_guard lock(mutex_);
    closing_ = true;
  }
  started_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void Workers::Start(Task& task) {
  task.done = false;
  if (threads_.empty()) {
    task.run();
    task.done = true;
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(&task);
  }
  started_.notify_one();
}

void Workers::Wait(const Task& task) {
  std::unique_lock lock(mutex_);
  finished_.wait(lock, [&] { return task.done; });
}

void Workers::Loop() {
  std::unique_lock lock(mutex_);
  while (true) {
    started_.wait(lock, [this] { return closing_ || !waiting_.empty(); });
    if (waiting_.empty()) return;
    Task* task = waiting_.front();
    waiting_.pop_front();
    lock.unlock();
    task->run();
    lock.lock();
    task->done = true;
    finished_.notify_all();
  }
}

unsigned DefaultThreads() { return std::clamp(std::thread::hardware_concurrency(), 1u, 8u); }

}  // namespace kw::cabinet
