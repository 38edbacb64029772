#include "linux/helper/HelperChannel.h"
#include "tests/fakes/ManualScheduler.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::linuxhost {
namespace {

using Told = std::vector<std::string>;

struct HelperChannelTest : testing::Test {
  fakes::ManualScheduler scheduler;
  HelperChannel channel{scheduler};
  Told told;

  HelperChannelTest() {
    channel.setInterruptionHandler([this] { told.push_back("interrupted"); });
    channel.setInvalidationHandler([this] { told.push_back("invalidated"); });
  }

  HelperChannel::RequestId request(std::string name) {
    return channel.begin(
        [this, name = std::move(name)](const std::string& text) { told.push_back(name + ": " + text); });
  }
};

TEST_F(HelperChannelTest, aDyingDaemonIsReportedInOneTurnOfTheMainLoop) {
  channel.fail(request("purge"), "died", HelperChannel::Cause::daemonDied);
  EXPECT_EQ(told, Told{});
  EXPECT_EQ(scheduler.postedCount(), 1u);
  scheduler.runReady();
  EXPECT_EQ(told, (Told{"purge: died", "interrupted"}));
}

TEST_F(HelperChannelTest, oneInterruptionIsReportedForEachDeathOfTheDaemon) {
  const auto purge = request("purge");
  const auto flush = request("flush");
  channel.fail(purge, "died", HelperChannel::Cause::daemonDied);
  channel.fail(flush, "died", HelperChannel::Cause::daemonDied);
  scheduler.runReady();
  EXPECT_EQ(told, (Told{"purge: died", "interrupted", "flush: died"}));

  // The next daemon's death is another one.
  channel.fail(request("ping"), "died", HelperChannel::Cause::daemonDied);
  scheduler.runReady();
  EXPECT_EQ(Told(told.begin() + 3, told.end()), (Told{"ping: died", "interrupted"}));
}

TEST_F(HelperChannelTest, aRequestThatWasNotDeliveredInterruptsNothing) {
  channel.fail(request("ping"), "refused", HelperChannel::Cause::notDelivered);
  scheduler.runReady();
  EXPECT_EQ(told, Told{"ping: refused"});
}

TEST_F(HelperChannelTest, closingFailsEveryRequestAndThenReportsTheInvalidationOnce) {
  request("purge");
  const auto answered = request("ping");
  request("flush");
  EXPECT_TRUE(channel.finish(answered));
  EXPECT_FALSE(channel.finish(answered));
  channel.close("gone");
  EXPECT_TRUE(channel.isClosed());
  channel.close("again");
  EXPECT_EQ(told, Told{});
  EXPECT_EQ(scheduler.postedCount(), 1u);
  scheduler.runReady();
  EXPECT_EQ(told, (Told{"purge: gone", "flush: gone", "invalidated"}));
}

TEST_F(HelperChannelTest, aRequestThatEndedWithTheChannelIsNotReportedAgain) {
  const auto purge = request("purge");
  channel.close("gone");
  channel.fail(purge, "died", HelperChannel::Cause::daemonDied);
  EXPECT_FALSE(channel.finish(purge));
  scheduler.runReady();
  EXPECT_EQ(told, (Told{"purge: gone", "invalidated"}));
}

}  // namespace
}  // namespace vorli::linuxhost
