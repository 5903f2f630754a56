#include "platform/shared/patience.h"

namespace kw::platform {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kTurn{4};      // between two turns of serving while a call goes on
constexpr milliseconds kSilence{16};  // after which serving is due although no call takes long

}  // namespace

Patience::Patience(std::function<void()> meanwhile)
    : meanwhile_(std::move(meanwhile)), thread_([this] { Work(); }) {}

Patience::~Patience() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void Patience::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return task_ || ending_; });
    if (!task_) return;
    lock.unlock();
    (*task_)();
    lock.lock();
    task_ = nullptr;
    changed_.notify_all();
  }
}

void Patience::CarryOut(const std::function<void()>& task) {
  {
    std::unique_lock lock(mutex_);
    task_ = &task;
    changed_.notify_all();
    while (!changed_.wait_for(lock, kTurn, [this] { return !task_; })) {
      lock.unlock();
      Serve();
      lock.lock();
    }
  }
  if (std::chrono::steady_clock::now() - served_ >= kSilence) Serve();
}

void Patience::Serve() {
  meanwhile_();
  served_ = std::chrono::steady_clock::now();
}

}  // namespace kw::platform
