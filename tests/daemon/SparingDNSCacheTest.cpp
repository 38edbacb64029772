#include "daemon/SparingDNSCache.h"
#include "tests/daemon/DaemonFakes.h"
#include "tests/fakes/ManualScheduler.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace vorli::daemon {
namespace {

using State = DNSCache::Outcome::State;

struct SparingDNSCacheTest : testing::Test {
  fakes::ManualScheduler scheduler;
  FakeDNSCache cache{"unbound", DNSCache::Outcome{State::flushed, {}}};
  SparingDNSCache sparing{scheduler, cache};
  std::vector<DNSCache::Outcome> outcomes;

  State flush() {
    sparing.flush(1.5, OnceReply<DNSCache::Outcome>(
                           [this](DNSCache::Outcome outcome) { outcomes.push_back(std::move(outcome)); }));
    return outcomes.back().state;
  }
};

TEST_F(SparingDNSCacheTest, asksTheServerOnceInFiveSeconds) {
  EXPECT_EQ(flush(), State::flushed);
  scheduler.advance(4.999);
  EXPECT_EQ(flush(), State::flushed);
  EXPECT_EQ(cache.limits, std::vector<double>{1.5});
  scheduler.advance(0.001);
  EXPECT_EQ(flush(), State::flushed);
  EXPECT_EQ(cache.limits.size(), 2u);
}

TEST_F(SparingDNSCacheTest, aFailedFlushIsRetriedAtOnce) {
  cache.outcome = DNSCache::Outcome{State::failed, {5, "no"}};
  EXPECT_EQ(flush(), State::failed);
  cache.outcome = DNSCache::Outcome{};
  EXPECT_EQ(flush(), State::absent);
  cache.outcome = DNSCache::Outcome{State::flushed, {}};
  EXPECT_EQ(flush(), State::flushed);
  EXPECT_EQ(cache.limits.size(), 3u);
}

TEST_F(SparingDNSCacheTest, whileAFlushHangsNoOtherIsStarted) {
  cache.outcome.reset();
  sparing.flush(1.5, OnceReply<DNSCache::Outcome>([](DNSCache::Outcome) {}));
  scheduler.advance(60.0);
  EXPECT_EQ(flush(), State::failed);
  EXPECT_EQ(outcomes.back().error.text, "the last flush is still under way");
  EXPECT_EQ(cache.limits.size(), 1u);

  std::move(cache.unanswered[0])(DNSCache::Outcome{State::failed, {110, "no answer"}});
  cache.outcome = DNSCache::Outcome{State::flushed, {}};
  EXPECT_EQ(flush(), State::flushed);
  EXPECT_EQ(cache.limits.size(), 2u);
}

TEST_F(SparingDNSCacheTest, theTimeCountsFromTheServersAnswer) {
  cache.outcome.reset();
  sparing.flush(1.5, OnceReply<DNSCache::Outcome>([](DNSCache::Outcome) {}));
  scheduler.advance(1.0);
  std::move(cache.unanswered[0])(DNSCache::Outcome{State::flushed, {}});
  scheduler.advance(4.5);
  EXPECT_EQ(flush(), State::flushed);
  EXPECT_EQ(cache.limits.size(), 1u);
}

}  // namespace
}  // namespace vorli::daemon
