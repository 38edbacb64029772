#include "daemon/ThreadPool.h"

#include <atomic>
#include <condition_variable>
#include <latch>
#include <mutex>
#include <set>
#include <thread>

namespace vorli::daemon {
namespace {

TEST(ThreadPool, runsFourAtOnceOnFourThreads) {
  std::mutex lock;
  std::set<std::thread::id> threads;
  std::latch met(4), finished(4);
  ThreadPool pool(4);
  for (int i = 0; i < 4; ++i)
    pool.post([&] {
      {
        const std::lock_guard guard(lock);
        threads.insert(std::this_thread::get_id());
      }
      met.arrive_and_wait();  // hangs unless all four run at once
      finished.count_down();
    });
  finished.wait();
  EXPECT_EQ(threads.size(), 4u);
}

TEST(ThreadPool, aFifthPieceWaitsForAThreadAndIsRun) {
  std::atomic<int> running{0}, most{0}, done{0};
  std::latch finished(100);
  ThreadPool pool(4);
  for (int i = 0; i < 100; ++i)
    pool.post([&] {
      const int now = ++running;
      int seen = most;
      while (now > seen && !most.compare_exchange_weak(seen, now)) {
      }
      --running;
      ++done;
      finished.count_down();
    });
  finished.wait();
  EXPECT_EQ(done, 100);
  EXPECT_LE(most, 4);
}

TEST(ThreadPool, itsDestructorWaitsForRunningWorkAndDropsTheRest) {
  std::atomic<bool> finished{false};
  std::atomic<int> others{0};
  auto dropped = std::make_shared<int>(0);
  {
    ThreadPool pool(1);
    std::latch started(1), goOn(1);
    pool.post([&] {
      started.count_down();
      goOn.wait();
      finished = true;
    });
    started.wait();
    pool.post([&others, dropped] { ++others; });
    std::thread opener([&] { goOn.count_down(); });
    opener.join();
    pool.stop();
    pool.post([&others] { ++others; });
  }
  EXPECT_TRUE(finished);
  EXPECT_LE(others, 1);
  EXPECT_EQ(dropped.use_count(), 1);
}

}  // namespace
}  // namespace vorli::daemon
