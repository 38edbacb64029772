#include "base/ISOTimestamp.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace vorli {
namespace {

std::string written(double seconds) {
  return std::string(ISOTimestamp(Date{seconds}).text());
}

TEST(ISOTimestampTest, momentIsWrittenInUTCWithMilliseconds) {
  EXPECT_EQ(written(1'772'357'405.123), "2026-03-01T09:30:05.123Z");
  EXPECT_EQ(written(0.0), "1970-01-01T00:00:00.000Z");
  EXPECT_EQ(written(951'782'399.999), "2000-02-28T23:59:59.999Z");
  EXPECT_EQ(written(951'782'400.0), "2000-02-29T00:00:00.000Z");
}

TEST(ISOTimestampTest, momentBefore1970CountsFromItsOwnDay) {
  EXPECT_EQ(written(-0.001), "1969-12-31T23:59:59.999Z");
  EXPECT_EQ(written(Date::distantPast().secondsSince1970), "0001-01-01T00:00:00.000Z");
}

TEST(ISOTimestampTest, fractionsOfAMillisecondAreCutOff) {
  EXPECT_EQ(written(1.9989), "1970-01-01T00:00:01.998Z");
}

TEST(ISOTimestampTest, momentsBeyondFourDigitYearsAreClamped) {
  EXPECT_EQ(written(1e18), "9999-12-31T23:59:59.999Z");
  EXPECT_EQ(written(-1e18), "0000-01-01T00:00:00.000Z");
  EXPECT_EQ(written(std::numeric_limits<double>::infinity()), "9999-12-31T23:59:59.999Z");
}

TEST(ISOTimestampTest, textIsReadBack) {
  EXPECT_EQ(parseISOTimestamp("2026-03-01T09:30:05.123Z"), Date{1'772'357'405.123});
  EXPECT_EQ(parseISOTimestamp("1969-12-31T23:59:59.999Z"), Date{-0.001});
  EXPECT_EQ(parseISOTimestamp("2026-03-01T11:30:05.123+02:00"), Date{1'772'357'405.123});
  EXPECT_EQ(parseISOTimestamp("2026-03-01T09:00:05.123-00:30"), Date{1'772'357'405.123});
}

TEST(ISOTimestampTest, everyMillisecondSurvivesARoundTrip) {
  for (int millisecond = 0; millisecond < 1000; ++millisecond) {
    const auto text = written(1'772'357'405.0 + millisecond / 1000.0);
    const auto date = parseISOTimestamp(text);
    ASSERT_TRUE(date);
    EXPECT_EQ(written(date->secondsSince1970), text);
  }
}

TEST(ISOTimestampTest, otherTextsAreRefused) {
  for (const char* text :
       {"", "2026-03-01", "2026-03-01T09:30:05Z", "2026-03-01T09:30:05.12Z", "2026-03-01T09:30:05.123",
        "2026-03-01T09:30:05.123Zulu", "2026-02-29T09:30:05.123Z", "2026-13-01T09:30:05.123Z",
        "2026-00-01T09:30:05.123Z", "2026-03-01T24:30:05.123Z", "2026-03-01T09:60:05.123Z",
        "2026-03-01T09:30:60.123Z", "2026-03-01T09-30-05.123Z", "2026-03-01 09:30:05.123Z",
        "+026-03-01T09:30:05.123Z", "2026-03-01T09:30:05.123 02:00", "2026-03-01T09:30:05.123+2400"}) {
    EXPECT_FALSE(parseISOTimestamp(text)) << text;
  }
}

}  // namespace
}  // namespace vorli
