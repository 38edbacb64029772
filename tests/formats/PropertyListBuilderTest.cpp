#include "formats/PropertyListBuilder.h"

#include <gtest/gtest.h>
#include <string_view>

namespace vorli::formats {
namespace {

TEST(PropertyListBuilderTest, scalarsHaveTheirValues) {
  PropertyListBuilder builder(PropertyListBuilder::Repeated::firstCounts);
  EXPECT_EQ(builder.value(builder.addNull()).kind(), PropertyList::Kind::null);
  EXPECT_EQ(builder.value(builder.addBoolean(true)).boolean(), true);
  EXPECT_EQ(builder.value(builder.addInteger(-7)).integer(), -7);
  EXPECT_EQ(builder.value(builder.addReal(-0.5)).real(), -0.5);
  EXPECT_EQ(builder.value(builder.addDate(Date{12.5})).date(), Date{12.5});
  EXPECT_EQ(builder.value(builder.addUID(4294967295)).uid(), 4294967295U);
  EXPECT_EQ(builder.value(builder.addText("")).text(), "");
  EXPECT_EQ(builder.value(builder.addData(std::string_view("\0\xFF", 2))).data(),
            std::string_view("\0\xFF", 2));
}

TEST(PropertyListBuilderTest, aValueIsAppendedToTheInnermostOpenContainer) {
  PropertyListBuilder builder(PropertyListBuilder::Repeated::firstCounts);
  ASSERT_TRUE(builder.open(PropertyList::Kind::array));
  builder.append(builder.addInteger(1));
  ASSERT_TRUE(builder.open(PropertyList::Kind::set));
  EXPECT_EQ(builder.depth(), 2U);
  EXPECT_EQ(builder.openKind(), PropertyList::Kind::set);
  EXPECT_TRUE(builder.contents().empty());
  builder.append(builder.addInteger(2));
  EXPECT_EQ(builder.contents().size(), 1U);
  builder.append(builder.close());
  EXPECT_EQ(builder.contents().size(), 2U);
  const auto list = builder.finish(builder.close());
  EXPECT_EQ(list.root().kind(), PropertyList::Kind::array);
  ASSERT_EQ(list.root().count(), 2U);
  EXPECT_EQ(list.root().element(0).integer(), 1);
  EXPECT_EQ(list.root().element(1).kind(), PropertyList::Kind::set);
  EXPECT_EQ(list.root().element(1).element(0).integer(), 2);
}

TEST(PropertyListBuilderTest, aDiscardedContainerLeavesNothing) {
  PropertyListBuilder builder(PropertyListBuilder::Repeated::firstCounts);
  ASSERT_TRUE(builder.open(PropertyList::Kind::array));
  builder.append(builder.addInteger(1));
  ASSERT_TRUE(builder.open(PropertyList::Kind::dictionary));
  builder.append(builder.addText("key"));
  builder.discard();
  EXPECT_EQ(builder.depth(), 1U);
  const auto list = builder.finish(builder.close());
  ASSERT_EQ(list.root().count(), 1U);
  EXPECT_EQ(list.root().element(0).integer(), 1);
}

TEST(PropertyListBuilderTest, refusesToNestTooDeep) {
  PropertyListBuilder builder(PropertyListBuilder::Repeated::firstCounts);
  for (std::size_t depth = 0; depth < 512; ++depth)
    ASSERT_TRUE(builder.open(PropertyList::Kind::array)) << depth;
  EXPECT_FALSE(builder.open(PropertyList::Kind::array));
  EXPECT_EQ(builder.depth(), 512U);
}

TEST(PropertyListBuilderTest, theFirstOrTheLastOfEqualKeysCounts) {
  using enum PropertyListBuilder::Repeated;
  for (const auto repeated : {firstCounts, lastCounts}) {
    PropertyListBuilder builder(repeated);
    ASSERT_TRUE(builder.open(PropertyList::Kind::dictionary));
    for (const std::int64_t value : {1, 2, 3}) {
      builder.append(builder.addText("key"));
      builder.append(builder.addInteger(value));
    }
    const auto list = builder.finish(builder.close());
    EXPECT_EQ(list.root().count(), 1U);
    const auto value = list.root().find("key");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->integer(), repeated == firstCounts ? 1 : 3);
  }
}

TEST(PropertyListBuilderTest, leavesOutEntriesWhoseKeyIsNotAText) {
  PropertyListBuilder builder(PropertyListBuilder::Repeated::firstCounts);
  ASSERT_TRUE(builder.open(PropertyList::Kind::dictionary));
  builder.append(builder.addInteger(1));
  builder.append(builder.addInteger(2));
  builder.append(builder.addText("key"));
  builder.append(builder.addInteger(3));
  const auto list = builder.finish(builder.close());
  EXPECT_EQ(list.root().count(), 1U);
  EXPECT_EQ(list.root().find("key")->integer(), 3);
}

}  // namespace
}  // namespace vorli::formats
