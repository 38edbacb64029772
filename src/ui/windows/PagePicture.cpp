#include "ui/windows/PagePicture.h"

#include "ui/kit/AppMark.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Plates.h"
#include "ui/kit/Symbol.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace vorli::ui {
namespace {

void paintBar(QPainter& painter, const QRectF& bar, const QColor& colour) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  painter.drawRoundedRect(bar, bar.height() / 2.0, bar.height() / 2.0);
}

}  // namespace

PagePicture::PagePicture(Scene scene, Appearance appearance, QWidget* parent)
    : QWidget(parent), scene_(scene), palette_(WindowPalette::of(appearance)) {}

void PagePicture::setLit(bool lit) {
  if (std::exchange(lit_, lit) != lit) update();
}

void PagePicture::setQuiet(bool quiet) {
  if (std::exchange(quiet_, quiet) != quiet) update();
}

void PagePicture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintCard(painter, rect(), palette_);
  if (scene_ == Scene::talk)
    paintTalk(painter);
  else
    paintDesktop(painter);
}

void PagePicture::paintDesktop(QPainter& painter) const {
  constexpr double radius = 12.0;
  const QRectF desktop(156.0, 24.0, 288.0, 168.0);
  QLinearGradient sky(desktop.topLeft(),
                      desktop.topLeft() + QPointF(0.7 * desktop.width(), desktop.height()));
  sky.setColorAt(0.0, palette_.picture.skyStart);
  sky.setColorAt(1.0, palette_.picture.skyEnd);
  painter.setPen(Qt::NoPen);
  painter.setBrush(sky);
  painter.drawRoundedRect(desktop, radius, radius);
  paintPanel(painter, desktop);
  if (scene_ == Scene::glow && lit_) paintGlow(painter, desktop);
  if (scene_ == Scene::notice && lit_) paintNotice(painter, desktop);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(palette_.picture.desktopLine);
  painter.drawRoundedRect(desktop.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

void PagePicture::paintPanel(QPainter& painter, const QRectF& desktop) const {
  QPainterPath shape;
  shape.addRoundedRect(desktop, 12.0, 12.0);
  painter.save();
  painter.setClipPath(shape);
  painter.fillRect(QRectF(desktop.topLeft(), QSizeF(desktop.width(), 18.0)), palette_.picture.panel);
  painter.restore();
  const QColor& bar = palette_.picture.bar;
  paintBar(painter, QRectF(desktop.left() + 10.0, desktop.top() + 7.0, 22.0, 4.0), bar);
  paintBar(painter, QRectF(desktop.left() + 38.0, desktop.top() + 7.0, 16.0, 4.0), bar);
  MarkTicks ticks;
  for (std::size_t i = 0; i < ticks.size(); ++i) {
    ticks.at(i).colour = lit_ ? palette_.picture.litTick : palette_.meta;
    ticks.at(i).opacity = i < 8 ? 1.0 : 0.35;
  }
  paintMarkDial(painter, {desktop.right() - 17.0, desktop.top() + 9.0}, {5.0, 0.6, 1.0, 1.1}, ticks);
  if (quiet_) {
    const QRectF moon(desktop.right() - 42.0, desktop.top() + 3.0, 12.0, 12.0);
    paintSymbol(painter, "moon.stars", moon, palette_.meta, 2.2);
  }
}

void PagePicture::paintGlow(QPainter& painter, const QRectF& desktop) const {
  constexpr int outlines = 26;
  const auto& colours = palette_.picture;
  painter.setBrush(Qt::NoBrush);
  for (int i = 0; i < outlines; ++i) {
    const double inset = i + 0.5;
    const double opacity = colours.glowOpacity * std::pow(1.0 - i / double{outlines}, 1.7);
    painter.setPen(
        QPen(fadedTo(mixed(colours.glowOuter, colours.glowInner, i / (outlines - 1.0)), opacity), 1.15));
    const double radius = std::max(4.0, 12.0 - inset);
    painter.drawRoundedRect(desktop.adjusted(inset, inset, -inset, -inset), radius, radius);
  }
}

void PagePicture::paintNotice(QPainter& painter, const QRectF& desktop) const {
  const QRectF notice(desktop.right() - 142.0, desktop.top() + 28.0, 130.0, 44.0);
  paintPlate(painter, notice, 10.0, palette_.picture.notice, palette_.picture.desktopLine);
  const QRectF tile(notice.left() + 8.0, notice.top() + 10.0, 24.0, 24.0);
  paintPlate(painter, tile, 7.0, palette_.calmWash, Qt::transparent);
  painter.fillPath(markStar(tile.center(), 8.0), palette_.accent);
  const QColor& bar = palette_.picture.bar;
  paintBar(painter, QRectF(notice.left() + 40.0, notice.top() + 12.0, 58.0, 6.0), bar);
  paintBar(painter, QRectF(notice.left() + 40.0, notice.top() + 25.0, 80.0, 6.0), fadedTo(bar, 0.7));
}

void PagePicture::paintTalk(QPainter& painter) const {
  constexpr double radius = 20.0;
  const QColor& bar = palette_.picture.bar;
  QPainterPath heard, tail;
  heard.addRoundedRect(QRectF(180.0, 40.0, 174.0, 72.0), radius, radius);
  tail.addPolygon(QPolygonF{{190.0, 100.0}, {222.0, 104.0}, {216.0, 112.0}, {194.0, 130.0}, {190.0, 127.0}});
  painter.setBrush(palette_.picture.bubble);
  painter.setPen(palette_.picture.bubbleLine);
  painter.drawPath(heard.united(tail));
  paintBar(painter, QRectF(202.0, 62.0, 96.0, 8.0), bar);
  paintBar(painter, QRectF(202.0, 82.0, 126.0, 8.0), fadedTo(bar, 0.7));

  QPainterPath said, saidTail;
  said.addRoundedRect(QRectF(286.0, 100.0, 138.0, 66.0), radius, radius);
  saidTail.addPolygon(
      QPolygonF{{384.0, 160.0}, {414.0, 156.0}, {414.0, 179.0}, {410.0, 182.0}, {390.0, 166.0}});
  painter.setBrush(palette_.primary.over(said.boundingRect()));
  painter.setPen(palette_.primaryLine);
  painter.drawPath(said.united(saidTail));
  painter.fillPath(markStar({334.0, 133.0}, 13.0), palette_.primaryText);
  painter.fillPath(markStar({362.0, 133.0}, 9.0), fadedTo(palette_.primaryText, 0.75));
  painter.fillPath(markStar({384.0, 133.0}, 6.0), fadedTo(palette_.primaryText, 0.5));
}

}  // namespace vorli::ui
