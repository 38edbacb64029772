#include "tests/fakes/Publish.h"
#include "tests/helper/HelperFixture.h"

namespace vorli {
namespace {

struct HelperLinkTest : HelperFixture {
  bool ping() { return start(manager->pingWithTimeout(2.0))->value.value_or(false); }
};

TEST_F(HelperLinkTest, theFirstCallOpensTheConnectionAndLaterOnesReuseIt) {
  EXPECT_TRUE(ping());
  EXPECT_EQ(notices("Opening new XPC connection to com.kv.vorli.helper (service status: <private>)"), 1);
  EXPECT_TRUE(ping());
  EXPECT_EQ(notices("Reusing existing XPC connection to helper"), 1);
  EXPECT_EQ(transport.servicesConnected, std::vector<std::string>{"com.kv.vorli.helper"});
  EXPECT_EQ(transport.connectionsAlive(), 1);
}

TEST_F(HelperLinkTest, anErrorOnAFreshConnectionDropsItAndTheInvalidationFollows) {
  transport.ping.conduct = Conduct::fails;
  std::vector<std::optional<std::string>> texts;
  const auto seen = manager->lastError.subscribeToChanges([&](const auto& text) { texts.push_back(text); });
  start(manager->pingWithTimeout(2.0));
  EXPECT_EQ(errors("XPC proxy error: Couldn't communicate with a helper application."), 1);
  EXPECT_EQ(errors("XPC connection invalidated"), 1);
  EXPECT_EQ(texts, (std::vector<std::optional<std::string>>{
                       "XPC error: Couldn't communicate with a helper application.",
                       "Helper connection invalidated."}));
  EXPECT_EQ(transport.connectionsAlive(), 0);
  EXPECT_EQ(transport.invalidations(), 1);
}

TEST_F(HelperLinkTest, anErrorOnAReusedConnectionSaysSo) {
  ping();
  transport.ping.conduct = Conduct::fails;
  start(manager->pingWithTimeout(2.0));
  EXPECT_EQ(errors("XPC proxy error (reused): Couldn't communicate with a helper application."), 1);
  EXPECT_EQ(errors("XPC proxy error: Couldn't communicate with a helper application."), 0);
  EXPECT_EQ(transport.connectionsAlive(), 0);
}

TEST_F(HelperLinkTest, aLostConnectionIsDroppedAndNamed) {
  ping();
  transport.lose(0);
  scheduler.runReady();
  EXPECT_EQ(errors("XPC connection invalidated"), 1);
  EXPECT_EQ(manager->lastError.get(), "Helper connection invalidated.");
  EXPECT_TRUE(ping());
  EXPECT_EQ(transport.connectionsOpened(), 2);
}

TEST_F(HelperLinkTest, anInterruptionLeavesLastErrorAndTheInvalidationFollowsIt) {
  ping();
  fakes::publish(manager->lastError, "as it was");
  std::vector<std::optional<std::string>> texts;
  const auto seen = manager->lastError.subscribeToChanges([&](const auto& text) { texts.push_back(text); });
  log.clear();
  transport.interrupt(0);
  scheduler.runReady();
  EXPECT_EQ(log.messages(),
            (std::vector<std::string>{"XPC connection interrupted", "XPC connection invalidated"}));
  EXPECT_EQ(errors("XPC connection interrupted"), 1);
  EXPECT_EQ(texts, (std::vector<std::optional<std::string>>{"Helper connection invalidated."}));
  EXPECT_EQ(transport.connectionsAlive(), 0);
}

TEST_F(HelperLinkTest, theNextCallAfterAnEventOpensANewConnection) {
  ping();
  transport.interrupt(0);
  scheduler.runReady();
  EXPECT_TRUE(ping());
  EXPECT_EQ(transport.connectionsOpened(), 2);
  EXPECT_EQ(transport.connectionsAlive(), 1);
}

// The invalidation of the old connection is still queued when a call opens a new one. It then affects the new
// one, because events do not say which connection they belong to.
TEST_F(HelperLinkTest, anEventActsOnTheCurrentConnection) {
  ping();
  int alive = 0;
  const auto open = manager->lastError.subscribeToChanges([&](const auto& text) {
    if (text == "Helper connection invalidated.") alive = transport.connectionsAlive();
  });
  transport.ping.conduct = Conduct::silent;
  transport.interrupt(0);
  tasks->spawn(collect(manager->pingWithTimeout(2.0), std::make_shared<Outcome<bool>>(), &scheduler));
  scheduler.runReady();
  EXPECT_EQ(transport.connectionsOpened(), 2);
  EXPECT_EQ(transport.invalidations(), 2);
  EXPECT_EQ(transport.connectionsAlive(), 0);
}

TEST_F(HelperLinkTest, aRequestOutOnADroppedConnectionStillEndsByItsTimer) {
  transport.purgeMemory.conduct = Conduct::silent;
  const auto purge = start(manager->purgeMemory());
  transport.lose(0);
  scheduler.advance(20.0 - frame);
  EXPECT_EQ(purge->resumes, 0);
  scheduler.advance(frame);
  EXPECT_EQ(purge->value, (HelperReply{-1, "Helper purgeMemory timed out"}));
}

TEST_F(HelperLinkTest, thereIsNoRetryInsideACall) {
  transport.flushDNS.conduct = Conduct::fails;
  start(manager->flushDNS());
  scheduler.advance(60.0);
  EXPECT_EQ(transport.flushDNS.requests, 1);
  EXPECT_EQ(transport.connectionsOpened(), 1);
}

TEST_F(HelperLinkTest, eventsAfterTheManagerIsDestroyedDoNothing) {
  ping();
  log.clear();
  transport.interrupt(0);
  transport.lose(0);
  dropManager();
  scheduler.advance(1.0);
  EXPECT_TRUE(log.lines().empty());
}

}  // namespace
}  // namespace vorli
