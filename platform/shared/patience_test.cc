#include "platform/shared/patience.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

namespace kw::platform {
namespace {

TEST(Patience, ServesUntilALongCallIsDoneAndAnswersWithItsResult) {
  std::atomic<int> served = 0;
  Patience patience([&] { ++served; });
  // The call itself waits for what is served meanwhile.
  const std::string result = patience.Run([&] {
    while (served < 3) std::this_thread::yield();
    return std::string("done");
  });
  EXPECT_EQ(result, "done");
  EXPECT_GE(served, 3);
}

TEST(Patience, ServesOnTheThreadThatAsks) {
  const std::thread::id here = std::this_thread::get_id();
  std::thread::id served;
  std::atomic<bool> was_served = false;
  Patience patience([&] {
    served = std::this_thread::get_id();
    was_served = true;
  });
  const std::thread::id worked = patience.Run([&] {
    while (!was_served) std::this_thread::yield();
    return std::this_thread::get_id();
  });
  EXPECT_EQ(served, here);
  EXPECT_NE(worked, here);
}

TEST(Patience, ServesAlsoBetweenManyShortCalls) {
  int served = 0;
  Patience patience([&] { ++served; });
  int calls = 0;
  while (served == 0 && calls < 100000000) calls = patience.Run([&] { return calls + 1; });
  EXPECT_GT(served, 0);
}

TEST(Patience, CallsKeepTheirOrder) {
  Patience patience([] {});
  std::string order;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    patience.Run([&] {
      order += letter;
      return true;
    });
  }
  EXPECT_EQ(order, "abcdefghijklmnopqrstuvwxyz");
}

}  // namespace
}  // namespace kw::platform
