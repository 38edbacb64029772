#include "ui/windows/OnboardingPicture.h"

#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/QtText.h"

#include <QPainterPath>
#include <QRadialGradient>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

using Mood = OnboardingView::Mood;
using State = OnboardingView::State;

constexpr double heroTop = 32.0, leastMarkSide = 36.0;
constexpr double titleGap = 20.0, doneTitleGap = 32.0, sentenceGap = 6.0;
constexpr double sentenceWidth = 364.0;

constexpr double rowPadding = 16.0, innerPadding = 14.0;
constexpr double rowTileSide = 36.0, rowTileGap = 14.0, rowTileSymbol = 20.0;
constexpr double rowTextLeft = rowPadding + rowTileSide + rowTileGap;
constexpr double bodyWidth = 316.0, rowBodyGap = 2.0;
constexpr double statusDotSide = 7.0, statusDotGap = 8.0, statusDotHalo = 4.0;

// Opacities of the group that moves round the dial, from its head backwards.
constexpr std::array trail{1.0, 0.8, 0.6, 0.42};
constexpr int firstHead = 2;
constexpr double restingTickWidth = 0.72;

Paragraph titleOf(const QString& text) {
  return {text, TextRole::onboardingTitle(), OnboardingMetrics::contentWidth, Paragraph::Wrap::balanced};
}
Paragraph sentenceOf(const QString& text) {
  return {text, TextRole::onboardingSentence(), sentenceWidth, Paragraph::Wrap::balanced};
}
Paragraph rowTitleOf(const QString& text) {
  return {text, TextRole::rowTitle(), bodyWidth};
}
Paragraph bodyOf(const QString& text) {
  return {text, TextRole::rowText(), bodyWidth};
}

double roomOf(State state) {
  switch (state) {
    case State::notInstalled:
    case State::notFound:
      return 330.0;
    case State::notRegistered:
      return 316.0;
    case State::requiresApproval:
      return 270.0;
    case State::enabled:
      return 346.0;
  }
  return 330.0;
}

Tone toneOf(ExplainerRow::Look look) {
  switch (look) {
    case ExplainerRow::Look::lit:
      return Tone::lit;
    case ExplainerRow::Look::plain:
      return Tone::plain;
    case ExplainerRow::Look::warning:
      return Tone::amber;
  }
  return Tone::plain;
}

}  // namespace

OnboardingPicture OnboardingPicture::of(const OnboardingView& view) {
  Content content;
  content.title = qtText(view.title());
  content.sentence = qtText(view.sentence());
  for (const auto& row : view.rows())
    content.rows.push_back({row.icon, row.look, qtText(row.title), qtText(row.body)});
  content.statusLine = qtText(view.statusLine());
  content.dot = view.state() == State::enabled            ? Dot::green
                : view.state() == State::requiresApproval ? Dot::amber
                                                          : Dot::idle;
  content.mood = view.mood();
  content.room = roomOf(view.state());
  return OnboardingPicture(std::move(content));
}

OnboardingPicture OnboardingPicture::of(const OnboardingDoneView& view) {
  Content content;
  content.title = qtText(view.title());
  content.sentence = qtText(view.sentence());
  content.isDone = true;
  content.room = 476.0;
  return OnboardingPicture(std::move(content));
}

QRectF OnboardingPicture::card() const {
  if (rows().empty()) return {};
  double height = 0.0;
  for (std::size_t i = 0; i < rows().size(); ++i) height += row(i).height();
  return {OnboardingMetrics::margin, OnboardingMetrics::cardBottom - height, OnboardingMetrics::contentWidth,
          height};
}

// Rows are placed from the bottom of the card upwards.
QRectF OnboardingPicture::row(std::size_t index) const {
  double bottom = OnboardingMetrics::cardBottom;
  for (std::size_t i = rows().size(); i-- > 0;) {
    const double above = i == 0 ? rowPadding : innerPadding;
    const double below = i + 1 == rows().size() ? rowPadding : innerPadding;
    const double text = rowTitleOf(rows()[i].title).height() + rowBodyGap + bodyOf(rows()[i].body).height();
    const double height = above + std::max(rowTileSide, text) + below;
    if (i == index)
      return {OnboardingMetrics::margin, bottom - height, OnboardingMetrics::contentWidth, height};
    bottom -= height;
  }
  return {};
}

// Returns the height between the top of the window and the card, in which the mark and the words are centred.
double OnboardingPicture::room() const {
  return rows().empty() ? content_.room : std::min(content_.room, card().top() - heroTop);
}

double OnboardingPicture::largestMark() const {
  return isDone() ? OnboardingMetrics::doneDialSide : OnboardingMetrics::markSide;
}

// Returns the height of the words, including the gap below the mark.
double OnboardingPicture::wordsHeight() const {
  return (isDone() ? doneTitleGap : titleGap) + titleOf(title()).height() + sentenceGap +
         sentenceOf(sentence()).height();
}

QRectF OnboardingPicture::mark() const {
  const double words = wordsHeight();
  const double side = std::clamp(room() - words, leastMarkSide, largestMark());
  const double top = heroTop + std::max(0.0, (room() - side - words) / 2.0);
  return {(OnboardingMetrics::width - side) / 2.0, top, side, side};
}

QRectF OnboardingPicture::titlePlace() const {
  const double top = mark().bottom() + (isDone() ? doneTitleGap : titleGap);
  return {OnboardingMetrics::margin, top, OnboardingMetrics::contentWidth, titleOf(title()).height()};
}

QRectF OnboardingPicture::sentencePlace() const {
  return {(OnboardingMetrics::width - sentenceWidth) / 2.0, titlePlace().bottom() + sentenceGap,
          sentenceWidth, sentenceOf(sentence()).height()};
}

void OnboardingPicture::paintWords(QPainter& painter, double offset, const WindowPalette& palette) const {
  titleOf(title()).paint(painter, titlePlace().translated(0.0, offset), palette.ink, Qt::AlignHCenter);
  sentenceOf(sentence())
      .paint(painter, sentencePlace().translated(0.0, offset), palette.ink2, Qt::AlignHCenter);
}

void OnboardingPicture::paintCard(QPainter& painter, const WindowPalette& palette) const {
  if (rows().empty()) return;
  ui::paintCard(painter, card(), palette);
  for (std::size_t i = 0; i < rows().size(); ++i) {
    const QRectF place = row(i);
    if (i > 0) {
      painter.fillRect(QRectF(place.left() + rowTextLeft, place.top(), place.width() - rowTextLeft, 1.0),
                       palette.divider);
    }
    const double top = place.top() + (i == 0 ? rowPadding : innerPadding);
    paintIconTile(painter, {place.left() + rowPadding, top, rowTileSide, rowTileSide}, rows()[i].icon,
                  rowTileSymbol, toneOf(rows()[i].look), palette);
    const Paragraph title = rowTitleOf(rows()[i].title);
    const QRectF titleArea(place.left() + rowTextLeft, top, bodyWidth, title.height());
    title.paint(painter, titleArea, palette.ink);
    const Paragraph body = bodyOf(rows()[i].body);
    body.paint(painter, {titleArea.left(), titleArea.bottom() + rowBodyGap, bodyWidth, body.height()},
               palette.ink2);
  }
  paintStatusLine(painter, palette);
}

void OnboardingPicture::paintStatusLine(QPainter& painter, const WindowPalette& palette) const {
  if (statusLine().isEmpty()) return;
  constexpr double leading = statusDotSide + statusDotGap;
  const Paragraph words(statusLine(), TextRole::status(), OnboardingMetrics::contentWidth - leading,
                        Paragraph::Wrap::balanced);
  const double left = (OnboardingMetrics::width - leading - words.naturalWidth()) / 2.0;
  const QRectF dot(left,
                   OnboardingMetrics::statusTop + (OnboardingMetrics::statusHeight - statusDotSide) / 2.0,
                   statusDotSide, statusDotSide);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const Dot shown = content_.dot;
  if (shown == Dot::amber) {
    painter.setBrush(palette.amberWash);
    painter.drawEllipse(dot.adjusted(-statusDotHalo, -statusDotHalo, statusDotHalo, statusDotHalo));
  }
  painter.setBrush(shown == Dot::green ? palette.green : shown == Dot::amber ? palette.amber : palette.idle);
  painter.drawEllipse(dot);
  words.paint(
      painter,
      {dot.right() + statusDotGap, OnboardingMetrics::statusTop, words.naturalWidth(), words.height()},
      palette.meta);
}

MarkTicks moodTicks(Mood mood, int position, const WindowPalette& palette) {
  if (mood == Mood::ready) return litTicks(palette);
  MarkTicks ticks;
  const int count = static_cast<int>(ticks.size());
  const int head = firstHead + position;
  for (int i = 0; i < count; ++i) {
    MarkTick& tick = ticks.at(static_cast<std::size_t>(i));
    if (mood == Mood::trouble) {
      const bool isLit = i < 4;
      tick = isLit ? MarkTick{palette.amber} : MarkTick{palette.amberInk, 0.22, restingTickWidth};
      continue;
    }
    const auto behind = static_cast<std::size_t>(((head - i) % count + count) % count);
    const bool isLit = behind < trail.size();
    tick = {palette.mark.waitingTick, isLit ? trail.at(behind) : 0.24, isLit ? 1.0 : restingTickWidth};
  }
  return ticks;
}

void paintHalo(QPainter& painter, const QPointF& centre, double breath, Mood mood,
               const WindowPalette& palette) {
  constexpr double growth = 0.06, fading = 0.22;
  const bool isTrouble = mood == Mood::trouble;
  const QColor colour = isTrouble ? palette.amberWash : palette.halo;
  QColor clear = colour;
  clear.setAlpha(0);
  const double radius = OnboardingMetrics::haloRadius * (1.0 + growth * breath);
  QRadialGradient light(centre, radius);
  light.setColorAt(0.0, colour);
  light.setColorAt(isTrouble ? 0.76 : 0.72, clear);
  painter.save();
  painter.setOpacity(painter.opacity() * (1.0 - fading * breath));
  painter.fillRect(QRectF(centre.x() - radius, centre.y() - radius, 2.0 * radius, 2.0 * radius), light);
  painter.restore();
}

void paintDoneDial(QPainter& painter, const QRectF& place, double ticks, double drawn, double pop,
                   const WindowPalette& palette) {
  MarkTicks dial = litTicks(palette);
  for (std::size_t i = 0; i < dial.size(); ++i)
    dial.at(i).opacity = std::clamp(ticks - static_cast<double>(i), 0.0, 1.0);
  paintMarkDial(painter, place.center(), {place.width() / 2.0, 0.74, 0.94, 9.0}, dial);
  if (drawn <= 0.0) return;

  QPainterPath check(QPointF(66.0, 90.0));
  check.lineTo(81.5, 105.5);
  check.lineTo(111.0, 72.5);
  QPainterPath part(check.pointAtPercent(0.0));
  constexpr int pieces = 48;
  for (int i = 1; i <= pieces; ++i) part.lineTo(check.pointAtPercent(std::min(1.0, drawn) * i / pieces));
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(place.center());
  painter.scale(pop, pop);
  painter.translate(-OnboardingMetrics::doneDialSide / 2.0, -OnboardingMetrics::doneDialSide / 2.0);
  painter.strokePath(part, QPen(palette.accent, 8.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.restore();
}

}  // namespace vorli::ui
