#include "ui/InfoAlert.h"

#include "ui/AppMark.h"
#include "ui/GlassPillButton.h"
#include "ui/Typeface.h"

#include <QAccessible>
#include <QLabel>
#include <QPainter>

namespace vorli::ui {
namespace {

constexpr int alertWidth = 380;
constexpr int margin = 24;
constexpr int markSide = 48;
constexpr int markMargin = 4;  // of its shadow
constexpr int textLeft = margin + markSide + 16;
constexpr int textWidth = alertWidth - textLeft - margin - 16;
constexpr int headingHeight = 24;
constexpr int gap = 4;

QLabel* addText(QWidget* parent, const QString& text, const QFont& font, const QColor& colour) {
  auto* label = new QLabel(text, parent);
  label->setTextFormat(Qt::PlainText);
  label->setFont(font);
  label->setWordWrap(true);
  label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  auto ink = label->palette();
  ink.setColor(QPalette::WindowText, colour);
  label->setPalette(ink);
  return label;
}

}  // namespace

InfoAlert::InfoAlert(const WindowSurroundings& surroundings, const QString& messageText,
                     const QString& informativeText)
    : PaperWindow(surroundings, Qt::Dialog, messageText, CloseButton::absent),
      informativeText_(informativeText) {
  setWindowModality(Qt::ApplicationModal);
  setAccessibleDescription(informativeText);
  auto* heading = addText(this, messageText, fraunces(17.0, QFont::Normal, -0.003), colours().ink);
  auto* text = addText(this, informativeText, geist(13.5), colours().ink2);
  auto* button =
      new GlassPillButton(QStringLiteral("OK"), GlassPillButton::Role::primary, appearance(), this);
  connect(button, &QAbstractButton::clicked, this, &QWidget::close);

  const int textHeight = std::max(text->heightForWidth(textWidth), markSide - headingHeight - gap);
  const QSize buttonSize = button->sizeHint();
  const int buttonTop = margin + headingHeight + gap + textHeight + margin - 8 - GlassPillButton::ringMargin;
  setSheetSize({alertWidth, buttonTop + buttonSize.height() + margin - 4 - GlassPillButton::ringMargin});

  const QPoint corner = sheet().topLeft();
  heading->setGeometry(QRect(corner + QPoint(textLeft, margin), QSize(textWidth, headingHeight)));
  text->setGeometry(
      QRect(corner + QPoint(textLeft, margin + headingHeight + gap), QSize(textWidth, textHeight)));
  button->setGeometry(QRect(
      corner + QPoint(alertWidth - margin - buttonSize.width() + GlassPillButton::ringMargin, buttonTop),
      buttonSize));
  button->setFocus();
}

void InfoAlert::paintEvent(QPaintEvent* event) {
  PaperWindow::paintEvent(event);
  const double ratio = devicePixelRatioF();
  if (mark_.devicePixelRatio() != ratio || mark_.isNull()) {
    mark_ = appMarkImage(qRound(markSide * ratio), qRound(markMargin * ratio), colours());
    mark_.setDevicePixelRatio(ratio);
  }
  QPainter(this).drawImage(sheet().topLeft() + QPoint(margin - markMargin, margin - markMargin), mark_);
}

}  // namespace vorli::ui
