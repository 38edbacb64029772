#include "posix/TextOrder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace vorli::posix {
namespace {

/// The order of texts in the locale that always exists.
struct TextOrderTest : testing::Test {
  TextOrderTest() { setenv("LC_ALL", "C.UTF-8", 1); }
  ~TextOrderTest() override { unsetenv("LC_ALL"); }
};

TEST_F(TextOrderTest, caseDoesNotCount) {
  const TextOrder order;
  EXPECT_EQ(order.sortKey("Acme"), order.sortKey("aCME"));
  EXPECT_EQ(order.sortKey("\xC3\x84rger"), order.sortKey("\xC3\xA4rger"));
  EXPECT_LT(order.sortKey("acme"), order.sortKey("Box"));
  EXPECT_LT(order.sortKey("Acme"), order.sortKey("acme 2"));
  EXPECT_LT(order.sortKey(""), order.sortKey("a"));
}

TEST_F(TextOrderTest, everyByteCounts) {
  const TextOrder order;
  EXPECT_NE(order.sortKey(std::string("a\0b", 3)), order.sortKey(std::string("a\0c", 3)));
  EXPECT_NE(order.sortKey("\xFF"), order.sortKey(""));
}

TEST_F(TextOrderTest, aMissingLocaleIsHarmless) {
  setenv("LC_ALL", "xx_YY.nothing", 1);
  const TextOrder order;
  EXPECT_LT(order.sortKey("Acme"), order.sortKey("box"));
}

}  // namespace
}  // namespace vorli::posix
