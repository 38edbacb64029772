#include "insights/CulpritSentence.h"

namespace vorli {
namespace {

using Segment = CulpritSentence::Segment;

std::vector<Segment> segments(std::vector<std::string> names, const char* verb) {
  return CulpritSentence({std::move(names), verb, ""}).segments();
}

TEST(CulpritSentenceTest, oneNameIsAChipAndTheRestOfTheSentence) {
  EXPECT_EQ(segments({"Notes"}, "is"),
            (std::vector<Segment>{{Segment::Kind::app, "Notes"},
                                  {Segment::Kind::text, " is using the most right now."}}));
}

TEST(CulpritSentenceTest, twoNamesAreTwoChips) {
  EXPECT_EQ(segments({"Notes", "Chrome"}, "are"),
            (std::vector<Segment>{{Segment::Kind::app, "Notes"},
                                  {Segment::Kind::text, " and "},
                                  {Segment::Kind::app, "Chrome"},
                                  {Segment::Kind::text, " are using the most right now."}}));
}

TEST(CulpritSentenceTest, moreNamesAreOnePieceOfText) {
  EXPECT_EQ(
      segments({"A", "B", "C"}, "are"),
      (std::vector<Segment>{{Segment::Kind::text, "**A**, **B**, and **C** are using the most right now."}}));
  EXPECT_EQ(segments({"A", "B", "C", "D"}, "are"),
            (std::vector<Segment>{
                {Segment::Kind::text, "**A**, **B**, **C**, and **D** are using the most right now."}}));
}

TEST(CulpritSentenceTest, aListIsJoinedAsAPersonWould) {
  EXPECT_EQ(joinedAsList({}), "");
  EXPECT_EQ(joinedAsList({"a"}), "a");
  EXPECT_EQ(joinedAsList({"a", "b"}), "a and b");
  EXPECT_EQ(joinedAsList({"a", "b", "c"}), "a, b, and c");
}

TEST(CulpritSentenceTest, aChipDescribesItsAction) {
  EXPECT_EQ(AppNameChip::helpText("Notes"), "Click to quit Notes");
  EXPECT_EQ(AppNameChip::accessibilityLabel("Notes"), "Quit Notes");
  EXPECT_EQ(AppNameChip::accessibilityHint("Notes"), "Closes Notes right away. It can still launch later.");
}

TEST(CulpritSentenceDeathTest, aSentenceAboutNobodyStopsTheProgram) {
  EXPECT_DEATH(CulpritSentence({{}, "are", ""}), "broken invariant");
}

TEST(CulpritSentenceTest, anApplicationThatCannotBeAskedIsNamedInASentenceWithoutAChip) {
  std::string whole;
  for (const auto& segment : CulpritSentence::closedByHand("Text Editor")) {
    EXPECT_EQ(segment.kind, CulpritSentence::Segment::Kind::text);
    whole += segment.text;
  }
  EXPECT_EQ(whole, "Text Editor has to be closed by hand on this desktop.");
  EXPECT_EQ(CulpritSentence::closedByHandText("Text Editor"), whole);
}

}  // namespace
}  // namespace vorli
