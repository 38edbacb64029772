#include "formats/ProcessorTimes.h"

#include <gtest/gtest.h>
#include <optional>

namespace vorli::formats {
namespace {

TEST(ProcessorTimesTest, theFirstLineIsTheSumOfAllProcessors) {
  EXPECT_EQ(parseProcessorTimes("cpu  10 20 30 40 50 60 70 80 0 0\ncpu0 1 2 3 4 5 6 7 8 0 0\n"),
            (ProcessorTimes{.user = 10,
                            .nice = 20,
                            .system = 30,
                            .idle = 40,
                            .inputOutputWait = 50,
                            .interrupt = 60,
                            .softInterrupt = 70}));
}

TEST(ProcessorTimesTest, onlyTheFirstFourAreNeeded) {
  EXPECT_EQ(parseProcessorTimes("cpu 10 20 30 40\n"),
            (ProcessorTimes{.user = 10, .nice = 20, .system = 30, .idle = 40}));
  EXPECT_EQ(parseProcessorTimes("cpu 10 20 30\n"), std::nullopt);
  EXPECT_EQ(parseProcessorTimes("cpu 10 20 30\n40"), std::nullopt);
  EXPECT_EQ(parseProcessorTimes("cpu x 20 30 40\n"), std::nullopt);
  EXPECT_EQ(parseProcessorTimes("cpu 10 x 30 40\n"), std::nullopt);
  EXPECT_EQ(parseProcessorTimes("cpu 10 20 x 40\n"), std::nullopt);
  EXPECT_EQ(parseProcessorTimes("cpu 10 20 30 x\n"), std::nullopt);
}

TEST(ProcessorTimesTest, aLineOfAnotherNameIsNotTheSum) {
  EXPECT_EQ(parseProcessorTimes("cpu0 10 20 30 40\n"), std::nullopt);
  EXPECT_EQ(parseProcessorTimes("intr 1\ncpu 10 20 30 40\n"), std::nullopt);
  EXPECT_EQ(parseProcessorTimes(""), std::nullopt);
}

TEST(ProcessorTimesTest, countsTheProcessorsOfAList) {
  EXPECT_EQ(parseProcessorCount("0\n"), 1);
  EXPECT_EQ(parseProcessorCount("0-3\n"), 4);
  EXPECT_EQ(parseProcessorCount("0-127"), 128);
  EXPECT_EQ(parseProcessorCount("0-3,6\n"), 5);
  EXPECT_EQ(parseProcessorCount("2-2,5-7,9"), 5);
}

TEST(ProcessorTimesTest, aMalformedListHasNoCount) {
  for (const char* list : {"", "\n", "x", "0-", "-3", "3-2", "0-x", "0,,1", ",0", "0 1", "0--1"})
    EXPECT_EQ(parseProcessorCount(list), std::nullopt) << list;
}

TEST(ProcessorTimesTest, aListOfMoreThanAMillionProcessorsHasNoCount) {
  EXPECT_EQ(parseProcessorCount("0-1048575"), 1'048'576);
  EXPECT_EQ(parseProcessorCount("0-1048576"), std::nullopt);
  EXPECT_EQ(parseProcessorCount("1048576"), std::nullopt);
  EXPECT_EQ(parseProcessorCount("0-1048575,0"), std::nullopt);
}

TEST(ProcessorTimesTest, theUptimeIsTheFirstNumber) {
  EXPECT_EQ(parseUptime("350735.47 234388.90\n"), 350735.47);
  EXPECT_EQ(parseUptime("x 234388.90\n"), std::nullopt);
  EXPECT_EQ(parseUptime("-5.0 1.0"), std::nullopt);
  EXPECT_EQ(parseUptime(""), std::nullopt);
}

}  // namespace
}  // namespace vorli::formats
