#include "formats/PressureStall.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

TEST(PressureStallTest, readsTheTenSecondAverages) {
  EXPECT_EQ(parsePressureStall("some avg10=12.50 avg60=3.00 avg300=0.75 total=123456\n"
                               "full avg10=1.25 avg60=0.50 avg300=0.10 total=6543\n"),
            (PressureStall{.some = 12.5, .full = 1.25}));
}

TEST(PressureStallTest, aMissingLineLeavesItsHalfEmpty) {
  EXPECT_EQ(parsePressureStall(""), PressureStall{});
  EXPECT_EQ(parsePressureStall("some avg10=100.00 avg60=0.00 total=1\n"),
            (PressureStall{.some = 100.0, .full = {}}));
  EXPECT_EQ(parsePressureStall("full avg10=2.00"), (PressureStall{.some = {}, .full = 2.0}));
  EXPECT_EQ(parsePressureStall("most avg10=2.00\n"), PressureStall{});
}

TEST(PressureStallTest, anAverageThatIsMissingOrCutOffIsEmpty) {
  EXPECT_EQ(parsePressureStall("full avg60=3.00 avg10=2.00\nsome"), PressureStall{});
  for (const char* text : {"some", "some ", "some avg", "some avg10", "some avg10=", "some avg10= 1.00"}) {
    EXPECT_EQ(parsePressureStall(text), PressureStall{}) << text;
  }
}

TEST(PressureStallTest, anAverageThatIsNotANumberIsEmpty) {
  for (const char* text : {"some avg10=-1.00\n", "some avg10=nan\n", "some avg10=inf\n", "some avg10=1e9\n",
                           "some avg10=1,5\n", "some avg10=1000000000000000.0\n"}) {
    EXPECT_EQ(parsePressureStall(text), PressureStall{}) << text;
  }
}

}  // namespace
}  // namespace vorli::formats
