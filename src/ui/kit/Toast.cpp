#include "ui/kit/Toast.h"

#include "ui/kit/Paragraph.h"
#include "ui/kit/SoftShadow.h"
#include "ui/kit/Symbol.h"

#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr double toastRadius = 24.0, toastLeft = 16.0, toastRight = 8.0, toastGap = 12.0,
                 toastSymbolSide = 20.0;
constexpr double toastLeastHeight = 48.0, toastVerticalPadding = 7.0;

double textRoom(double buttonWidth) {
  return Toast::greatestWidth - toastLeft - toastSymbolSide - toastGap - toastGap - buttonWidth - toastRight;
}

// Breaks the text into lines of `width`; the name is set in its own weight.
void layOut(QTextLayout& layout, const Toast::Words& words, double width) {
  const QString text = words.name.isEmpty() ? words.text : words.text + u' ' + words.name;
  layout.setText(text);
  layout.setFont(TextRole::toast().font);
  QTextCharFormat bold;
  bold.setFont(TextRole::toastName().font);
  const auto length = static_cast<int>(words.name.size());
  layout.setFormats({{static_cast<int>(text.size()) - length, length, bold}});
  layout.beginLayout();
  double top = 0.0;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    line.setPosition({0.0, top + (TextRole::toast().leading - line.height()) / 2.0});
    top += TextRole::toast().leading;
  }
  layout.endLayout();
}

}  // namespace

Toast::Toast(const Words& words, GlassPillButton::Role role, Appearance appearance, QWidget* parent,
             const std::function<void()>& press)
    : QWidget(parent),
      words_(words),
      palette_(WindowPalette::of(appearance)),
      button_(new GlassPillButton(words.button, role, appearance, this, GlassPillButton::Size::toast)) {
  setAccessibleName(words.name.isEmpty() ? words.text : words.text + u' ' + words.name);
  button_->say(words.button, accessibleName());
  connect(button_, &QAbstractButton::clicked, this, [press] { press(); });
  resize(sizeHint());
}

QSizeF Toast::textSize() const {
  QTextLayout layout;
  layOut(layout, words_, textRoom(button_->sizeHint().width() - 2.0 * GlassPillButton::ringMargin));
  double widest = 0.0;
  for (int i = 0; i < layout.lineCount(); ++i) widest = std::max(widest, layout.lineAt(i).naturalTextWidth());
  return {std::ceil(widest) + 1.0, layout.lineCount() * TextRole::toast().leading};
}

QSize Toast::sizeHint() const {
  const QSizeF text = textSize();
  const double buttonWidth = button_->sizeHint().width() - 2.0 * GlassPillButton::ringMargin;
  const double width =
      toastLeft + toastSymbolSide + toastGap + text.width() + toastGap + buttonWidth + toastRight;
  const double height = std::max(toastLeastHeight, text.height() + 2.0 * toastVerticalPadding);
  return QSizeF(width, height).toSize().grownBy(shadowMargins);
}

void Toast::resizeEvent(QResizeEvent*) {
  shadow_ = {};
  const QSize size = button_->sizeHint();
  const QRectF area = plate();
  const double x = area.right() - toastRight - size.width() + GlassPillButton::ringMargin;
  button_->setGeometry(QRect(QPointF(x, area.center().y() - size.height() / 2.0).toPoint(), size));
}

void Toast::setPresence(double share) {
  if (share >= 1.0) return setGraphicsEffect(nullptr);
  auto* effect = dynamic_cast<QGraphicsOpacityEffect*>(graphicsEffect());
  if (!effect) {
    effect = new QGraphicsOpacityEffect(this);
    setGraphicsEffect(effect);
  }
  effect->setOpacity(share);
}

void Toast::drawShadow() {
  const double ratio = devicePixelRatioF();
  shadow_ = QPixmap(size() * ratio);
  shadow_.fill(Qt::transparent);
  QPainterPath shape;
  shape.addRoundedRect(plate(), toastRadius, toastRadius);
  QPainter painter(&shadow_);
  const QTransform toPixels = QTransform::fromScale(ratio, ratio);
  painter.drawImage(
      0, 0,
      softShadow(shape.translated(0.0, 10.0), 14.0, palette_.toastShadows.far, shadow_.size(), toPixels));
  painter.drawImage(
      0, 0,
      softShadow(shape.translated(0.0, 2.0), 3.0, palette_.toastShadows.near, shadow_.size(), toPixels));
  painter.end();
  shadow_.setDevicePixelRatio(ratio);
}

void Toast::paintEvent(QPaintEvent*) {
  if (shadow_.isNull() || shadow_.devicePixelRatio() != devicePixelRatioF()) drawShadow();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.drawPixmap(0, 0, shadow_);
  const QRectF area = plate();
  paintPlate(painter, area, toastRadius, palette_.toast.over(area), palette_.toastLine, palette_.lip);
  const QRectF symbol(area.left() + toastLeft, area.center().y() - toastSymbolSide / 2.0, toastSymbolSide,
                      toastSymbolSide);
  paintSymbol(painter, words_.symbol, symbol,
              words_.tone == Tone::lit     ? palette_.accent
              : words_.tone == Tone::amber ? palette_.amberInk
              : words_.tone == Tone::red   ? palette_.redInk
                                           : palette_.warn);
  QTextLayout layout;
  layOut(layout, words_, textRoom(button_->sizeHint().width() - 2.0 * GlassPillButton::ringMargin));
  QTextLayout::FormatRange bold;
  bold.start = static_cast<int>(layout.text().size() - words_.name.size());
  bold.length = static_cast<int>(words_.name.size());
  bold.format.setForeground(palette_.ink);
  painter.setPen(palette_.ink2);
  const double textHeight = layout.lineCount() * TextRole::toast().leading;
  layout.draw(&painter, {symbol.right() + toastGap, area.center().y() - textHeight / 2.0}, {bold});
}

}  // namespace vorli::ui
