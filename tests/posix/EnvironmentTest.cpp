#include "posix/Environment.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace vorli::posix {
namespace {

using EnvironmentParts = std::vector<std::string>;

TEST(EnvironmentTest, variableThatIsNotSetReadsAsEmpty) {
  ::setenv("VORLI_TEST_VARIABLE", "a b", 1);
  EXPECT_EQ(environmentVariable("VORLI_TEST_VARIABLE"), "a b");
  ::unsetenv("VORLI_TEST_VARIABLE");
  EXPECT_EQ(environmentVariable("VORLI_TEST_VARIABLE"), "");
}

TEST(EnvironmentTest, emptyPartsOfAListAreLeftOut) {
  EXPECT_EQ(splitList("/usr/share:/opt"), (EnvironmentParts{"/usr/share", "/opt"}));
  EXPECT_EQ(splitList("::a::b:"), (EnvironmentParts{"a", "b"}));
  EXPECT_EQ(splitList(""), EnvironmentParts{});
  EXPECT_EQ(splitList(":"), EnvironmentParts{});
  EXPECT_EQ(splitList("a:b;c", ';'), (EnvironmentParts{"a:b", "c"}));
}

}  // namespace
}  // namespace vorli::posix
