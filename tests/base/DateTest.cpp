#include "base/Date.h"

namespace vorli {
namespace {

TEST(DateTest, differencesAreSecondsAndMayBeNegative) {
  EXPECT_EQ(Date{12.5} - Date{10.0}, 2.5);
  EXPECT_EQ(Date{10.0} - Date{12.5}, -2.5);
  EXPECT_EQ(Date{10.0} + 0.5, Date{10.5});
}

TEST(DateTest, datesAreOrdered) {
  EXPECT_LT(Date{1.0}, Date{2.0});
  EXPECT_EQ(Date{2.0}, Date{2.0});
  EXPECT_GT(Date{}, Date::distantPast());
}

TEST(DateTest, theDistantPastIsTheFirstDayOfTheCalendar) {
  EXPECT_EQ(Date::distantPast().secondsSince1970, -62135596800.0);  // 719,162 days before 1970
}

}  // namespace
}  // namespace vorli
