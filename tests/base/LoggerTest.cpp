#include "base/Logger.h"
#include "tests/fakes/CapturedLog.h"

#include <limits>
#include <thread>

namespace vorli {
namespace {

TEST(LogFormatTest, aTextIsShownOnlyWhenPublic) {
  EXPECT_EQ(formatLogMessage("a %{public}s b", {"text"}), "a text b");
  EXPECT_EQ(formatLogMessage("%s", {"text"}), "<private>");
  EXPECT_EQ(formatLogMessage("%{private}s", {"text"}), "<private>");
  EXPECT_EQ(formatLogMessage("%{sensitive}s", {"text"}), "<private>");
  EXPECT_EQ(formatLogMessage("%@ %{public}@", {std::string("a"), std::string_view("b")}), "<private> b");
}

TEST(LogFormatTest, aTextMayHoldPercentSigns) {
  EXPECT_EQ(formatLogMessage("%{public}s|%{public}s", {"100% %s", "x"}), "100% %s|x");
}

TEST(LogFormatTest, numbersArePublicUnlessTheyAreMarkedPrivate) {
  EXPECT_EQ(formatLogMessage("%d", {-7}), "-7");
  EXPECT_EQ(formatLogMessage("%{public}d", {-7}), "-7");
  EXPECT_EQ(formatLogMessage("%{private}d", {-7}), "<private>");
  EXPECT_EQ(formatLogMessage("%{private}f", {0.5}), "<private>");
}

TEST(LogFormatTest, integersOfEveryWidthAreWhole) {
  EXPECT_EQ(formatLogMessage("%lld", {std::numeric_limits<long long>::min()}), "-9223372036854775808");
  EXPECT_EQ(formatLogMessage("%llu", {std::numeric_limits<unsigned long long>::max()}),
            "18446744073709551615");
  EXPECT_EQ(formatLogMessage("%d", {std::numeric_limits<unsigned long>::max()}), "18446744073709551615");
  EXPECT_EQ(formatLogMessage("%{public}ld", {5000000000L}), "5000000000");
  EXPECT_EQ(formatLogMessage("%hhd %zu %jd %td %qd", {1, 2u, 3, 4, 5}), "1 2 3 4 5");
}

TEST(LogFormatTest, integersTakeFlagsWidthAndBase) {
  EXPECT_EQ(formatLogMessage("%5d|%-5d|%05d|%+d", {42, 42, 42, 42}), "   42|42   |00042|+42");
  EXPECT_EQ(formatLogMessage("%x %X %o %#llx", {255, 255, 8, 255u}), "ff FF 10 0xff");
}

TEST(LogFormatTest, realNumbersTakeEveryConversion) {
  EXPECT_EQ(formatLogMessage("%.2f %f %e %g", {1.005, 2.5, 1500.0, 0.25}), "1.00 2.500000 1.500000e+03 0.25");
  EXPECT_EQ(formatLogMessage("%{public}fs", {0.5}), "0.500000s");
}

TEST(LogFormatTest, boolPrintsTrueOrFalse) {
  EXPECT_EQ(formatLogMessage("%{bool,public}d %{bool}d", {true, false}), "true false");
  EXPECT_EQ(formatLogMessage("%{public, bool}d", {2}), "true");
  EXPECT_EQ(formatLogMessage("%{bool,private}d", {true}), "<private>");
  EXPECT_EQ(formatLogMessage("%{bool}d", {0u}), "false");
}

TEST(LogFormatTest, aValueThatDoesNotMatchItsConversionIsPrintedAsItIs) {
  EXPECT_EQ(formatLogMessage("%{public}d", {"text"}), "text");
  EXPECT_EQ(formatLogMessage("%s", {7}), "7");
  EXPECT_EQ(formatLogMessage("%d", {0.5}), "0.5");
  EXPECT_EQ(formatLogMessage("%f", {7}), "7");
}

TEST(LogFormatTest, twoPercentSignsAreOne) {
  EXPECT_EQ(formatLogMessage("100%% of %d%%", {7}), "100% of 7%");
  EXPECT_EQ(formatLogMessage("%%", {}), "%");
}

TEST(LogFormatTest, aPlaceholderWithoutAValueIsMissing) {
  EXPECT_EQ(formatLogMessage("%d %{public}s", {1}), "1 <missing>");
  EXPECT_EQ(formatLogMessage("%d", {}), "<missing>");
}

TEST(LogFormatTest, valuesWithoutAPlaceholderAreLeftOut) {
  EXPECT_EQ(formatLogMessage("plain", {1, "text"}), "plain");
  EXPECT_EQ(formatLogMessage("", {1}), "");
}

TEST(LogFormatTest, anIncompleteFormatIsHarmless) {
  EXPECT_EQ(formatLogMessage("%", {}), "<missing>");
  EXPECT_EQ(formatLogMessage("50%", {7}), "507");
  EXPECT_EQ(formatLogMessage("%%%", {}), "%<missing>");
  EXPECT_EQ(formatLogMessage("%{", {7}), "7");
  EXPECT_EQ(formatLogMessage("%{public", {"text"}), "text");
  EXPECT_EQ(formatLogMessage("%{}", {"text"}), "<private>");
  EXPECT_EQ(formatLogMessage("%{public}", {"text"}), "text");
  EXPECT_EQ(formatLogMessage("%{,,public}s", {"text"}), "text");
  EXPECT_EQ(formatLogMessage("%08", {7}), "00000007");
  EXPECT_EQ(formatLogMessage("%ll", {7}), "7");
}

TEST(LogFormatTest, anEndlessNumberIsCutShort) {
  const auto wide = formatLogMessage("%9999d!", {7});
  EXPECT_EQ(wide.size(), 128u);
  EXPECT_EQ(wide.back(), '!');
  EXPECT_EQ(formatLogMessage("%f", {1e300}).size(), 127u);
  EXPECT_EQ(formatLogMessage("%99999999999d!", {7}), "!");  // an impossible width
}

struct LoggerTest : testing::Test {
  fakes::CapturedLog captured;
  const Logger logger{logSubsystem, "popover"};
};

TEST_F(LoggerTest, eachLevelReachesTheSinkWithItsCategory) {
  logger.debug("a");
  logger.info("b %d", 1);
  logger.log("c %{public}s", std::string("text"));
  logger.error("d");
  logger.fault("e");
  using Line = fakes::CapturedLog::Line;
  EXPECT_EQ(captured.lines(), (std::vector<Line>{{LogLevel::debug, "popover", "a"},
                                                 {LogLevel::info, "popover", "b 1"},
                                                 {LogLevel::standard, "popover", "c text"},
                                                 {LogLevel::error, "popover", "d"},
                                                 {LogLevel::fault, "popover", "e"}}));
}

TEST_F(LoggerTest, theSubsystemIsTheProducts) {
  std::string subsystem;
  const auto outer =
      Logger::setSink([&](const LogRecord& record) { subsystem = std::string(record.subsystem); });
  logger.log("line");
  Logger::setSink(outer);
  EXPECT_EQ(subsystem, "com.kv.vorli");
}

TEST_F(LoggerTest, setSinkReturnsThePreviousSinkAndWithoutOneLinesAreDropped) {
  const auto outer = Logger::setSink(nullptr);
  EXPECT_TRUE(outer);
  logger.log("dropped");
  EXPECT_FALSE(Logger::setSink(outer));
  logger.log("kept");
  EXPECT_EQ(captured.messages(), std::vector<std::string>{"kept"});
}

TEST_F(LoggerTest, threadsMayLogAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int k = 0; k < 100; ++k) logger.log("line %d", k);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(captured.lines().size(), 400u);
  EXPECT_EQ(captured.count("line 99"), 4);
}

}  // namespace
}  // namespace vorli
