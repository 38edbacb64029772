#include "daemon/DNSFlush.h"
#include "daemon/FallbackDNSCache.h"
#include "tests/daemon/DaemonFakes.h"

#include <cerrno>

namespace vorli::daemon {
namespace {

using State = DNSCache::Outcome::State;

const DNSCache::Outcome absent{};
const DNSCache::Outcome flushed{State::flushed, {}};

DNSCache::Outcome failed(std::int32_t code, std::string text) {
  return {State::failed, {code, std::move(text)}};
}

struct DNSFlushTest : testing::Test {
  fakes::ManualScheduler scheduler;
  FakeDNSCache first{"first", absent}, second{"second", absent}, third{"third", absent};
  DNSFlush flush{scheduler, {&first, &second, &third}};
  std::vector<HelperReply> answers;

  void run() {
    flush.run(OnceReply<HelperReply>([this](HelperReply reply) { answers.push_back(std::move(reply)); }));
    scheduler.runReady();
  }
};

TEST_F(DNSFlushTest, flushingWithoutAnyCacheSucceeds) {
  run();
  EXPECT_EQ(answers, (std::vector<HelperReply>{{0, "No local DNS cache is running"}}));
}

TEST_F(DNSFlushTest, namesEveryCacheThatItEmptied) {
  first.outcome = third.outcome = flushed;
  run();
  EXPECT_EQ(answers, (std::vector<HelperReply>{{0, "Flushed first, third"}}));
}

TEST_F(DNSFlushTest, theFirstFailureGivesTheCodeAndTheOthersAreStillTried) {
  first.outcome = failed(13, "Permission denied");
  second.outcome = failed(5, "Input/output error");
  third.outcome = flushed;
  run();
  EXPECT_EQ(answers,
            (std::vector<HelperReply>{
                {13, "Flushed third; failed: first (Permission denied), second (Input/output error)"}}));
}

TEST_F(DNSFlushTest, aSilentCacheIsGivenUpAfterASecondAndAHalf) {
  first.outcome.reset();
  second.outcome = flushed;
  run();
  scheduler.advance(1.499);
  EXPECT_TRUE(second.limits.empty());
  scheduler.advance(0.002);
  EXPECT_EQ(answers, (std::vector<HelperReply>{{ETIMEDOUT, "Flushed second; failed: first (no answer)"}}));
  EXPECT_EQ(first.limits, std::vector<double>{1.5});
}

TEST_F(DNSFlushTest, allSilentCachesTogetherTakeLessThanFourAndAHalfSeconds) {
  first.outcome.reset();
  second.outcome.reset();
  third.outcome.reset();
  run();
  scheduler.advance(4.399);
  EXPECT_TRUE(answers.empty());
  scheduler.advance(0.002);
  ASSERT_EQ(answers.size(), 1u);
  EXPECT_EQ(answers[0].output, "Failed: first (no answer), second (no answer), third (no answer)");
}

TEST_F(DNSFlushTest, aCacheIsNotAskedWhenNoTimeIsLeft) {
  FakeDNSCache fourth{"fourth", flushed};
  DNSFlush longer{scheduler, {&first, &second, &third, &fourth}};
  for (auto* cache : {&first, &second, &third}) cache->outcome.reset();
  longer.run(OnceReply<HelperReply>([this](HelperReply reply) { answers.push_back(std::move(reply)); }));
  scheduler.advance(4.401);
  ASSERT_EQ(answers.size(), 1u);
  EXPECT_EQ(answers[0].output,
            "Failed: first (no answer), second (no answer), third (no answer), fourth (no time left)");
  EXPECT_TRUE(fourth.limits.empty());
}

TEST_F(DNSFlushTest, theSecondMethodIsTriedWhenTheFirstFails) {
  FallbackDNSCache cache(first, second);
  DNSCache::Outcome outcome;
  const auto result = [&](DNSCache::Outcome one, DNSCache::Outcome two) {
    first.outcome = one;
    second.outcome = two;
    cache.flush(1.5, OnceReply<DNSCache::Outcome>([&](DNSCache::Outcome given) { outcome = given; }));
    return outcome;
  };
  EXPECT_EQ(result(flushed, failed(1, "")).state, State::flushed);
  EXPECT_TRUE(second.limits.empty());
  EXPECT_EQ(result(absent, flushed).state, State::flushed);
  EXPECT_EQ(result(failed(13, "no"), flushed).state, State::flushed);
  EXPECT_EQ(result(absent, absent).state, State::absent);
  EXPECT_EQ(result(failed(13, "no"), absent).error.code, 13);
  EXPECT_EQ(result(failed(13, "no"), failed(5, "io")).error.code, 5);
}

}  // namespace
}  // namespace vorli::daemon
