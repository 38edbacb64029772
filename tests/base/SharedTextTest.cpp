#include "base/SharedText.h"

#include <sstream>

namespace vorli {
namespace {

TEST(SharedTextTest, theDefaultIsTheEmptyText) {
  const SharedText none;
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(none.view(), "");
  EXPECT_EQ(none, SharedText(""));
}

TEST(SharedTextTest, copiesShareOneText) {
  const SharedText text("a text that is too long for a small string");
  const SharedText copy = text;
  EXPECT_EQ(copy.view().data(), text.view().data());
  EXPECT_EQ(copy, text);
}

TEST(SharedTextTest, comparesByContent) {
  EXPECT_EQ(SharedText("same"), SharedText(std::string("same")));
  EXPECT_FALSE(SharedText("same") == SharedText("other"));
  EXPECT_EQ(SharedText("same"), "same");
  EXPECT_EQ(SharedText("same"), std::string_view("same"));
  EXPECT_FALSE(SharedText("same") == SharedText());
}

TEST(SharedTextTest, keepsEveryByteAndPrintsItself) {
  const SharedText text(std::string("a\0b", 3));
  EXPECT_EQ(text.view().size(), 3u);
  std::ostringstream out;
  out << text;
  EXPECT_EQ(out.str(), std::string("a\0b", 3));
}

}  // namespace
}  // namespace vorli
