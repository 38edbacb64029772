#include "ui/windows/InfoAlert.h"

#include "ui/kit/AppMark.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/Typeface.h"

#include <QAccessible>
#include <QLabel>
#include <QPainter>
#include <utility>

namespace vorli::ui {
namespace {

constexpr int alertWidth = 380;
constexpr int alertMargin = 24;
constexpr int alertMarkSide = 48;
constexpr int alertMarkMargin = 4;  // room for its shadow
constexpr int alertTextLeft = alertMargin + alertMarkSide + 16;
constexpr int alertTextWidth = alertWidth - alertTextLeft - alertMargin - 16;
constexpr int alertHeadingHeight = 24;
constexpr int alertGap = 4;

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
  makeContent();
  followAppearance([this] { makeContent(); });
}

void InfoAlert::makeContent() {
  mark_ = {};
  qDeleteAll(std::exchange(content_, {}));
  auto* heading = addText(this, windowTitle(), fraunces(17.0, QFont::Normal, -0.003), colours().ink);
  auto* text = addText(this, informativeText_, geist(13.5), colours().ink2);
  auto* button =
      new GlassPillButton(QStringLiteral("OK"), GlassPillButton::Role::primary, appearance(), this);
  connect(button, &QAbstractButton::clicked, this, &QWidget::close);
  content_ = {heading, text, button};

  const int headingHeight = std::max(heading->heightForWidth(alertTextWidth), alertHeadingHeight);
  const int textHeight =
      std::max(text->heightForWidth(alertTextWidth), alertMarkSide - headingHeight - alertGap);
  const QSize buttonSize = button->sizeHint();
  const int buttonTop =
      alertMargin + headingHeight + alertGap + textHeight + alertMargin - 8 - GlassPillButton::ringMargin;
  setSheetSize({alertWidth, buttonTop + buttonSize.height() + alertMargin - 4 - GlassPillButton::ringMargin});

  const QPoint corner = sheet().topLeft();
  heading->setGeometry(
      QRect(corner + QPoint(alertTextLeft, alertMargin), QSize(alertTextWidth, headingHeight)));
  text->setGeometry(QRect(corner + QPoint(alertTextLeft, alertMargin + headingHeight + alertGap),
                          QSize(alertTextWidth, textHeight)));
  button->setGeometry(QRect(
      corner + QPoint(alertWidth - alertMargin - buttonSize.width() + GlassPillButton::ringMargin, buttonTop),
      buttonSize));
  for (auto* part : std::as_const(content_)) part->show();
  button->setFocus();
}

void InfoAlert::paintEvent(QPaintEvent* event) {
  PaperWindow::paintEvent(event);
  const double ratio = devicePixelRatioF();
  if (mark_.devicePixelRatio() != ratio || mark_.isNull()) {
    mark_ = appMarkImage(qRound(alertMarkSide * ratio), qRound(alertMarkMargin * ratio), colours());
    mark_.setDevicePixelRatio(ratio);
  }
  QPainter(this).drawImage(
      sheet().topLeft() + QPoint(alertMargin - alertMarkMargin, alertMargin - alertMarkMargin), mark_);
}

}  // namespace vorli::ui
