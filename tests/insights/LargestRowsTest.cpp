#include "insights/LargestRows.h"

namespace vorli {
namespace {

using Sizes = std::vector<std::uint64_t>;

struct LargestRowsTest : testing::Test {
  Sizes find(const Sizes& sizes, std::size_t count) {
    std::vector<ProcessSnapshot> rows(sizes.size());
    for (std::size_t i = 0; i < sizes.size(); ++i) rows[i].residentBytes = sizes[i];
    Sizes found;
    for (const auto row : largest.find(rows, count, &ProcessSnapshot::residentBytes)) {
      found.push_back(rows[row].residentBytes);
    }
    return found;
  }

  LargestRows largest;
};

TEST_F(LargestRowsTest, theLargestComesFirst) {
  EXPECT_EQ(find({3, 9, 1, 7, 5, 8}, 3), (Sizes{9, 8, 7}));
  EXPECT_EQ(find({1, 2, 3, 4, 5, 6}, 3), (Sizes{6, 5, 4}));
  EXPECT_EQ(find({6, 5, 4, 3, 2, 1}, 3), (Sizes{6, 5, 4}));
  EXPECT_EQ(find({0, 0, 0, 1}, 1), (Sizes{1}));
}

TEST_F(LargestRowsTest, everyOrderOfSevenRowsGivesTheSameThree) {
  Sizes sizes{1, 2, 3, 4, 5, 6, 7};
  do {
    ASSERT_EQ(find(sizes, 3), (Sizes{7, 6, 5}));
  } while (std::ranges::next_permutation(sizes).found);
}

TEST_F(LargestRowsTest, equalRowsAreFoundOnceEach) {
  EXPECT_EQ(find({4, 4, 4, 4}, 3), (Sizes{4, 4, 4}));
  std::vector<ProcessSnapshot> rows(4);
  const auto found = largest.find(rows, 3, &ProcessSnapshot::cpuFraction);
  std::vector<std::uint32_t> indices(found.begin(), found.end());
  std::ranges::sort(indices);
  EXPECT_EQ(std::ranges::adjacent_find(indices), indices.end());
}

TEST_F(LargestRowsTest, ofFewerRowsThanAskedForAllAreFound) {
  EXPECT_EQ(find({2, 3}, 5), (Sizes{3, 2}));
  EXPECT_EQ(find({}, 5), Sizes{});
  EXPECT_EQ(find({2, 3}, 0), Sizes{});
}

}  // namespace
}  // namespace vorli
