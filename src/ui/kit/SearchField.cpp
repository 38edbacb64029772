#include "ui/kit/SearchField.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/SpokenName.h"
#include "ui/kit/Symbol.h"

#include <QEvent>
#include <QPainter>
#include <cmath>

namespace vorli::ui {
namespace {

constexpr double searchRadius = 11.0, searchSymbolSide = 16.0, searchSymbolLeft = 12.0, searchGap = 10.0,
                 searchCountRight = 14.0;

}  // namespace

SearchField::SearchField(const QString& placeholder, const QString& hint, Appearance appearance,
                         QWidget* parent)
    : QWidget(parent), palette_(WindowPalette::of(appearance)), edit_(new QLineEdit(this)) {
  edit_->setFrame(false);
  edit_->setFont(TextRole::search().font);
  edit_->setPlaceholderText(placeholder);
  edit_->setAccessibleName(placeholder);
  edit_->setAccessibleDescription(hint);
  edit_->installEventFilter(this);
  auto colours = edit_->palette();
  colours.setColor(QPalette::Base, Qt::transparent);
  colours.setColor(QPalette::Text, palette_.ink);
  colours.setColor(QPalette::PlaceholderText, palette_.meta);
  colours.setColor(QPalette::Highlight, palette_.primary.top);
  colours.setColor(QPalette::HighlightedText, palette_.primaryText);
  edit_->setPalette(colours);
}

void SearchField::setCount(const QString& text) {
  count_ = text;
  setSpokenName(*this, text);
  resizeEvent(nullptr);
  update();
}

bool SearchField::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
  return QWidget::eventFilter(watched, event);
}

void SearchField::resizeEvent(QResizeEvent*) {
  const double left = ringMargin + searchSymbolLeft + searchSymbolSide + searchGap;
  const double right = ringMargin + searchCountRight + textWidth(count_, TextRole::count()) + searchGap;
  edit_->setGeometry(QRectF(left, ringMargin + 4.0, width() - left - right, fieldHeight - 8.0).toRect());
}

void SearchField::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF field(ringMargin, ringMargin, width() - 2.0 * ringMargin, fieldHeight);
  paintPlate(painter, field, searchRadius, palette_.field, palette_.fieldLine);
  if (edit_->hasFocus()) paintFocusRing(painter, field, searchRadius, palette_);
  const QRectF symbol(field.left() + searchSymbolLeft, field.center().y() - searchSymbolSide / 2.0,
                      searchSymbolSide, searchSymbolSide);
  paintSymbol(painter, "magnifyingglass", symbol, palette_.meta);
  paintLine(painter, count_, TextRole::count(), field.adjusted(0.0, 0.0, -searchCountRight, 0.0),
            palette_.meta, Qt::AlignRight);
}

}  // namespace vorli::ui
