#include "ui/windows/StartupAppsPage.h"

#include "ui/kit/MovingValue.h"
#include "ui/kit/Plates.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SearchField.h"
#include "ui/kit/SpokenText.h"
#include "ui/kit/ThinScrollBar.h"
#include "ui/kit/Toast.h"
#include "ui/windows/StartupAppRowWidget.h"

#include <QEnterEvent>
#include <QEvent>
#include <QHideEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QShowEvent>
#include <algorithm>
#include <utility>

namespace vorli::ui {
namespace {

constexpr double topFade = 20.0, bottomFade = 40.0;
constexpr double fadeReach = 8.0;  // beside the cards, for their shadows; short of the window's round corner
constexpr int thumbInset = 3;      // of the bar, whose thumb is narrower
constexpr double thumbSeconds = 1.0;
constexpr int lastToastBottom = 20, betweenToasts = 8;
constexpr double toastRise = 12.0, toastResponse = 0.34, toastDamping = 0.80;
constexpr double toastLeaveSeconds = 0.16;
constexpr double spinnerSide = 32.0, spinnerSeconds = 1.0 / 12.0;
constexpr double noticeTileSide = 64.0, noticeTileSymbol = 32.0;
constexpr double noticeTileGap = 16.0, noticeHeadingGap = 4.0, noticeWidth = 320.0;

}  // namespace

// Paints the fades over the ends of the list.
class StartupAppsPage::Edges final : public QWidget {
 public:
  Edges(QScrollArea& area, const WindowPalette& palette, QWidget* parent)
      : QWidget(parent), area_(area), palette_(palette) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
  }

 private:
  void paintEvent(QPaintEvent*) override {
    const auto& bar = *area_.verticalScrollBar();
    if (bar.maximum() == 0) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor clear = palette_.surface;
    clear.setAlpha(0);
    const auto fade = [&](const QRectF& band, const QColor& top, const QColor& bottom) {
      QLinearGradient gradient(band.topLeft(), band.bottomLeft());
      gradient.setColorAt(0.0, top);
      gradient.setColorAt(1.0, bottom);
      painter.fillRect(band, gradient);
    };
    constexpr double left = StartupAppsMetrics::left - fadeReach;
    constexpr double width = StartupAppsMetrics::width + 2.0 * fadeReach;
    if (bar.value() > 0) fade({left, 0.0, width, topFade}, palette_.surface, clear);
    fade({left, height() - bottomFade, width, bottomFade}, clear, palette_.surface);
  }

  QScrollArea& area_;
  const WindowPalette& palette_;
};

StartupAppsPage::StartupAppsPage(StartupAppsView& view, const StartupAppsHost& host, Appearance appearance,
                                 QWidget* parent)
    : QWidget(parent),
      view_(view),
      scheduler_(host.scheduler),
      motion_(host.motion),
      icons_(host.icons),
      appearance_(appearance),
      palette_(WindowPalette::of(appearance)),
      scroll_(new QScrollArea(this)) {
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setFocusPolicy(Qt::NoFocus);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->viewport()->setAutoFillBackground(false);
  list_ = new StartupAppsList(view, host, appearance, *scroll_);
  scroll_->setWidget(list_);
  list_->setAutoFillBackground(false);
  edges_ = new Edges(*scroll_, palette_, this);
  thumb_ = new ThinScrollBar(Qt::Vertical, appearance, this);
  thumb_->hide();
  spokenNotice_ = new SpokenText(this);
  auto* bar = scroll_->verticalScrollBar();
  connect(bar, &QScrollBar::valueChanged, this, [this] {
    list_->followScrolling();
    followBar();
    showThumb();
  });
  connect(bar, &QScrollBar::rangeChanged, this, [this] { followBar(); });
  connect(thumb_, &QScrollBar::valueChanged, bar, &QScrollBar::setValue);
  connect(thumb_, &QScrollBar::sliderReleased, this, [this] { showThumb(); });
}

StartupAppsPage::~StartupAppsPage() {
  scroll_->verticalScrollBar()->disconnect();  // reports the end of the list while it is destroyed
  if (isVisiting_) view_.disappear();
  scheduler_.cancel(spinTimer_);
  scheduler_.cancel(thumbTimer_);
  scheduler_.cancel(toastTimer_);
}

void StartupAppsPage::followBar() {
  const auto& bar = *scroll_->verticalScrollBar();
  thumb_->setRange(bar.minimum(), bar.maximum());
  thumb_->setPageStep(bar.pageStep());
  thumb_->setSingleStep(bar.singleStep());
  thumb_->setValue(bar.value());
  edges_->update();
}

// Shows the thumb for a moment, or as long as the pointer is over it.
void StartupAppsPage::showThumb() {
  thumb_->setVisible(!scroll_->isHidden());
  scheduler_.cancel(thumbTimer_);
  thumbTimer_ = scheduler_.after(thumbSeconds, [this] {
    thumbTimer_ = 0;
    if (!underMouse() && !thumb_->isSliderDown()) thumb_->hide();
  });
}

void StartupAppsPage::enterEvent(QEnterEvent* event) {
  QWidget::enterEvent(event);
  thumb_->setVisible(!scroll_->isHidden());
}

void StartupAppsPage::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  if (thumbTimer_ == 0 && !thumb_->isSliderDown()) thumb_->hide();
}

void StartupAppsPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (event->spontaneous() && spinTimer_ == 0) spin();
  if (event->spontaneous() || std::exchange(isVisiting_, true)) return;
  content_ = view_.subscribeToContent(
      [this](const std::optional<Animation>& animation) { contentChanged(animation); });
  icons_.lookAgain();
  view_.appear();
  contentChanged(std::nullopt);
}

void StartupAppsPage::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  if (event->spontaneous() || !std::exchange(isVisiting_, false)) return;
  content_.cancel();
  elapsed_.cancel();
  view_.disappear();
  updateToasts();
  scheduler_.cancel(std::exchange(spinTimer_, 0));
}

void StartupAppsPage::contentChanged(const std::optional<Animation>& animation) {
  const bool isList = view_.content() == StartupAppsView::Content::list;
  scroll_->setVisible(isList);
  edges_->setVisible(isList);
  if (!isList) thumb_->hide();
  sayNotice();
  if (isList) list_->refresh(animation);
  updateToasts();
  update();
  if (view_.content() == StartupAppsView::Content::looking && spinTimer_ == 0) spin();
}

void StartupAppsPage::sayNotice() {
  const auto shown = notice();
  const bool isLooking = view_.content() == StartupAppsView::Content::looking;
  const QString text = isLooking ? qtText(view_.lookingText())
                       : shown   ? qtText(shown->heading) + QStringLiteral(". ") + qtText(shown->text)
                                 : QString();
  spokenNotice_->setText(text);
  spokenNotice_->setVisible(!text.isEmpty());
}

std::optional<StartupAppsNotice> StartupAppsPage::notice() const {
  switch (view_.content()) {
    case StartupAppsView::Content::nothing:
      return view_.nothingNotice();
    case StartupAppsView::Content::list:
      return view_.noMatches();
    case StartupAppsView::Content::looking:
      break;
  }
  return std::nullopt;
}

void StartupAppsPage::spin() {
  spinTimer_ = 0;
  if (!isVisible() || window()->isMinimized() || motion_.isReduced()) return;
  if (view_.content() != StartupAppsView::Content::looking) return;
  ++spinStep_;
  update(spinnerPlace().toAlignedRect());
  spinTimer_ = scheduler_.after(spinnerSeconds, [this] { spin(); });
}

void StartupAppsPage::updateToasts() {
  auto* undo = view_.undoToast();
  const auto action = undo ? std::optional(undo->action()) : std::nullopt;
  if (action != undoShown_) {
    undoShown_ = action;
    elapsed_.cancel();
    leave(undoToast_);
    if (undo) showUndoToast(*undo);
  }
  auto* helper = view_.helperToast();
  const auto shown = helper ? std::optional(HelperShown{helper->state(), helper->text()}) : std::nullopt;
  if (shown != helperShown_) {
    helperShown_ = shown;
    leave(helperToast_);
    if (helper) showHelperToast(*helper);
  }
  const int count = (undoToast_.toast ? 1 : 0) + (helperToast_.toast ? 1 : 0);
  list_->setToastRoom(count == 2   ? StartupAppsMetrics::twoToasts
                      : count == 1 ? StartupAppsMetrics::oneToast
                                   : 0.0);
  placeToasts();
}

void StartupAppsPage::appear(Floating& floating, Toast* toast) {
  floating = {toast, std::make_shared<Animated<double>>(scheduler_, 0.0)};
  const auto arrival = motion_.isReduced() ? Animation::timingCurve(windowEaseOut, reducedFadeSeconds)
                                           : Animation::spring(toastResponse, toastDamping);
  withAnimation(arrival, [&floating] { *floating.presence = 1.0; });
  toast->setPresence(0.0);
  toast->show();
  // Puts the button after the list, not after the window's own buttons: the list inserts its controls between
  // its search field and the toast.
  setTabOrder(&list_->search().edit(), &toast->button());
  list_->followScrolling();
  if (toastTimer_ == 0) moveToasts();
}

void StartupAppsPage::leave(Floating& floating) {
  if (!floating.toast) return;
  auto* toast = floating.toast;
  if (toast->isAncestorOf(window()->focusWidget())) list_->search().edit().setFocus(Qt::OtherFocusReason);
  toast->setAttribute(Qt::WA_TransparentForMouseEvents);
  toast->button().setFocusPolicy(Qt::NoFocus);
  const double seconds = motion_.isReduced() ? reducedFadeSeconds : toastLeaveSeconds;
  withAnimation(Animation::timingCurve(windowEaseOut, seconds), [&floating] { *floating.presence = 0.0; });
  leaving_.push_back(std::exchange(floating, {}));
  if (toastTimer_ == 0) moveToasts();
}

void StartupAppsPage::moveToasts() {
  const double now = scheduler_.now();
  bool isAnyMoving = false;
  for (const auto& floating : {undoToast_, helperToast_}) {
    if (!floating.toast) continue;
    floating.toast->setPresence(floating.presence->shown(now));
    isAnyMoving = isAnyMoving || floating.presence->isMoving(now);
  }
  std::erase_if(leaving_, [now](const Floating& floating) {
    floating.toast->setPresence(floating.presence->shown(now));
    if (floating.presence->isMoving(now)) return false;
    floating.toast->hide();
    floating.toast->deleteLater();
    return true;
  });
  placeToasts();
  const bool goesOn = isAnyMoving || !leaving_.empty();
  toastTimer_ = goesOn ? scheduler_.after(windowFrameSeconds, [this] { moveToasts(); }) : 0;
}

void StartupAppsPage::showUndoToast(UndoToastView& view) {
  const Toast::Words words{UndoToastView::symbol, Tone::lit, qtText(view.word()),
                           qtText(view.action().displayName), qtText(UndoToastView::undoTitle)};
  auto* made = new Toast(words, GlassPillButton::Role::plain, appearance_, this, [this] {
    if (auto* toast = view_.undoToast()) toast->undoPressed();
  });
  made->button().say(qtText(view.undoAccessibilityLabel()));
  elapsed_ = view.elapsed.subscribe(
      [made, &view](double) { made->button().setCountdown(view.countdownProgress()); });
  appear(undoToast_, made);
  // The row with the focus is about to disappear, and nothing else reaches the button in time.
  const auto* row = list_->rowWidget(view.action().itemID);
  const bool goes = view.action().kind == UndoAction::Kind::removed;
  if (goes && row && row->isAncestorOf(window()->focusWidget())) made->button().setFocus(Qt::TabFocusReason);
}

void StartupAppsPage::showHelperToast(HelperUnavailableToast& view) {
  const bool isHelpersFault = view.state().reason == HelperUnavailable::Reason::notResponding;
  const bool endsWithName = !view.textBeforeName().empty();
  const Toast::Words words{view.symbol(), isHelpersFault ? Tone::amber : Tone::plain,
                           endsWithName ? qtText(view.textBeforeName()).trimmed() : qtText(view.text()),
                           endsWithName ? qtText(view.state().displayName) : QString(),
                           qtText(view.buttonTitle())};
  auto* made = new Toast(words, GlassPillButton::Role::primary, appearance_, this,
                         [this] { view_.helperToastPressed(); });
  made->button().say(qtText(view.buttonAccessibilityLabel()), qtText(view.buttonAccessibilityHint()));
  appear(helperToast_, made);
}

// Places the helper's toast above the other one.
void StartupAppsPage::placeToasts() {
  int bottom = height() - lastToastBottom;
  for (const auto& [toast, presence] : {undoToast_, helperToast_}) {
    if (!toast) continue;
    const QSize size = toast->sizeHint();
    const int below = motion_.isReduced() ? 0 : qRound(toastRise * (1.0 - presence->shown()));
    const QSize plate = size.shrunkBy(Toast::shadowMargins);
    toast->setGeometry((width() - size.width()) / 2,
                       bottom + below - plate.height() - Toast::shadowMargins.top(), size.width(),
                       size.height());
    toast->raise();
    bottom -= plate.height() + betweenToasts;
  }
}

void StartupAppsPage::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  scroll_->setGeometry(rect());
  edges_->setGeometry(rect());
  const int barWidth = thumb_->sizeHint().width();
  thumb_->setGeometry(width() - thumbInset - barWidth, 0, barWidth, height());
  spokenNotice_->setGeometry(rect().adjusted(0, height() / 4, 0, -height() / 4));
  if (isVisiting_) list_->refresh(std::nullopt);
  placeToasts();
}

void StartupAppsPage::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (view_.content() == StartupAppsView::Content::looking) return paintLooking(painter);
  if (const auto shown = notice()) paintNotice(painter, *shown);
}

Paragraph StartupAppsPage::lookingText() const {
  return {qtText(view_.lookingText()), TextRole::emptyText(), noticeWidth, Paragraph::Wrap::balanced};
}

QRectF StartupAppsPage::spinnerPlace() const {
  const double top = (height() - spinnerSide - noticeTileGap - lookingText().height()) / 2.0;
  return {(width() - spinnerSide) / 2.0, top, spinnerSide, spinnerSide};
}

void StartupAppsPage::paintLooking(QPainter& painter) {
  const QRectF spinner = spinnerPlace();
  paintSpinner(painter, spinner, palette_.accent, spinStep_);
  const Paragraph text = lookingText();
  const double left = (width() - noticeWidth) / 2.0;
  text.paint(painter, {left, spinner.bottom() + noticeTileGap, noticeWidth, text.height()}, palette_.ink2,
             Qt::AlignHCenter);
}

void StartupAppsPage::paintNotice(QPainter& painter, const StartupAppsNotice& notice) {
  const Paragraph heading(qtText(notice.heading), TextRole::emptyHeading(), noticeWidth);
  const Paragraph text(qtText(notice.text), TextRole::emptyText(), noticeWidth, Paragraph::Wrap::balanced);
  const double left = (width() - noticeWidth) / 2.0;
  double top =
      (height() - noticeTileSide - noticeTileGap - heading.height() - noticeHeadingGap - text.height()) / 2.0;
  const bool isGood = view_.content() == StartupAppsView::Content::nothing;
  paintIconTile(painter, {(width() - noticeTileSide) / 2.0, top, noticeTileSide, noticeTileSide},
                notice.symbol, noticeTileSymbol, isGood ? Tone::lit : Tone::plain, palette_);
  top += noticeTileSide + noticeTileGap;
  heading.paint(painter, {left, top, noticeWidth, heading.height()}, palette_.ink, Qt::AlignHCenter);
  top += heading.height() + noticeHeadingGap;
  text.paint(painter, {left, top, noticeWidth, text.height()}, palette_.ink2, Qt::AlignHCenter);
}

}  // namespace vorli::ui
