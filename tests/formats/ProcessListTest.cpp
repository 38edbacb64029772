#include "formats/ProcessList.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::formats {
namespace {

using Rows = std::vector<ProcessListRow>;

TEST(ProcessListTest, readsThreeColumns) {
  EXPECT_EQ(parseProcessList("    1   0.0  12288\n  512  99.9 204800\n"),
            (Rows{{1, 0.0, 12288.0}, {512, 99.9, 204800.0}}));
}

TEST(ProcessListTest, anEmptyTextIsAnEmptyList) {
  EXPECT_EQ(parseProcessList(""), Rows());
  EXPECT_EQ(parseProcessList("\n\n \n"), Rows());
}

TEST(ProcessListTest, leavesOutLinesThatAreNoProcess) {
  for (const char* line : {"1 0.0", "x 0.0 1", "1 x 1", "1 0.0 x", "1.5 0.0 1", "1 1,5 100", "1 nan 1",
                           "1 0.0 inf", "1 0x10 1", "", "PID %CPU RSS"})
    EXPECT_EQ(parseProcessList(std::string(line) + "\n7 1.0 2\n"), (Rows{{7, 1.0, 2.0}})) << line;
}

TEST(ProcessListTest, aPidMustFit32Bits) {
  EXPECT_EQ(parseProcessList("2147483647 0.0 1"), (Rows{{2147483647, 0.0, 1.0}}));
  EXPECT_EQ(parseProcessList("2147483648 0.0 1"), Rows());
  EXPECT_EQ(parseProcessList("99999999999999999999 0.0 1"), Rows());
  EXPECT_EQ(parseProcessList("-2147483648 0.0 1"), (Rows{{-2147483647 - 1, 0.0, 1.0}}));
  EXPECT_EQ(parseProcessList("-2147483649 0.0 1"), Rows());
}

TEST(ProcessListTest, ignoresWhatFollowsTheThreeColumns) {
  EXPECT_EQ(parseProcessList("3 1.5 100 /usr/bin/acme 4 5\n"), (Rows{{3, 1.5, 100.0}}));
}

TEST(ProcessListTest, aTextThatIsNotUTF8IsNoList) {
  EXPECT_EQ(parseProcessList("1 0.0 100\n2 0.0 \xFF\n"), std::nullopt);
}

}  // namespace
}  // namespace vorli::formats
