#include "ui/PaperWindow.h"

#include "ui/SoftShadow.h"
#include "ui/WindowButton.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QScreen>
#include <QWindow>

namespace vorli::ui {
namespace {

constexpr QMargins shadowReach{40, 28, 40, 56};
constexpr double cornerRadius = 14.0;
constexpr int buttonInset = 12;

struct Shadow {
  QColor colour;
  double blur;  // twice the deviation, as in CSS
  double offset;
};

QColor shaded(int red, int green, int blue, double alpha) {
  QColor colour(red, green, blue);
  colour.setAlphaF(static_cast<float>(alpha));
  return colour;
}

QList<Shadow> shadowsOf(Appearance appearance) {
  if (appearance == Appearance::dark) {
    return {{shaded(0, 0, 0, 0.55), 56.0, 22.0}, {shaded(0, 0, 0, 0.40), 8.0, 2.0}};
  }
  return {{shaded(60, 45, 20, 0.20), 48.0, 18.0}, {shaded(60, 45, 20, 0.10), 6.0, 2.0}};
}

// An ellipse of light that fades to the same colour at opacity 0.
void paintBloom(QPainter& painter, const QRectF& sheet, const QPointF& centre, const QSizeF& radii,
                const QColor& colour) {
  QColor clear = colour;
  clear.setAlpha(0);
  QRadialGradient gradient(QPointF(0.0, 0.0), 1.0);
  gradient.setColorAt(0.0, colour);
  gradient.setColorAt(1.0, clear);
  painter.save();
  painter.translate(sheet.x() + centre.x() * sheet.width(), sheet.y() + centre.y() * sheet.height());
  painter.scale(radii.width(), radii.height());
  painter.fillRect(QRectF(-1.0, -1.0, 2.0, 2.0), gradient);
  painter.restore();
}

// Lets what is drawn so far fade out towards the edges of `area`: the shadow would reach beyond the window,
// and its end must not show as a line.
void fadeEdges(QPainter& painter, const QRectF& area) {
  constexpr double depth = 24.0;
  painter.save();
  painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  const auto fade = [&painter](const QPointF& edge, const QPointF& inside, const QRectF& band) {
    QLinearGradient gradient(edge, inside);
    gradient.setColorAt(0.0, Qt::black);
    gradient.setColorAt(1.0, Qt::transparent);
    painter.fillRect(band, gradient);
  };
  const double width = area.width(), height = area.height();
  fade({0, 0}, {depth, 0}, {0, 0, depth, height});
  fade({width, 0}, {width - depth, 0}, {width - depth, 0, depth, height});
  fade({0, 0}, {0, depth}, {0, 0, width, depth});
  fade({0, height}, {0, height - depth}, {0, height - depth, width, depth});
  painter.restore();
}

}  // namespace

PaperWindow::PaperWindow(const WindowSurroundings& surroundings, Qt::WindowType type, const QString& title,
                         CloseButton closeButton)
    : QWidget(nullptr, type | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      surroundings_(surroundings),
      appearance_(surroundings.appearance()),
      compositing_(surroundings.compositing()),
      palette_(WindowPalette::of(appearance_)) {
  setWindowTitle(title);
  setAttribute(Qt::WA_DeleteOnClose);
  if (compositing_ == Compositing::present) setAttribute(Qt::WA_TranslucentBackground);
  if (closeButton == CloseButton::absent) return;
  close_ = new WindowButton(appearance_, this);
  connect(close_, &QAbstractButton::clicked, this, &QWidget::close);
}

void PaperWindow::present() {
  const auto* screen = this->screen();
  winId();  // makes the window, which the window manager is to know before it shows
  surroundings_.setShadowMargins(*windowHandle(), shadowMargins());
  move(screen->availableGeometry().center() - sheet().center());
  show();
  surroundings_.bringToFront(*windowHandle());
}

void PaperWindow::setSheetSize(const QSize& size) {
  setFixedSize(size.grownBy(shadowMargins()));
  if (!close_) return;
  close_->move(sheet().right() + 1 - buttonInset - close_->width(), sheet().top() + buttonInset);
  close_->raise();
}

QRect PaperWindow::sheet() const {
  return rect().marginsRemoved(shadowMargins());
}

QMargins PaperWindow::shadowMargins() const {
  return compositing_ == Compositing::present ? shadowReach : QMargins();
}

void PaperWindow::paintEvent(QPaintEvent*) {
  if (ground_.devicePixelRatio() != devicePixelRatioF() || ground_.isNull()) ground_ = drawGround();
  QPainter(this).drawPixmap(0, 0, ground_);
}

QPixmap PaperWindow::drawGround() const {
  const double ratio = devicePixelRatioF();
  QPixmap ground(size() * ratio);
  ground.fill(Qt::transparent);
  QPainter painter(&ground);
  if (compositing_ == Compositing::present) drawShadows(painter, ratio);
  painter.scale(ratio, ratio);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSheet(painter, sheet(), ratio);
  painter.end();
  ground.setDevicePixelRatio(ratio);
  return ground;
}

void PaperWindow::drawShadows(QPainter& painter, double ratio) const {
  QPainterPath outline;
  outline.addRoundedRect(sheet(), cornerRadius, cornerRadius);
  const QSize pixels = size() * ratio;
  for (const auto& shadow : shadowsOf(appearance_)) {
    const QPainterPath lowered = outline.translated(0.0, shadow.offset);
    painter.drawImage(
        0, 0,
        softShadow(lowered, shadow.blur / 2.0, shadow.colour, pixels, QTransform::fromScale(ratio, ratio)));
  }
  painter.save();
  painter.scale(ratio, ratio);
  fadeEdges(painter, rect());
  painter.restore();
}

void PaperWindow::drawSheet(QPainter& painter, const QRectF& sheet, double ratio) const {
  const double radius = compositing_ == Compositing::present ? cornerRadius : 0.0;
  // In a layer of its own, so that the corners are cut once and keep no trace of what lies under them.
  QImage layer(sheet.size().toSize() * ratio, QImage::Format_ARGB32_Premultiplied);
  layer.fill(palette_.surface);
  {
    QPainter inside(&layer);
    inside.scale(ratio, ratio);
    const QRectF area({0.0, 0.0}, sheet.size());
    paintBloom(inside, area, {0.12, -0.04}, {420.0, 320.0}, palette_.tealBloom);
    paintBloom(inside, area, {1.04, 1.08}, {520.0, 380.0}, palette_.amberBloom);
  }
  QBrush brush(layer);
  brush.setTransform(QTransform::fromTranslate(sheet.x(), sheet.y()).scale(1.0 / ratio, 1.0 / ratio));
  painter.setPen(Qt::NoPen);
  painter.setBrush(brush);
  painter.drawRoundedRect(sheet, radius, radius);

  constexpr double lineInset = 0.5;
  constexpr float lineStrength = 0.75F;
  QColor line = palette_.windowLine;
  if (compositing_ == Compositing::present) line.setAlphaF(line.alphaF() * lineStrength);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(line, 1.0));
  painter.drawRoundedRect(sheet.adjusted(lineInset, lineInset, -lineInset, -lineInset), radius - lineInset,
                          radius - lineInset);
}

void PaperWindow::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && sheet().contains(event->position().toPoint())) {
    windowHandle()->startSystemMove();
  }
}

void PaperWindow::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Cancel) || event->matches(QKeySequence::Close)) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace vorli::ui
