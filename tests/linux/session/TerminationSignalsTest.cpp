#include "linux/session/TerminationSignals.h"
#include "tests/linux/helper/Waiting.h"

#include <QCoreApplication>
#include <csignal>
#include <gtest/gtest.h>
#include <optional>

namespace vorli {
namespace {

using linuxhost::TerminationSignals;

struct TerminationSignalsTest : testing::Test {
  void TearDown() override {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) std::signal(number, SIG_DFL);
  }
  void handleSignals() {
    handled.emplace([this] { ++wishes; });
  }
  void waitForWishes(int count) {
    waitUntil([this, count] { return wishes >= count; });
  }
  static auto actionOf(int number) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    return action.sa_handler;
  }

  std::optional<TerminationSignals> handled;
  int wishes = 0;
};

TEST_F(TerminationSignalsTest, eachSignalRequestsTheEndFromTheLoop) {
  handleSignals();
  int expected = 0;
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    std::raise(number);
    EXPECT_EQ(wishes, expected);
    waitForWishes(++expected);
    EXPECT_EQ(wishes, expected);
  }
}

TEST_F(TerminationSignalsTest, severalSignalsInOneTurnAreOneRequest) {
  handleSignals();
  for (int i = 0; i < 5; ++i) std::raise(SIGTERM);
  waitForWishes(1);
  QCoreApplication::processEvents();
  EXPECT_EQ(wishes, 1);
}

TEST_F(TerminationSignalsTest, anIgnoredHangupStaysIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  handleSignals();
  std::raise(SIGHUP);
  EXPECT_EQ(actionOf(SIGHUP), SIG_IGN);
  handled.reset();
  EXPECT_EQ(actionOf(SIGHUP), SIG_IGN);
  EXPECT_EQ(actionOf(SIGTERM), SIG_DFL);
}

}  // namespace
}  // namespace vorli
