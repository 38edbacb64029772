#include "ui/kit/ThinScrollBar.h"

#include <QCommonStyle>
#include <QPainter>
#include <QStyleOptionSlider>

namespace vorli::ui {
namespace {

constexpr int scrollBarWidth = 12;
constexpr double scrollThumbWidth = 6.0;
constexpr int leastThumbLength = 28;

// Leaves out the buttons at the ends of a bar: nobody sees them here, yet they would take presses, and the
// thumb would stop short of both ends.
class ThumbStyle final : public QCommonStyle {
 public:
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
    if (metric == PM_ScrollBarExtent) return 0;
    if (metric == PM_ScrollBarSliderMin) return leastThumbLength;
    return QCommonStyle::pixelMetric(metric, option, widget);
  }
};

}  // namespace

ThinScrollBar::ThinScrollBar(Qt::Orientation orientation, Appearance appearance, QWidget* parent)
    : QScrollBar(orientation, parent), palette_(WindowPalette::of(appearance)) {
  setAttribute(Qt::WA_OpaquePaintEvent, false);
  setContextMenuPolicy(Qt::NoContextMenu);
  auto* thumbStyle = new ThumbStyle;
  thumbStyle->setParent(this);
  setStyle(thumbStyle);
}

QSize ThinScrollBar::sizeHint() const {
  return orientation() == Qt::Vertical ? QSize(scrollBarWidth, 3 * scrollBarWidth)
                                       : QSize(3 * scrollBarWidth, scrollBarWidth);
}

void ThinScrollBar::paintEvent(QPaintEvent*) {
  if (maximum() <= minimum()) return;
  QStyleOptionSlider option;
  initStyleOption(&option);
  QRectF thumb = style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
  const double inset = (scrollBarWidth - scrollThumbWidth) / 2.0;
  thumb = orientation() == Qt::Vertical ? QRectF(inset, thumb.top(), scrollThumbWidth, thumb.height())
                                        : QRectF(thumb.left(), inset, thumb.width(), scrollThumbWidth);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette_.scroll);
  painter.drawRoundedRect(thumb, scrollThumbWidth / 2.0, scrollThumbWidth / 2.0);
}

}  // namespace vorli::ui
