#include "ui/kit/Paragraph.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const QString sentence =
    QStringLiteral("Most apps update fine without these. You can turn them back on later.");

TEST(Paragraph, shortTextIsOneLine) {
  const Paragraph one(QStringLiteral("Idle"), TextRole::rowText(), 300.0);
  EXPECT_EQ(one.lines(), QStringList{"Idle"});
  EXPECT_EQ(one.height(), TextRole::rowText().leading);
}

TEST(Paragraph, linesFitTheirWidthAndLoseNothing) {
  const Paragraph text(sentence, TextRole::rowText(), 160.0);
  EXPECT_GT(text.lines().size(), 2);
  for (const QString& line : text.lines()) EXPECT_LE(textWidth(line, TextRole::rowText()), 160.0);
  EXPECT_EQ(text.lines().join(u' '), sentence);
}

TEST(Paragraph, longWordIsBrokenWhereItMustBe) {
  const QString word(80, u'm');
  const Paragraph text(word, TextRole::rowText(), 100.0);
  EXPECT_GT(text.lines().size(), 4);
  EXPECT_EQ(text.lines().join(QString()), word);
}

TEST(Paragraph, balancedTextKeepsItsNumberOfLinesAndGetsNarrower) {
  const Paragraph natural(sentence, TextRole::rowText(), 300.0);
  const Paragraph balanced(sentence, TextRole::rowText(), 300.0, Paragraph::Wrap::balanced);
  EXPECT_EQ(balanced.lines().size(), natural.lines().size());
  EXPECT_LT(balanced.naturalWidth(), natural.naturalWidth());
}

TEST(Paragraph, nonBreakingHyphenIsDrawnAsAPlainOneAndHolds) {
  const double width = 1.0 + std::max(textWidth(QStringLiteral("Vorli Auto-"), TextRole::rowTitle()),
                                      textWidth(QStringLiteral("Auto-polish"), TextRole::rowTitle()));
  const Paragraph text(QStringLiteral("Vorli Auto\u2011polish"), TextRole::rowTitle(), width);
  EXPECT_EQ(text.lines(), (QStringList{"Vorli", "Auto-polish"}));
}

TEST(Paragraph, nonBreakingSpaceHolds) {
  const QString date = QStringLiteral("quit unexpectedly on Mar\u00a01,\u00a02026");
  for (double width = 90.0; width < 260.0; width += 10.0) {
    const Paragraph text(date, TextRole::rowText(), width);
    EXPECT_TRUE(text.lines().back().contains(QStringLiteral("Mar\u00a01,\u00a02026"))) << width;
  }
}

TEST(Paragraph, emptyTextIsOneEmptyLine) {
  EXPECT_EQ(Paragraph(QString(), TextRole::rowText(), 100.0).lines(), QStringList{""});
}

}  // namespace
}  // namespace vorli::ui
