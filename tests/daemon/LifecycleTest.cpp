#include "daemon/Lifecycle.h"
#include "tests/fakes/ManualScheduler.h"

#include <string>
#include <vector>

namespace vorli::daemon {
namespace {

struct FakeLink final : Lifecycle::Link {
  std::vector<std::string> calls;
  std::vector<OnceReply<bool>> barriers;

  void releaseName() override { calls.push_back("release"); }
  void barrier(OnceReply<bool> reply) override {
    calls.push_back("barrier");
    barriers.push_back(std::move(reply));
  }
  void stop() override { calls.push_back("stop"); }
};

struct LifecycleTest : testing::Test {
  fakes::ManualScheduler scheduler;
  FakeLink link;
  std::size_t inFlight = 0;
  std::unique_ptr<Lifecycle> lifecycle = std::make_unique<Lifecycle>(
      scheduler, link, [this] { return inFlight; }, 30.0);
  const std::vector<std::string> dance{"release", "barrier"};

  void passBarrier() {
    std::move(link.barriers[0])(true);
    scheduler.runReady();
  }
  bool hasStopped() const { return !link.calls.empty() && link.calls.back() == "stop"; }
};

TEST_F(LifecycleTest, exitsAfterThirtyIdleSeconds) {
  lifecycle->start();
  scheduler.advance(29.999);
  EXPECT_TRUE(link.calls.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(link.calls, dance);
}

TEST_F(LifecycleTest, aCallRestartsTheWait) {
  lifecycle->start();
  scheduler.advance(29.0);
  lifecycle->touch();
  scheduler.advance(29.999);
  EXPECT_TRUE(link.calls.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(link.calls, dance);
}

TEST_F(LifecycleTest, callsCostNoTimer) {
  lifecycle->start();
  for (int i = 0; i < 1000; ++i) lifecycle->touch();
  EXPECT_EQ(scheduler.pendingTimers(), 1u);
}

TEST_F(LifecycleTest, staysWhileARequestIsUnderWay) {
  lifecycle->start();
  inFlight = 1;
  scheduler.advance(100.0);
  EXPECT_TRUE(link.calls.empty());
  inFlight = 0;
  lifecycle->requestEnded();
  scheduler.advance(29.999);
  EXPECT_TRUE(link.calls.empty());
  scheduler.advance(0.001);
  EXPECT_EQ(link.calls, dance);
}

TEST_F(LifecycleTest, exitsOnlyAfterServingEverythingThatTheBusHadSent) {
  lifecycle->start();
  lifecycle->leave();
  EXPECT_FALSE(hasStopped());
  inFlight = 1;
  passBarrier();
  EXPECT_FALSE(hasStopped());
  inFlight = 0;
  lifecycle->requestEnded();
  EXPECT_TRUE(hasStopped());
}

TEST_F(LifecycleTest, anEndedRequestDoesNotStopItBeforeTheBarrier) {
  lifecycle->leave();
  lifecycle->requestEnded();
  EXPECT_FALSE(hasStopped());
  passBarrier();
  EXPECT_TRUE(hasStopped());
}

TEST_F(LifecycleTest, waitsForTheBarrierForTwentyFiveSeconds) {
  lifecycle->leave();
  scheduler.advance(24.999);
  EXPECT_FALSE(hasStopped());
  scheduler.advance(0.001);
  EXPECT_TRUE(hasStopped());
}

TEST_F(LifecycleTest, exitsAfterTwentyFiveSecondsThoughWorkIsUnfinished) {
  inFlight = 1;
  lifecycle->leave();
  passBarrier();
  scheduler.advance(24.999);
  EXPECT_FALSE(hasStopped());
  scheduler.advance(0.001);
  EXPECT_TRUE(hasStopped());
}

TEST_F(LifecycleTest, exitsOnce) {
  lifecycle->start();
  lifecycle->leave();
  lifecycle->leave();
  scheduler.advance(1.0);
  EXPECT_EQ(link.calls, dance);
}

TEST_F(LifecycleTest, mayBeDestroyedWhileItsBarrierIsOutstanding) {
  lifecycle->leave();
  lifecycle.reset();
  passBarrier();
  scheduler.advance(60.0);
  EXPECT_FALSE(hasStopped());
}

}  // namespace
}  // namespace vorli::daemon
