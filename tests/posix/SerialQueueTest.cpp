#include "posix/SerialQueue.h"

#include <csignal>
#include <cstddef>
#include <gtest/gtest.h>
#include <numeric>
#include <pthread.h>
#include <thread>
#include <vector>

namespace vorli::posix {
namespace {

TEST(SerialQueueTest, workIsDoneInOrderOnAnotherThreadBeforeTheQueueIsGone) {
  std::vector<int> done;
  std::vector<int> wanted(200);
  std::iota(wanted.begin(), wanted.end(), 0);
  std::thread::id worker;
  {
    SerialQueue queue;
    for (const int number : wanted) {
      queue.post([&, number] {
        done.push_back(number);
        worker = std::this_thread::get_id();
      });
    }
  }
  EXPECT_EQ(done, wanted);
  EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(SerialQueueTest, everyThreadMayPost) {
  int done = 0;  // the queue orders the pieces
  {
    SerialQueue queue;
    std::vector<std::thread> posters;
    for (int i = 0; i < 4; ++i) {
      posters.emplace_back([&] {
        for (int piece = 0; piece < 100; ++piece) queue.post([&] { ++done; });
      });
    }
    for (auto& poster : posters) poster.join();
  }
  EXPECT_EQ(done, 400);
}

TEST(SerialQueueTest, workMayPostMoreOfIt) {
  int done = 0;
  {
    SerialQueue queue;
    queue.post([&] {
      ++done;
      queue.post([&] { ++done; });
    });
  }
  EXPECT_EQ(done, 2);
}

TEST(SerialQueueTest, signalsAreLeftToTheOtherThreads) {
  sigset_t mask;
  sigemptyset(&mask);
  {
    SerialQueue queue;
    queue.post([&] { pthread_sigmask(SIG_SETMASK, nullptr, &mask); });
  }
  EXPECT_EQ(sigismember(&mask, SIGTERM), 1);
  EXPECT_EQ(sigismember(&mask, SIGSEGV), 0);
}

TEST(SerialQueueTest, priorityIsLoweredOnceOnItsThreadBeforeTheFirstPiece) {
  static std::vector<std::thread::id> lowered;
  std::size_t loweredBefore = 0;
  std::thread::id worker;
  {
    SerialQueue queue([] { lowered.push_back(std::this_thread::get_id()); });
    queue.post([&] { loweredBefore = lowered.size(); });
    queue.post([&] { worker = std::this_thread::get_id(); });
  }
  EXPECT_EQ(loweredBefore, 1u);
  EXPECT_EQ(lowered, std::vector{worker});
}

TEST(SerialQueueTest, queueThatWasNeverUsedEndsAtOnce) {
  const SerialQueue queue;
}

}  // namespace
}  // namespace vorli::posix
