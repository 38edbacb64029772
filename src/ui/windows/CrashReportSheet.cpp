#include "ui/windows/CrashReportSheet.h"

#include "ui/kit/CheckBox.h"
#include "ui/kit/FocusRing.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/MixedColour.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/QtText.h"
#include "ui/kit/Symbol.h"
#include "ui/kit/ThinScrollBar.h"

#include <QKeyEvent>
#include <QPainter>
#include <QRadialGradient>
#include <QScrollBar>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <algorithm>

namespace vorli::ui {
namespace {

constexpr QSize windowSize{460, 600};
constexpr int crashLeft = 32, crashContentWidth = 396;
constexpr int disclosureHeight = 44, bottom = 32, crashButtonHeight = 44, crashButtonGap = 10,
              dismissWidth = 128;
constexpr int usualBoxHeight = 18, boxGap = 16, crashButtonsGap = 20;
constexpr int boxWidth = crashContentWidth - 4 + CheckBox::ringMargin;
constexpr int buttonsTop = windowSize.height() - bottom - crashButtonHeight;

/// Lengths of the upper half of the window.
struct Hero {
  double top, height, tileSide, symbolSide, titleGap, bodyGap;
};
constexpr double unfoldSeconds = 0.24;
constexpr Hero collapsedHero{32.0, 378.0, 64.0, 34.0, 20.0, 8.0};
constexpr Hero expandedHero{16.0, 184.0, 44.0, 24.0, 8.0, 4.0};
constexpr double leastTileSide = 24.0;

// Returns the body with a date that stays on one line.
QString bodyOf(const CrashReportView& view) {
  const QString date = QString::fromStdString(view.date());
  QString unbroken = date;
  unbroken.replace(u' ', QChar::Nbsp);
  return QString::fromStdString(view.body()).replace(date, unbroken);
}

const Hero& usualHero(CrashReportSheet::Form form) {
  return form == CrashReportSheet::Form::expanded ? expandedHero : collapsedHero;
}

// The tile gives way to words that need more room than usual.
Hero fitted(Hero hero, double height, double words) {
  hero.height = height;
  const double side = std::clamp(height - words, leastTileSide, hero.tileSide);
  hero.symbolSide *= side / hero.tileSide;
  hero.tileSide = side;
  return hero;
}

Paragraph titleIn(CrashReportSheet::Form form) {
  const bool expanded = form == CrashReportSheet::Form::expanded;
  return {qtText(CrashReportView::title), expanded ? TextRole::smallCrashTitle() : TextRole::crashTitle(),
          crashContentWidth, Paragraph::Wrap::balanced};
}

double unfolded(double collapsed, double expanded, double share) {
  return collapsed + (expanded - collapsed) * share;
}

/// The row that shows and hides the report.
class DisclosureRow final : public Control {
 public:
  DisclosureRow(CrashReportView& view, Appearance appearance, QWidget* parent)
      : Control(SpokenRole::button, appearance, parent), view_(view) {
    connect(this, &QAbstractButton::clicked, this, [this] { view_.toggleFullReport(); });
  }

  void refresh() {
    const auto& texts = view_.disclosure();
    setText(qtText(texts.text));
    say(qtText(texts.accessibilityLabel), qtText(texts.accessibilityHint),
        QString::fromStdString(view_.disclosureAccessibilityValue()));
    const double turn = view_.showFullReport ? 1.0 : 0.0;
    turn_.moveTo(turn, Animation::timingCurve(windowEaseOut, unfoldSeconds));
    update();
  }

 private:
  void paintEvent(QPaintEvent*) override {
    constexpr double symbolLeft = 14.0, symbolSide = 15.0, gap = 10.0;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF symbol(symbolLeft, (height() - symbolSide) / 2.0, symbolSide, symbolSide);
    painter.save();
    painter.translate(symbol.center());
    painter.rotate(90.0 * turn_.shown());
    painter.translate(-symbol.center());
    paintSymbol(painter, "chevron.right", symbol, mixed(colours().meta, colours().ink, hover()));
    painter.restore();
    const QRectF words(symbol.right() + gap, 0.0, width() - symbol.right() - gap, height());
    paintLines(painter, text(), TextRole::tab(), words, colours().ink);
    if (showsFocus()) paintFocusRing(painter, QRectF(rect()).adjusted(6.0, 6.0, -6.0, -6.0), 8.0, colours());
  }

  CrashReportView& view_;
  MovingValue turn_{*this, view_.showFullReport ? 1.0 : 0.0};  // turn of the chevron, from right to down
};

/// The report's text, which the keys take to its very ends: Qt alone stops at the cursor and leaves the
/// margin behind it out of sight.
class ReportText final : public QTextEdit {
 public:
  using QTextEdit::QTextEdit;

 private:
  void keyPressEvent(QKeyEvent* event) override {
    QTextEdit::keyPressEvent(event);
    if (!viewport()->rect().intersects(cursorRect())) return;  // scrolled elsewhere by other means
    auto& bar = *verticalScrollBar();
    const int block = textCursor().blockNumber();
    if (block == document()->blockCount() - 1) bar.setValue(bar.maximum());
    if (block == 0) bar.setValue(bar.minimum());
  }
};

}  // namespace

CrashReportSheet::CrashReportSheet(const WindowSurroundings& surroundings, CrashReportView& view)
    : PaperWindow(surroundings, Qt::Window, QStringLiteral("Vorli"), CloseButton::shown), view_(view) {
  setEscapeKey(EscapeKey::ignored);
  setSheetSize(windowSize);
  setAccessibleDescription(qtText(CrashReportView::title) + QStringLiteral(". ") +
                           QString::fromStdString(view.body()));
  makeContent();
  keepButtonsLast();
  send_->setFocus(Qt::OtherFocusReason);
  followAppearance([this] { makeContent(); });
}

void CrashReportSheet::makeContent() {
  expansion_.cancel();
  for (QWidget* earlier :
       {static_cast<QWidget*>(disclosure_), static_cast<QWidget*>(report_), static_cast<QWidget*>(suppress_),
        static_cast<QWidget*>(dismiss_), static_cast<QWidget*>(send_)})
    delete earlier;
  auto* disclosure = new DisclosureRow(view_, appearance(), this);
  disclosure_ = disclosure;
  disclosure_->show();
  makeReport();
  makeAnswers();
  expansion_ = view_.showFullReport.subscribe([this, disclosure](bool) {
    disclosure->refresh();
    open_.moveTo(view_.showFullReport ? 1.0 : 0.0, Animation::timingCurve(windowEaseOut, unfoldSeconds));
    arrange();
  });
}

void CrashReportSheet::makeReport() {
  report_ = new ReportText(this);
  report_->setReadOnly(true);
  report_->setFrameShape(QFrame::NoFrame);
  report_->setFont(TextRole::fixed().font);
  report_->setPlainText(QString::fromStdString(view_.report().body));
  report_->setLineWrapMode(QTextEdit::NoWrap);
  QTextBlockFormat lines;
  lines.setLineHeight(TextRole::fixed().leading, QTextBlockFormat::FixedHeight);
  QTextCursor all(report_->document());
  all.select(QTextCursor::Document);
  all.mergeBlockFormat(lines);
  report_->setVerticalScrollBar(new ThinScrollBar(Qt::Vertical, appearance(), report_));
  report_->setHorizontalScrollBar(new ThinScrollBar(Qt::Horizontal, appearance(), report_));
  report_->setCornerWidget(new QWidget(report_));  // transparent; the style would paint a frame here
  report_->setTabChangesFocus(true);
  report_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  report_->setAccessibleName(qtText(CrashReportView::fullTextAccessibilityLabel));
  auto colours = report_->palette();
  colours.setColor(QPalette::Base, Qt::transparent);
  colours.setColor(QPalette::Text, this->colours().ink2);
  colours.setColor(QPalette::Highlight, this->colours().primary.top);
  colours.setColor(QPalette::HighlightedText, this->colours().primaryText);
  colours.setColor(QPalette::Window, this->colours().surface);
  colours.setColor(QPalette::Button, this->colours().surface);
  report_->setPalette(colours);
}

void CrashReportSheet::makeAnswers() {
  using Role = GlassPillButton::Role;
  using Size = GlassPillButton::Size;
  suppress_ = new CheckBox(qtText(CrashReportView::checkBox), appearance(), this);
  suppress_->setChecked(view_.suppressFutureCrashes);
  connect(suppress_, &QAbstractButton::toggled, this,
          [this](bool checked) { view_.setSuppressFutureCrashes(checked); });
  dismiss_ = new GlassPillButton(qtText(CrashReportView::dismissButton), Role::plain, appearance(), this,
                                 Size::large);
  connect(dismiss_, &QAbstractButton::clicked, this, [this] { view_.dismiss(); });
  send_ = new GlassPillButton(qtText(CrashReportView::sendButton), Role::primary, appearance(), this,
                              Size::large);
  send_->setSymbol(CrashReportView::sendSymbol);
  send_->say(qtText(CrashReportView::sendAccessibilityLabel), qtText(CrashReportView::sendAccessibilityHint));
  connect(send_, &QAbstractButton::clicked, this, [this] { view_.send(); });

  const QPoint corner = sheet().topLeft();
  constexpr int ring = GlassPillButton::ringMargin;
  suppress_->resize(std::min(suppress_->sizeHint().width(), boxWidth), suppress_->heightForWidth(boxWidth));
  suppress_->move(corner + QPoint(crashLeft + 4 - CheckBox::ringMargin,
                                  buttonsTop - crashButtonsGap - boxHeight() - CheckBox::ringMargin));
  const int least = std::max(dismissWidth + 2 * ring, dismiss_->sizeHint().width());
  dismiss_->setGeometry(QRect(corner + QPoint(crashLeft - ring, buttonsTop - ring),
                              QSize(least, crashButtonHeight + 2 * ring)));
  const int sendLeft = crashLeft - ring + least - 2 * ring + crashButtonGap;
  send_->setGeometry(
      QRect(corner + QPoint(sendLeft, buttonsTop - ring),
            QSize(crashLeft + crashContentWidth + ring - sendLeft, crashButtonHeight + 2 * ring)));
  for (QWidget* answer :
       {static_cast<QWidget*>(suppress_), static_cast<QWidget*>(dismiss_), static_cast<QWidget*>(send_)})
    answer->show();
}

int CrashReportSheet::boxHeight() const {
  return suppress_->height() - 2 * CheckBox::ringMargin;
}

QRect CrashReportSheet::card() const {
  const int height = disclosureHeight + qRound(CrashReportView::fullTextHeight * open_.shown());
  const int cardBottom = buttonsTop - crashButtonsGap - boxHeight() - boxGap;
  return {sheet().topLeft() + QPoint(crashLeft, cardBottom - height), QSize(crashContentWidth, height)};
}

void CrashReportSheet::arrange() {
  constexpr int sidePadding = 10, padding = 8;  // plus the margin of the document
  const QRect area = card();
  disclosure_->setGeometry(QRect(area.topLeft(), QSize(area.width(), disclosureHeight)));
  const bool unfolds = report_->isHidden() && view_.showFullReport;
  report_->setVisible(view_.showFullReport || open_.shown() > 0.0);
  report_->setGeometry(area.adjusted(sidePadding, disclosureHeight + padding, -4, -padding));
  // Qt scrolls to the cursor when the report is shown, while no line fits into its height.
  if (unfolds) report_->verticalScrollBar()->setValue(0);
  update();
}

void CrashReportSheet::paintHero(QPainter& painter) {
  const double share = open_.shown();
  const auto heroIn = [this](Form form) {
    const double height = usualHero(form).height - (boxHeight() - usualBoxHeight);
    return fitted(usualHero(form), height, wordsHeight(form));
  };
  const Hero collapsed = heroIn(Form::collapsed), expanded = heroIn(Form::expanded);
  const auto at = [&](double Hero::*length) { return unfolded(collapsed.*length, expanded.*length, share); };
  const double words = unfolded(wordsHeight(Form::collapsed), wordsHeight(Form::expanded), share);
  const QRectF area = sheet();
  const double side = at(&Hero::tileSide);
  const double top = area.top() + at(&Hero::top) + (at(&Hero::height) - side - words) / 2.0;
  const QRectF tile(area.center().x() - side / 2.0, top, side, side);

  QRadialGradient halo(tile.center(), 200.0);
  QColor clear = colours().amberWash;
  clear.setAlpha(0);
  halo.setColorAt(0.0, colours().amberWash);
  halo.setColorAt(0.76, clear);
  painter.setClipRect(area.adjusted(1.0, 1.0, -1.0, -1.0));
  painter.fillRect(area, halo);
  painter.setClipping(false);
  paintIconTile(painter, tile, {}, 0.0, Tone::amber, colours());
  const double symbolSide = at(&Hero::symbolSide);
  QRectF symbol(0.0, 0.0, symbolSide, symbolSide);
  symbol.moveCenter(tile.center());
  paintSymbol(painter, CrashReportView::icon, symbol, colours().warn);

  painter.setOpacity(1.0 - share);
  if (share < 1.0) paintWords(painter, tile.bottom(), Form::collapsed);
  painter.setOpacity(share);
  if (share > 0.0) paintWords(painter, tile.bottom(), Form::expanded);
  painter.setOpacity(1.0);
}

Paragraph CrashReportSheet::bodyIn(Form form) const {
  const bool expanded = form == Form::expanded;
  return {bodyOf(view_), expanded ? TextRole::smallCrashBody() : TextRole::crashBody(), 388.0,
          Paragraph::Wrap::balanced};
}

double CrashReportSheet::wordsHeight(Form form) const {
  const Hero& hero = usualHero(form);
  return hero.titleGap + titleIn(form).height() + hero.bodyGap + bodyIn(form).height();
}

void CrashReportSheet::paintWords(QPainter& painter, double top, Form form) const {
  const Hero& hero = usualHero(form);
  const QRectF area = sheet();
  const Paragraph title = titleIn(form);
  const QRectF titlePlace(area.left(), top + hero.titleGap, area.width(), title.height());
  title.paint(painter, titlePlace, colours().ink, Qt::AlignHCenter);
  const Paragraph body = bodyIn(form);
  body.paint(painter, {area.left(), titlePlace.bottom() + hero.bodyGap, area.width(), body.height()},
             colours().ink2, Qt::AlignHCenter);
}

void CrashReportSheet::paintEvent(QPaintEvent* event) {
  PaperWindow::paintEvent(event);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintHero(painter);
  const QRectF area = card();
  paintCard(painter, area, colours());
  if (open_.shown() <= 0.0) return;
  painter.fillRect(QRectF(area.left() + 1.0, area.top() + disclosureHeight, area.width() - 2.0, 1.0),
                   colours().divider);
}

}  // namespace vorli::ui
