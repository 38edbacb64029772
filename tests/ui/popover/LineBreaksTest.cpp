#include "ui/popover/LineBreaks.h"
#include "ui/popover/TextStyle.h"

#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

// Every letter as wide as the next.
double letters(const QString& text) {
  return static_cast<double>(text.size());
}

QStringList set(const char* sentence, const TextStyle& style) {
  return balancedLines(QString::fromUtf8(sentence), 230.0,
                       [&style](const QString& text) { return style.width(text); });
}

TEST(LineBreaks, sentenceThatFitsStaysOnOneLine) {
  EXPECT_EQ(balancedLines("one two three", 13.0, letters), QStringList{"one two three"});
  EXPECT_EQ(balancedLines("one two three", 12.0, letters).size(), 2);
}

TEST(LineBreaks, linesAreOfNearlyTheSameLength) {
  EXPECT_EQ(balancedLines("aaaa bbbb cccc dddd", 14.0, letters), (QStringList{"aaaa bbbb", "cccc dddd"}));
}

TEST(LineBreaks, noLineEndsInAWordThatBelongsToTheNext) {
  EXPECT_EQ(balancedLines("aaaa bbbb for cc", 13.0, letters), (QStringList{"aaaa bbbb", "for cc"}));
  EXPECT_EQ(balancedLines("see your Mac now", 12.0, letters), (QStringList{"see", "your Mac now"}));
}

TEST(LineBreaks, loginItemsStayTogether) {
  EXPECT_EQ(balancedLines("in Login Items here", 15.0, letters), (QStringList{"in Login Items", "here"}));
}

TEST(LineBreaks, tooWideWordIsOnALineOfItsOwn) {
  EXPECT_EQ(balancedLines("a-very-wide-word x", 8.0, letters), (QStringList{"a-very-wide-word", "x"}));
}

TEST(LineBreaks, emptySentenceHasNoLines) {
  EXPECT_TRUE(balancedLines({}, 230.0, letters).isEmpty());
}

TEST(LineBreaks, sentencesOfThePopoverBreakWhereTheySound) {
  const auto& styles = PopoverTextStyles::shared();
  EXPECT_EQ(set("Your Mac is starting to fill up.", styles.headline).size(), 1);
  EXPECT_EQ(set("Now, your Mac has room to breathe.", styles.headline),
            (QStringList{"Now, your Mac has", "room to breathe."}));
  EXPECT_EQ(set("Approve Vorli in Login Items for a full polish.", styles.aside),
            (QStringList{"Approve Vorli in Login Items", "for a full polish."}));
  EXPECT_EQ(set("Couldn't reach the helper for a full polish.", styles.aside),
            (QStringList{"Couldn't reach the helper", "for a full polish."}));
  EXPECT_EQ(set("Held off the deep polish so your audio stays smooth.", styles.aside),
            (QStringList{"Held off the deep polish", "so your audio stays smooth."}));
}

TEST(LineBreaks, sentenceIsCutAfterItsFirstFullStop) {
  EXPECT_EQ(voicesOf("Your Mac is full. Time to polish it.").headline, "Your Mac is full.");
  EXPECT_EQ(voicesOf("Your Mac is full. Time to polish it.").aside, "Time to polish it.");
  EXPECT_EQ(voicesOf("Your Mac feels great.").headline, "Your Mac feels great.");
  EXPECT_TRUE(voicesOf("Your Mac feels great.").aside.isEmpty());
}

}  // namespace
}  // namespace vorli::ui
