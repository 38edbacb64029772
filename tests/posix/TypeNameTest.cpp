#include "posix/TypeName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeinfo>

namespace vorli::posix {

struct NamedError {};

namespace {

struct HiddenError {};

std::string readable(std::string_view given) {
  FixedText<300> text;
  addTypeName(given, text);
  return std::string(text.text());
}

TEST(TypeNameTest, classesHaveTheirNamesInTheSource) {
  EXPECT_EQ(readable(typeid(std::runtime_error).name()), "std::runtime_error");
  EXPECT_EQ(readable(typeid(NamedError).name()), "vorli::posix::NamedError");
  EXPECT_EQ(readable(typeid(HiddenError).name()), "vorli::posix::(anonymous namespace)::HiddenError");
  EXPECT_EQ(readable("3Foo"), "Foo");
  EXPECT_EQ(readable("NSt10filesystem16filesystem_errorE"), "std::filesystem::filesystem_error");
}

TEST(TypeNameTest, otherTypesAreAsTheCompilerWritesThem) {
  EXPECT_EQ(readable("i"), "i");
  EXPECT_EQ(readable("PKc"), "PKc");
  EXPECT_EQ(readable("St6vectorIiSaIiEE"), "St6vectorIiSaIiEE");
  EXPECT_EQ(readable(""), "");
  EXPECT_EQ(readable("St"), "St");
}

TEST(TypeNameTest, falseLengthsAreHarmless) {
  EXPECT_EQ(readable("9Foo"), "9Foo");
  EXPECT_EQ(readable("99999999999999999999Foo"), "99999999999999999999Foo");
  EXPECT_EQ(readable("0"), "0");
  EXPECT_EQ(readable("N3FooE3Bar"), "N3FooE3Bar");
  const std::string longName = "400" + std::string(400, 'x');
  EXPECT_EQ(readable(longName), longName.substr(0, 300));
}

}  // namespace
}  // namespace vorli::posix
