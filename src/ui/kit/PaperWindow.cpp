#include "ui/kit/PaperWindow.h"

#include "ui/kit/AppMark.h"
#include "ui/kit/SoftShadow.h"
#include "ui/kit/WindowButton.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QScreen>
#include <QWindow>
#include <utility>

namespace vorli::ui {
namespace {

constexpr QMargins paperShadowReach{40, 28, 40, 56};
constexpr double paperCornerRadius = 14.0;
constexpr int windowButtonInset = 12;
constexpr int windowButtonGap = 4;

// Paints an ellipse of light that fades to the same colour at opacity 0.
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

// Fades out the picture towards the edges of `area`. The shadow would reach beyond the window, and its end
// must not show as a line.
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

// A window without a role counts as part of another one, and its appearance is not announced.
QAccessibleInterface* makeAccessibleWindow(const QString&, QObject* object) {
  auto* window = dynamic_cast<PaperWindow*>(object);
  if (!window) return nullptr;
  const bool interrupts = window->windowType() == Qt::Dialog;
  return new QAccessibleWidget(window, interrupts ? QAccessible::AlertMessage : QAccessible::Dialog);
}

void installWindowAccessibility() {
  static const bool installed = [] {
    QAccessible::installFactory(makeAccessibleWindow);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace

PaperWindow::PaperWindow(const WindowSurroundings& surroundings, Qt::WindowType type, const QString& title,
                         CloseButton closeButton)
    : WindowEnd(surroundings),
      QWidget(nullptr, type | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
      surroundings_(surroundings),
      appearance_(surroundings.appearance()),
      compositing_(surroundings.compositing()),
      palette_(&WindowPalette::of(appearance_)) {
  installWindowAccessibility();
  setWindowTitle(title);
  setAttribute(Qt::WA_DeleteOnClose);
  if (compositing_ == Compositing::present) setAttribute(Qt::WA_TranslucentBackground);
  if (closeButton == CloseButton::shown) close_ = makeButton(WindowButton::Kind::close);
}

WindowButton* PaperWindow::makeButton(WindowButton::Kind kind) {
  auto* button = new WindowButton(kind, appearance_, this);
  connect(button, &QAbstractButton::clicked, this, [this, kind] {
    if (kind == WindowButton::Kind::close) {
      close();
    } else {
      showMinimized();
    }
  });
  return button;
}

void PaperWindow::followAppearance(std::function<void()> makeContent) {
  makeContent_ = std::move(makeContent);
  appearanceChanges_ = surroundings_.subscribeToAppearance([this] { takeAppearance(); });
}

void PaperWindow::takeAppearance() {
  const auto next = surroundings_.appearance();
  if (std::exchange(appearance_, next) == next) return;
  palette_ = &WindowPalette::of(next);
  ground_ = {};
  setWindowIcon(markIcon());
  const QString focused = focusWidget() ? focusWidget()->accessibleName() : QString();
  for (auto** button : {&close_, &minimise_}) {
    if (!*button) continue;
    const auto kind = (*button)->kind();
    delete *button;
    *button = makeButton(kind);
    (*button)->show();
  }
  placeButtons();
  makeContent_();
  keepButtonsLast();
  for (auto* control : findChildren<QWidget*>()) {
    const bool isSame = !focused.isEmpty() && control->accessibleName() == focused;
    if (isSame && control->isVisible() && control->focusPolicy() != Qt::NoFocus)
      control->setFocus(Qt::OtherFocusReason);
  }
  update();
}

void PaperWindow::present() {
  if (isVisible()) {
    if (isMinimized()) showNormal();
  } else {
    setWindowIcon(markIcon());
    winId();  // creates the window, whose margins must be set before it is shown
    surroundings_.setShadowMargins(*windowHandle(), shadowMargins());
    centre();
    show();
  }
  surroundings_.bringToFront(*windowHandle());
}

void PaperWindow::centre() {
  move(screen()->availableGeometry().center() - sheet().center());
}

// Image for the desktop's lists of windows.
QIcon PaperWindow::markIcon() const {
  constexpr int side = 64;
  return QPixmap::fromImage(appMarkImage(side, 0, *palette_));
}

void PaperWindow::addMinimiseButton() {
  minimise_ = makeButton(WindowButton::Kind::minimise);
}

void PaperWindow::keepButtonsLast() {
  for (auto* button : {minimise_, close_}) {
    if (!button) continue;
    const bool isShown = !button->isHidden();
    button->setParent(nullptr);  // a new child is the last one in tab order, and on top
    button->setParent(this);
    button->setVisible(isShown);
  }
}

void PaperWindow::setSheetSize(const QSize& size) {
  setFixedSize(size.grownBy(shadowMargins()));
  placeButtons();
}

// The close button is the outermost one on either side.
void PaperWindow::placeButtons() {
  const bool isLeft = surroundings_.closeButtonSide() == CloseButtonSide::left;
  int inset = windowButtonInset;
  for (auto* button : {close_, minimise_}) {
    if (!button) continue;
    const int x = isLeft ? sheet().left() + inset : sheet().right() + 1 - inset - button->width();
    button->move(x, sheet().top() + windowButtonInset);
    button->raise();
    inset += button->width() + windowButtonGap;
  }
}

QRect PaperWindow::sheet() const {
  return rect().marginsRemoved(shadowMargins());
}

double PaperWindow::cornerRadius() const {
  return compositing_ == Compositing::present ? paperCornerRadius : 0.0;
}

QMargins PaperWindow::shadowMargins() const {
  return compositing_ == Compositing::present ? paperShadowReach : QMargins();
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
  for (const auto& shadow : palette_->windowShadows) {
    const QRectF lowered = QRectF(sheet()).translated(0.0, shadow.offset);
    drawSoftShadow(painter, {lowered, paperCornerRadius}, shadow.blur / 2.0, shadow.colour, size() * ratio,
                   ratio);
  }
  painter.save();
  painter.scale(ratio, ratio);
  fadeEdges(painter, rect());
  painter.restore();
}

void PaperWindow::drawSheet(QPainter& painter, const QRectF& sheet, double ratio) const {
  const double radius = cornerRadius();
  // Painted in a separate layer, so that the corners are cut once and keep no trace of what lies under them.
  QImage layer(sheet.size().toSize() * ratio, QImage::Format_ARGB32_Premultiplied);
  layer.fill(palette_->surface);
  {
    QPainter inside(&layer);
    inside.scale(ratio, ratio);
    const QRectF area({0.0, 0.0}, sheet.size());
    paintBloom(inside, area, {0.12, -0.04}, {420.0, 320.0}, palette_->tealBloom);
    paintBloom(inside, area, {1.04, 1.08}, {520.0, 380.0}, palette_->amberBloom);
  }
  QBrush brush(layer);
  brush.setTransform(QTransform::fromTranslate(sheet.x(), sheet.y()).scale(1.0 / ratio, 1.0 / ratio));
  painter.setPen(Qt::NoPen);
  painter.setBrush(brush);
  painter.drawRoundedRect(sheet, radius, radius);

  constexpr double lineInset = 0.5;
  constexpr float lineStrength = 0.75F;
  QColor line = palette_->windowLine;
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
  const bool escapes = event->matches(QKeySequence::Cancel) && escape_ == EscapeKey::closes;
  if (escapes || event->matches(QKeySequence::Close)) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void PaperWindow::closeEvent(QCloseEvent* event) {
  QWidget::closeEvent(event);
  appearanceChanges_.cancel();  // the content's data may be destroyed with the window
  if (const auto closed = std::exchange(closed_, nullptr)) closed();
}

}  // namespace vorli::ui
