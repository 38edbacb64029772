#include "formats/ProcStat.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

using linuxhost::RecordedProcess;
using linuxhost::RecordedTree;

constexpr RecordedProcess busy{.parent = 42,
                               .userTicks = 61022,
                               .systemTicks = 9034,
                               .startTicks = 501233,
                               .virtualBytes = 3145728000,
                               .residentPages = 180224};

std::string line(std::string_view name, const RecordedProcess& process = busy) {
  return RecordedTree::statLine(7, name, process);
}

TEST(ProcStatTest, readsTheFieldsThatAreUsed) {
  const auto text = line("sleep");
  EXPECT_EQ(parseProcStat(text), (ProcStat{.name = "sleep",
                                           .parentPID = 42,
                                           .userTicks = 61022,
                                           .systemTicks = 9034,
                                           .startTicks = 501233,
                                           .hasMemory = true,
                                           .residentPages = 180224}));
}

TEST(ProcStatTest, theNameEndsAtTheLastBracket) {
  for (const std::string_view name :
       {"Web Content (2)", ") S 1 2 3", "(", "a) (b", ":-)", "two\nlines", "\xff\xfe", " ", "",
        "a name of sixty-three bytes, as the kernel gives them to workers"}) {
    const auto text = line(name);
    const auto stat = parseProcStat(text);
    ASSERT_TRUE(stat) << name;
    EXPECT_EQ(stat->name, name);
    EXPECT_EQ(stat->parentPID, 42);
    EXPECT_EQ(stat->residentPages, 180224U);
  }
}

TEST(ProcStatTest, everyTextThatIsCutShortIsEmpty) {
  const auto text = line("sleep");
  const auto whole = text.find(" 18446744073709551615");
  for (std::size_t length = 0; length <= whole; ++length) {
    EXPECT_FALSE(parseProcStat(std::string_view(text).substr(0, length))) << length;
  }
  EXPECT_TRUE(parseProcStat(std::string_view(text).substr(0, whole + 1)));
}

TEST(ProcStatTest, numbersThatMakeNoSenseAreRefused) {
  const auto with = [](const std::string& from, const std::string& to) {
    auto text = line("sleep");
    text.replace(text.find(from), from.size(), to);
    return parseProcStat(text).has_value();
  };
  EXPECT_TRUE(with(" 42 ", " 2147483647 "));
  EXPECT_FALSE(with(" 42 ", " 2147483648 "));
  EXPECT_FALSE(with(" 42 ", " -1 "));
  EXPECT_TRUE(with(" 61022 ", " 9223372036854775807 "));
  EXPECT_FALSE(with(" 61022 ", " 9223372036854775808 "));
  EXPECT_FALSE(with(" 61022 ", " 99999999999999999999999999999999 "));
  EXPECT_FALSE(with(" 9034 ", " -9034 "));
  EXPECT_FALSE(with(" 501233 ", " 50x233 "));
  EXPECT_FALSE(with(" 501233 ", "  501233 "));
  EXPECT_FALSE(with(" 501233 ", " 5012:3 "));
  EXPECT_FALSE(with(" 501233 ", " 5012/3 "));
  EXPECT_FALSE(with(" 501233 ",
                    " 50\xb0"
                    "3 "));
  EXPECT_FALSE(with(" 180224 ", " 9223372036854775807 "));
}

TEST(ProcStatTest, aTextThatIsNotAStatLineIsEmpty) {
  for (const char* text :
       {"", "\n", "7", "7 (", "7 )", ")(", "7 sleep S 1 2 3", "7 (a)", "7 (a) ", "7 (a) S", "7 (a) S "}) {
    EXPECT_FALSE(parseProcStat(text)) << text;
  }
  EXPECT_FALSE(parseProcStat(std::string(4096, '(')));
  EXPECT_FALSE(parseProcStat(std::string(4096, ')')));
  EXPECT_FALSE(parseProcStat("7 (a) S " + std::string(4096, ' ')));
  EXPECT_FALSE(parseProcStat("7 (a) S " + std::string(4096, '1')));
}

TEST(ProcStatTest, numbersOfEveryLengthAreRead) {
  std::uint64_t number = 1;
  for (int length = 1; length <= 18;
       ++length, number = number * 10 + static_cast<std::uint64_t>(length % 10)) {
    auto process = busy;
    process.userTicks = number;
    process.startTicks = number * 9 / 10;
    const auto text = line("sleep", process);
    const auto stat = parseProcStat(text);
    ASSERT_TRUE(stat) << number;
    EXPECT_EQ(stat->userTicks, number);
    EXPECT_EQ(stat->systemTicks, 9034U);
    EXPECT_EQ(stat->startTicks, number * 9 / 10);
  }
}

TEST(ProcStatTest, aKernelThreadHasNoMemoryOfItsOwn) {
  auto process = busy;
  process.virtualBytes = 0;
  const auto text = line("kthreadd", process);
  const auto stat = parseProcStat(text);
  ASSERT_TRUE(stat);
  EXPECT_FALSE(stat->hasMemory);
}

TEST(ProcStatTest, twoLargestTimesStillAddUp) {
  auto process = busy;
  process.userTicks = process.systemTicks = 9223372036854775807U;
  const auto text = line("sleep", process);
  const auto stat = parseProcStat(text);
  ASSERT_TRUE(stat);
  std::uint64_t sum = 0;
  EXPECT_FALSE(__builtin_add_overflow(stat->userTicks, stat->systemTicks, &sum));
}

TEST(ProcStatTest, residentPagesAreTheSecondNumberOfStatm) {
  EXPECT_EQ(parseResidentPages("768000 181000 61000 150 0 400000 0\n"), 181000U);
  EXPECT_FALSE(parseResidentPages("768000"));
  EXPECT_FALSE(parseResidentPages("768000 -1 0"));
  EXPECT_FALSE(parseResidentPages("1 9223372036854775807 0"));
  EXPECT_FALSE(parseResidentPages(""));
}

}  // namespace
}  // namespace vorli::formats
