#include "posix/BackgroundWork.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/posix/HoldsInTime.h"

#include <csignal>
#include <gtest/gtest.h>
#include <latch>
#include <optional>
#include <pthread.h>
#include <thread>

namespace vorli::posix {
namespace {

struct BackgroundWorkTest : testing::Test {
  fakes::ManualScheduler scheduler;
  std::optional<BackgroundWork> background{std::in_place, scheduler};
};

TEST_F(BackgroundWorkTest, worksOnAnotherThreadAndFinishesOnTheMainOne) {
  const auto here = std::this_thread::get_id();
  std::thread::id workedOn;
  std::thread::id doneOn;
  background->start([&] { workedOn = std::this_thread::get_id(); },
                    [&] { doneOn = std::this_thread::get_id(); });
  EXPECT_TRUE(background->isUnderWay());
  ASSERT_TRUE(holdsInTime(scheduler, [&] { return !background->isUnderWay(); }));
  EXPECT_NE(workedOn, here);
  EXPECT_EQ(doneOn, here);
}

TEST_F(BackgroundWorkTest, isNeverDoneOutsideOfTheMainLoop) {
  std::latch hasWorked(1);
  bool isDone = false;
  background->start([&] { hasWorked.count_down(); }, [&] { isDone = true; });
  hasWorked.wait();
  EXPECT_FALSE(isDone);
  EXPECT_TRUE(background->isUnderWay());
  ASSERT_TRUE(holdsInTime(scheduler, [&] { return isDone; }));
}

TEST_F(BackgroundWorkTest, piecesFollowOneAnotherOnTheSameThread) {
  int plain = 0;  // shared by both threads without a lock, because start and done order the accesses
  std::optional<std::thread::id> worker;
  for (int piece = 1; piece <= 100; ++piece) {
    background->start(
        [&] {
          ++plain;
          if (!worker) worker = std::this_thread::get_id();
          EXPECT_EQ(*worker, std::this_thread::get_id());
        },
        [&] { ++plain; });
    ASSERT_TRUE(holdsInTime(scheduler, [&] { return !background->isUnderWay(); }));
    EXPECT_EQ(plain, 2 * piece);
  }
}

TEST_F(BackgroundWorkTest, finishWaitsAndCompletesOnceInsideTheCall) {
  int plain = 0;
  int done = 0;
  for (int piece = 1; piece <= 100; ++piece) {
    background->start([&] { ++plain; }, [&] { ++done; });
    background->finish();
    EXPECT_EQ(plain, piece);
    EXPECT_EQ(done, piece);
    EXPECT_FALSE(background->isUnderWay());
  }
  scheduler.runReady();  // the thread's post arrives too late
  EXPECT_EQ(done, 100);
}

TEST_F(BackgroundWorkTest, finishWithoutWorkDoesNothing) {
  background->finish();
  EXPECT_FALSE(background->isUnderWay());
}

TEST_F(BackgroundWorkTest, theCompletionMayStartTheNextPiece) {
  int done = 0;
  background->start([] {},
                    [&] {
                      ++done;
                      background->start([] {}, [&] { ++done; });
                    });
  background->finish();
  EXPECT_EQ(done, 1);
  EXPECT_TRUE(background->isUnderWay());
  ASSERT_TRUE(holdsInTime(scheduler, [&] { return done == 2; }));
}

TEST_F(BackgroundWorkTest, abandonWaitsAndDropsTheCompletion) {
  bool hasWorked = false;
  bool isDone = false;
  background->start([&] { hasWorked = true; }, [&] { isDone = true; });
  background->abandon();
  EXPECT_TRUE(hasWorked);
  scheduler.runReady();
  EXPECT_FALSE(isDone);
}

TEST_F(BackgroundWorkTest, theDestructorWaitsForTheWorkAndDropsTheCompletion) {
  bool hasWorked = false;
  bool isDone = false;
  background->start([&] { hasWorked = true; }, [&] { isDone = true; });
  background.reset();
  EXPECT_TRUE(hasWorked);
  scheduler.runReady();
  EXPECT_FALSE(isDone);
}

// No thread can have a stack of that size.
struct NoMoreThreads {
  NoMoreThreads() {
    pthread_getattr_default_np(&before);
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{1} << 47);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
  }
  ~NoMoreThreads() {
    pthread_setattr_default_np(&before);
    pthread_attr_destroy(&before);
  }
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;

  pthread_attr_t before;
};

TEST_F(BackgroundWorkTest, theWorkIsStillDoneIfNoThreadCanBeCreated) {
  const auto here = std::this_thread::get_id();
  std::thread::id workedOn;
  int done = 0;
  {
    const NoMoreThreads limit;
    background->start([&] { workedOn = std::this_thread::get_id(); }, [&] { ++done; });
    EXPECT_EQ(workedOn, here);
    EXPECT_EQ(done, 0);
    EXPECT_TRUE(background->isUnderWay());
    scheduler.runReady();
    EXPECT_EQ(done, 1);
    background->start([] {}, [&] { ++done; });
    background->finish();
    background->start([] {}, [&] { ++done; });
    background->abandon();
    scheduler.runReady();
    EXPECT_EQ(done, 2);
  }
  background->start([&] { workedOn = std::this_thread::get_id(); }, [&] { ++done; });
  ASSERT_TRUE(holdsInTime(scheduler, [&] { return done == 3; }));
  EXPECT_NE(workedOn, here);
}

TEST_F(BackgroundWorkTest, signalsAreLeftToTheMainThread) {
  sigset_t mask;
  sigemptyset(&mask);
  background->start([&] { pthread_sigmask(SIG_SETMASK, nullptr, &mask); }, [] {});
  background->finish();
  EXPECT_EQ(sigismember(&mask, SIGTERM), 1);
  EXPECT_EQ(sigismember(&mask, SIGCHLD), 1);
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGTERM), 0);
}

}  // namespace
}  // namespace vorli::posix
