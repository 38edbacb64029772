#include "ui/popover/PopoverLayout.h"

#include <cmath>
#include <ctime>
#include <gtest/gtest.h>

namespace vorli::ui {
namespace {

const QString full = QStringLiteral("Your Mac is full. Time to polish it.");
const QString filling = QStringLiteral("Your Mac is starting to fill up.");

using Under = PopoverGrid::Under;

WordsPicture words(double height, const QString& sentence, Under under = Under::nothing) {
  WordsPicture words;
  words.sentence.text = sentence;
  words.headlineTop = PopoverGrid::of(height, sentence, under).headlineTop;
  return words;
}

double ringCentre(double height, const QString& sentence, Under under = Under::nothing) {
  return PopoverGrid::of(height, sentence, under).ringCentreY;
}

CulpritPicture twoNames(const char* first, const char* second) {
  using enum CulpritPiece::Kind;
  return {.pieces = {{name, QString::fromUtf8(first)},
                     {text, QStringLiteral(" and ")},
                     {name, QString::fromUtf8(second)},
                     {text, QStringLiteral(" are using the most right now.")}},
          .names = {{}, {}}};
}

CulpritPicture oneName(const char* name) {
  return {.pieces = {{CulpritPiece::Kind::name, QString::fromUtf8(name)},
                     {CulpritPiece::Kind::text, QStringLiteral(" is using the most right now.")}},
          .names = {{}}};
}

TEST(PopoverLayout, ringAndHeadlineArePlacedByTheHeightOfTheCard) {
  EXPECT_EQ(ringCentre(240.0, filling), 96.0);
  EXPECT_EQ(words(240.0, full).headlineTop, 175.0);
  EXPECT_EQ(ringCentre(264.0, filling), 98.0);
  EXPECT_EQ(words(264.0, filling).headlineTop, 177.0);
  EXPECT_EQ(ringCentre(304.0, full), 102.0);
  EXPECT_EQ(words(304.0, full).headlineTop, 179.0);
  EXPECT_EQ(ringCentre(304.0, filling), 110.0);
  EXPECT_EQ(words(304.0, filling).headlineTop, 187.0);
  EXPECT_EQ(ringCentre(304.0, full, Under::culprits), 102.0);
}

// Compares the room between the ring's outer edge and the top of the card with the room below the last line.
TEST(PopoverLayout, oneLineOfCulpritsLiesInTheMiddleOfTheCard) {
  auto content = words(304.0, filling, Under::culprits);
  content.culprits = oneName("Chrome");
  const double above = ringCentre(304.0, filling, Under::culprits) - 55.0;
  const double below = 304.0 - PopoverLayout::of(content, 1.0).bottom;
  EXPECT_EQ(above, 59.0);
  EXPECT_EQ(below, 63.0);
}

TEST(PopoverLayout, sentenceOfTwoLinesHasRoomForItsCulpritsAndForTheQuestion) {
  const QString longer = QStringLiteral("Your computer is starting to fill up.");
  auto content = words(304.0, longer, Under::culprits);
  ASSERT_EQ(PopoverLayout::of(content, 1.0).headline.size(), 2U);
  const double above = ringCentre(304.0, longer, Under::culprits) - 55.0;
  content.culprits = twoNames("Chrome", "Photoshop");
  EXPECT_EQ(above, 41.0);
  EXPECT_EQ(304.0 - PopoverLayout::of(content, 1.0).bottom, 43.0);
  content.culprits.reset();
  content.quit = QuitPicture{QStringLiteral("Chrome"), {}, {}};
  EXPECT_EQ(304.0 - PopoverLayout::of(content, 1.0).bottom, 21.0);
}

TEST(PopoverLayout, headlineAndAsideAreOnTheirBaselines) {
  const auto layout = PopoverLayout::of(words(304.0, full), 1.0);
  ASSERT_EQ(layout.headline.size(), 1U);
  ASSERT_EQ(layout.aside.size(), 1U);
  EXPECT_EQ(layout.headline[0].origin.y(), 195.0);
  EXPECT_EQ(layout.aside[0].origin.y(), 214.0);
  EXPECT_EQ(layout.bottom, 219.0);
}

TEST(PopoverLayout, linesAreCentredAndBeginOnADevicePixel) {
  for (const double pixelRatio : {1.0, 1.5, 2.0}) {
    const auto layout = PopoverLayout::of(words(240.0, filling), pixelRatio);
    const auto& line = layout.headline.at(0);
    const double pixels = line.origin.x() * pixelRatio;
    EXPECT_EQ(pixels, std::round(pixels));
    const double width = PopoverTextStyles::shared().headline.width(line.text);
    EXPECT_NEAR(line.origin.x() + width / 2.0, 135.0, 0.5 / pixelRatio + 1e-9);
  }
}

TEST(PopoverLayout, culpritSentenceIsBelowTheAsideAndNothingAboveItMoves) {
  auto content = words(304.0, full);
  const auto before = PopoverLayout::of(content, 1.0);
  content.culprits = twoNames("Chrome", "Photoshop");
  const auto layout = PopoverLayout::of(content, 1.0);
  ASSERT_EQ(layout.culprits->names.size(), 2U);
  EXPECT_EQ(layout.culprits->names[0].box.top(), 231.0);  // 12 under the aside
  EXPECT_EQ(layout.culprits->names[0].baseline, 242.0);
  EXPECT_EQ(layout.culprits->texts.back().origin.y(), 258.0);  // 16 further down
  EXPECT_EQ(layout.headline[0].origin, before.headline[0].origin);
  EXPECT_EQ(304.0 - layout.bottom, 304.0 - (219.0 + 12.0 + 30.0));
}

TEST(PopoverLayout, culpritsWithoutAnAsideAreTwoPointsLower) {
  auto content = words(304.0, filling, Under::culprits);
  content.culprits = oneName("Chrome");
  const auto layout = PopoverLayout::of(content, 1.0);
  EXPECT_EQ(layout.culprits->names[0].box.top(), 191.0 + 22.0 + 14.0);
}

TEST(PopoverLayout, blankAtTheBeginningOfALineDoesNotPushIt) {
  auto content = words(304.0, full);
  content.culprits = twoNames("Chrome", "Photoshop");
  const auto layout = PopoverLayout::of(content, 1.0);
  const auto& closing = layout.culprits->texts.back();
  ASSERT_EQ(closing.text, " are using the most right now.");
  ASSERT_EQ(closing.origin.y(), layout.culprits->names[0].baseline + 16.0);
  const auto& style = PopoverTextStyles::shared().culprit;
  const double left = closing.origin.x() + style.width(QStringLiteral(" "));
  const double right = closing.origin.x() + style.width(closing.text);
  EXPECT_NEAR((left + right) / 2.0, 135.0, 0.51);
}

TEST(PopoverLayout, plateOfANameReachesPastIt) {
  const PlacedName name{QStringLiteral("x"), {100.0, 50.0, 30.0, 14.0}, 61.0};
  EXPECT_EQ(name.plate(), QRectF(95.0, 48.0, 40.0, 18.0));
}

TEST(PopoverLayout, longNamesTakeThreeLinesAndStayInTheCard) {
  auto content = words(304.0, full);
  content.culprits = twoNames("Logitech G HUB Agent", "Microsoft Remote Desktop Beta");
  const auto layout = PopoverLayout::of(content, 1.0);
  EXPECT_EQ(layout.culprits->names[1].box.top(), layout.culprits->names[0].box.top() + 16.0);
  EXPECT_EQ(304.0 - layout.bottom, 27.0);
  for (const auto& name : layout.culprits->names) {
    EXPECT_GE(name.box.left(), 20.0);
    EXPECT_LE(name.box.right(), 250.0);
  }
}

TEST(PopoverLayout, nameWiderThanTheColumnIsCutAndStaysInTheCard) {
  auto content = words(304.0, full);
  content.culprits = twoNames("Microsoft Remote Desktop Beta for Enterprise Customers", "Figma");
  const auto layout = PopoverLayout::of(content, 1.0);
  const auto& name = layout.culprits->names[0];
  EXPECT_TRUE(name.text.startsWith("Microsoft Remote Desktop"));
  EXPECT_TRUE(name.text.endsWith("…"));
  EXPECT_GE(name.box.left(), 20.0);
  EXPECT_LE(name.box.right(), 250.0 + 1e-9);
  EXPECT_EQ(layout.culprits->names[1].text, "Figma");
  EXPECT_GE(304.0 - layout.bottom, 11.0);
}

TEST(PopoverLayout, quitQuestionHasItsButtonsBeneath) {
  auto content = words(304.0, full);
  content.quit = QuitPicture{QStringLiteral("Chrome"), {}, {}};
  const auto layout = PopoverLayout::of(content, 1.0);
  EXPECT_EQ(layout.quit->question.text, "Quit Chrome?");
  EXPECT_EQ(layout.quit->question.origin.y(), 243.0);
  EXPECT_EQ(layout.quit->cancelText.origin.y(), 273.0);
  EXPECT_EQ(layout.quit->quitText.origin.y(), 273.0);
  EXPECT_EQ(layout.quit->cancel, QRectF(47.0, 255.0, 84.0, 28.0));
  EXPECT_EQ(layout.quit->quit, QRectF(139.0, 255.0, 84.0, 28.0));
  EXPECT_EQ(304.0 - layout.bottom, 21.0);
}

TEST(PopoverLayout, longNameIsCutSoThatTheQuestionFits) {
  auto content = words(304.0, filling);
  content.quit = QuitPicture{QStringLiteral("Microsoft Remote Desktop Beta for Enterprise"), {}, {}};
  const auto layout = PopoverLayout::of(content, 1.0);
  const QString question = layout.quit->question.text;
  EXPECT_TRUE(question.startsWith("Quit Microsoft Remote"));
  EXPECT_TRUE(question.endsWith("…?"));
  EXPECT_LE(PopoverTextStyles::shared().question.width(question), 230.0);
}

TEST(PopoverLayout, cutTextKeepsWholeLetters) {
  const auto& style = PopoverTextStyles::shared().question;
  const QString faces = QString::fromUtf8("\U0001F600\U0001F600\U0001F600\U0001F600");
  const QString cut = cutToWidth(style, faces, style.width(faces) * 0.7);
  EXPECT_TRUE(cut.endsWith("…"));
  EXPECT_FALSE(cut.at(cut.size() - 2).isHighSurrogate());
}

TEST(PopoverLayout, textWithoutRoomIsEmpty) {
  EXPECT_EQ(cutToWidth(PopoverTextStyles::shared().question, QStringLiteral("Chrome"), 1.0), "…");
}

TEST(PopoverLayout, textOfManyPagesIsCutWithoutDelay) {
  const auto& style = PopoverTextStyles::shared().name;
  const QString text = QStringLiteral("Chrome ").repeated(5000);
  style.width(text);  // loads the font
  const auto begun = std::clock();
  style.width(text);
  const auto measured = std::clock();
  const QString cut = cutToWidth(style, text, 230.0);
  // Halving measures the whole text and at most 16 parts of it; letter by letter there would be 35,000.
  EXPECT_LT(std::clock() - measured, 200 * (measured - begun + 1));
  EXPECT_TRUE(cut.startsWith("Chrome Chrome"));
  EXPECT_LE(style.width(cut), 230.0);
}

TEST(PopoverLayout, bannerIsAnEvenCapsule) {
  auto content = words(264.0, QStringLiteral("Your Mac feels great."));
  content.banner = BannerPicture{QStringLiteral("12% LIGHTER")};
  const auto layout = PopoverLayout::of(content, 1.0);
  EXPECT_EQ(layout.banner->capsule.top(), 177.0 + 22.0 + 12.0);
  EXPECT_EQ(layout.banner->capsule.height(), 24.0);
  EXPECT_EQ(std::fmod(layout.banner->capsule.width(), 2.0), 0.0);
  EXPECT_EQ(layout.banner->text.origin.y(), layout.banner->capsule.top() + 16.0);
  EXPECT_EQ(264.0 - layout.bottom, 29.0);
}

TEST(PopoverLayout, linkIsBelowTheTwoLinesOfItsSentence) {
  auto content = words(304.0, QStringLiteral("A gentle tidy. Couldn't reach the helper for a full polish."));
  content.link = LinkPicture{};
  const auto layout = PopoverLayout::of(content, 1.0);
  EXPECT_EQ(layout.link->capsule.top(), 179.0 + 22.0 + 36.0 + 10.0);
  EXPECT_EQ(layout.link->capsule.height(), 26.0);
  EXPECT_EQ(304.0 - layout.bottom, 31.0);
  EXPECT_NEAR(layout.link->capsule.center().x(), 135.0, 0.5);
  // 12, the text, 6, the symbol of 10, 12.
  const double textWidth = PopoverTextStyles::shared().link.width(layout.link->text.text);
  EXPECT_EQ(layout.link->capsule.width(), std::round(textWidth + 40.0));
  EXPECT_EQ(layout.link->text.origin, layout.link->capsule.topLeft() + QPointF(12.0, 17.0));
  EXPECT_EQ(layout.linkSymbol.topLeft(), layout.link->capsule.topLeft() + QPointF(18.0 + textWidth, 8.0));
  EXPECT_EQ(layout.linkSymbol.size(), QSizeF(10.0, 10.0));
}

}  // namespace
}  // namespace vorli::ui
