#include "ui/windows/OnboardingSheet.h"

#include "ui/kit/MovingValue.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SpokenText.h"
#include "ui/windows/PreviewBar.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

using Mood = OnboardingView::Mood;

constexpr double moveSeconds = 0.42, fadeSeconds = 0.20;
constexpr double breathFrame = 1.0 / 15.0;
constexpr int onboardingMarkMargin = 8;  // room for its shadow
constexpr QSize onboardingSize{OnboardingMetrics::width, OnboardingMetrics::height};

// A long text widens the second button as far as the first one has room to spare; then it takes two lines.
double secondaryWidthBeside(const GlassPillButton& primary, const GlassPillButton& secondary) {
  const auto asked = [](const GlassPillButton& button) {
    return button.sizeHint().width() - 2.0 * GlassPillButton::ringMargin;
  };
  const double room = OnboardingMetrics::contentWidth - OnboardingMetrics::buttonGap - asked(primary);
  return std::max(OnboardingMetrics::secondaryWidth, std::min(asked(secondary), room));
}

// Names the image of a mood and a position of its dial.
int keyOf(Mood mood, int position) {
  return static_cast<int>(mood) * 12 + position;
}

}  // namespace

OnboardingSheet::OnboardingSheet(const WindowSurroundings& surroundings, Scheduler& scheduler,
                                 const ports::MotionPreference& motion)
    : PaperWindow(surroundings, Qt::Window, QStringLiteral("Vorli"), CloseButton::shown),
      scheduler_(scheduler),
      motion_(motion),
      arrival_(scheduler, 1.0),
      heroTop_(scheduler, 0.0),
      words_(new SpokenText(this)),
      status_(new SpokenText(this)) {
  setSheetSize(onboardingSize);
  setEscapeKey(EscapeKey::ignored);  // it would end the first steps by accident
  makeButtons();
  keepButtonsLast();
  followAppearance([this] { makeContentAnew(); });
}

void OnboardingSheet::makeButtons() {
  const auto button = [this](GlassPillButton::Role role) {
    return new GlassPillButton(QString(), role, appearance(), this, GlassPillButton::Size::large);
  };
  secondary_ = button(GlassPillButton::Role::plain);
  primary_ = button(GlassPillButton::Role::primary);
  connect(primary_, &QAbstractButton::clicked, this, [this] { pressed(true); });
  connect(secondary_, &QAbstractButton::clicked, this, [this] { pressed(false); });
}

void OnboardingSheet::makeContentAnew() {
  delete secondary_;
  delete primary_;
  delete std::exchange(bar_, nullptr);
  makeButtons();
  markKey_ = noMark;
  showBar(barModel_);
  if (helperView_) {
    helperContentChanged();
  } else if (doneView_) {
    placeDoneButton();
  }
}

OnboardingSheet::~OnboardingSheet() {
  scheduler_.cancel(frameTimer_);
}

void OnboardingSheet::show(OnboardingView& view, PreviewPickerBar* bar) {
  helperView_ = &view;
  doneView_ = nullptr;
  content_ = view.subscribeToContent([this] { helperContentChanged(); });
  showBar(bar);
  helperContentChanged();
  primary_->setFocus(Qt::OtherFocusReason);
}

void OnboardingSheet::show(OnboardingDoneView& view, PreviewPickerBar* bar) {
  doneView_ = &view;
  helperView_ = nullptr;
  content_.cancel();
  showBar(bar);
  take(OnboardingPicture::of(view));
  placeDoneButton();
  primary_->setFocus(Qt::OtherFocusReason);
}

void OnboardingSheet::placeDoneButton() {
  placeButtons({.title = doneView_->buttonTitle(), .accessibilityLabel = {}, .accessibilityHint = {}},
               std::nullopt);
}

void OnboardingSheet::helperContentChanged() {
  take(OnboardingPicture::of(*helperView_));
  placeButtons(helperView_->primaryButton(), helperView_->secondaryButton());
}

void OnboardingSheet::take(OnboardingPicture next) {
  if (next == picture_) return;
  const bool isFirst = picture_.title().isEmpty();
  if (next.mood() != picture_.mood() || next.isDone() != picture_.isDone()) moodSince_ = scheduler_.now();
  earlier_ = std::exchange(picture_, std::move(next));
  const bool jumps = isFirst || earlier_.isDone() != picture_.isDone() || motion_.isReduced();
  const double top = picture_.mark().top();
  if (jumps) {
    heroTop_ = top;
  } else {
    withAnimation(Animation::timingCurve(windowEaseOut, moveSeconds), [this, top] { heroTop_ = top; });
  }
  if (!isFirst) {
    arrival_ = 0.0;
    const double seconds = motion_.isReduced() ? reducedFadeSeconds : fadeSeconds;
    withAnimation(Animation::timingCurve(windowEaseOut, seconds), [this] { arrival_ = 1.0; });
  }
  describe();
  update();
  startFrames();
}

void OnboardingSheet::describe() {
  const QPoint corner = sheet().topLeft();
  words_->setText(picture_.title() + QStringLiteral(". ") + picture_.sentence());
  words_->setGeometry(
      picture_.titlePlace().united(picture_.sentencePlace()).toAlignedRect().translated(corner));
  qDeleteAll(std::exchange(explanations_, {}));
  for (std::size_t i = 0; i < picture_.rows().size(); ++i) {
    auto* text = new SpokenText(this);
    text->setText(picture_.rows()[i].title + QStringLiteral(". ") + picture_.rows()[i].body);
    text->setGeometry(picture_.row(i).toAlignedRect().translated(corner));
    text->show();
    explanations_.push_back(text);
  }
  status_->setText(helperView_ && !picture_.statusLine().isEmpty()
                       ? qtText(helperView_->statusLineAccessibilityText())
                       : QString());
  status_->setVisible(!status_->text().isEmpty());
  status_->setGeometry(QRect(static_cast<int>(OnboardingMetrics::margin),
                             static_cast<int>(OnboardingMetrics::statusTop),
                             static_cast<int>(OnboardingMetrics::contentWidth),
                             static_cast<int>(OnboardingMetrics::statusHeight))
                           .translated(corner));
}

void OnboardingSheet::placeButtons(const OnboardingButton& primary,
                                   const std::optional<OnboardingButton>& secondary) {
  primary_->setText(qtText(primary.title));
  if (secondary) secondary_->setText(qtText(secondary->title));
  const auto show = [this](GlassPillButton& button, const OnboardingButton& content, double left,
                           double width) {
    button.setEnabled(content.isActive);
    button.say(qtText(content.accessibilityLabel.empty() ? content.title : content.accessibilityLabel),
               qtText(content.accessibilityHint));
    const QRectF capsule(left, OnboardingMetrics::buttonTop, width, OnboardingMetrics::buttonHeight);
    const int ring = GlassPillButton::ringMargin;
    button.setGeometry(capsule.toRect().adjusted(-ring, -ring, ring, ring).translated(sheet().topLeft()));
    button.show();
    button.update();
  };
  // An inactive button would pass the focus to the window's own buttons, where Return closes the window.
  const bool isSecondaryActive = secondary && secondary->isActive;
  if ((focusWidget() == primary_ && !primary.isActive) || (focusWidget() == secondary_ && !isSecondaryActive))
    setFocus(Qt::OtherFocusReason);
  const double secondaryWidth = secondary ? secondaryWidthBeside(*primary_, *secondary_) : 0.0;
  const double shift = secondary ? secondaryWidth + OnboardingMetrics::buttonGap : 0.0;
  show(*primary_, primary, OnboardingMetrics::margin + shift, OnboardingMetrics::contentWidth - shift);
  if (secondary) {
    show(*secondary_, *secondary, OnboardingMetrics::margin, secondaryWidth);
  } else {
    secondary_->hide();
  }
  if (focusWidget() == this && primary.isActive) primary_->setFocus(Qt::OtherFocusReason);
}

void OnboardingSheet::pressed(bool isPrimary) {
  if (doneView_) return doneView_->buttonPressed();
  if (!helperView_) return;
  if (isPrimary) {
    helperView_->primaryPressed();
  } else {
    helperView_->secondaryPressed();
  }
}

void OnboardingSheet::showBar(PreviewPickerBar* bar) {
  barModel_ = bar;
  if (!bar || bar_) return;
  bar_ = new PreviewBar(*bar, appearance(), this);
  bar_->setGeometry(sheet().x(), sheet().y(), OnboardingMetrics::width, PreviewBar::height);
  bar_->show();
  keepButtonsLast();
}

void OnboardingSheet::paintEvent(QPaintEvent* event) {
  PaperWindow::paintEvent(event);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(sheet().topLeft());
  paintHero(painter);
  if (bar_) paintBarGround(painter);
  const double arrival = arrival_.shown();
  const auto paintTexts = [&](const OnboardingPicture& picture, double opacity) {
    if (opacity <= 0.0) return;
    painter.setOpacity(opacity);
    picture.paintWords(painter, heroTop_.shown() - picture.mark().top(), colours());
    picture.paintCard(painter, colours());
  };
  paintTexts(earlier_, arrival < 1.0 ? 1.0 - arrival : 0.0);
  paintTexts(picture_, arrival);
}

void OnboardingSheet::paintBarGround(QPainter& painter) const {
  painter.save();
  painter.setClipRect(QRect(0, 0, sheet().width(), PreviewBar::height));
  painter.setPen(Qt::NoPen);
  painter.setBrush(colours().wash);
  painter.drawRoundedRect(QRectF(QPointF(), sheet().size()), cornerRadius(), cornerRadius());
  painter.restore();
}

void OnboardingSheet::paintHero(QPainter& painter) {
  QRectF place = picture_.mark();
  place.moveTop(heroTop_.shown());
  painter.save();
  painter.setClipRect(QRectF(0.0, 0.0, OnboardingMetrics::width, OnboardingMetrics::height));
  const double breath = helperView_ && !motion_.isReduced() ? helperView_->haloBreath.shown() : 0.0;
  paintHalo(painter, place.center(), breath, picture_.mood(), colours());
  painter.restore();
  if (doneView_ && picture_.isDone()) {
    const bool isStill = motion_.isReduced();
    return paintDoneDial(painter, place, isStill ? OnboardingDoneView::tickCount : doneView_->ticks.shown(),
                         isStill ? 1.0 : doneView_->checkDrawn.shown(),
                         isStill ? 1.0 : doneView_->checkPop.shown(), colours());
  }
  const double seconds = motion_.isReduced() ? 0.0 : scheduler_.now() - moodSince_;
  const int position =
      picture_.mood() == Mood::waiting ? static_cast<int>(std::floor(seconds / waitingTickSeconds)) % 12 : 0;
  const int key = keyOf(picture_.mood(), position);
  const double ratio = devicePixelRatioF();
  const QSize pixels =
      QSize(1, 1) * (qRound(place.width() * ratio) + 2 * qRound(onboardingMarkMargin * ratio));
  if (key != markKey_ || mark_.devicePixelRatio() != ratio || mark_.size() != pixels) {
    const QColor star = picture_.mood() == Mood::trouble ? colours().amber : colours().gleam;
    mark_ = appMarkImage(qRound(place.width() * ratio), qRound(onboardingMarkMargin * ratio), colours(),
                         moodTicks(picture_.mood(), position, colours()), star);
    mark_.setDevicePixelRatio(ratio);
    markKey_ = key;
  }
  painter.drawImage(place.topLeft() - QPointF(onboardingMarkMargin, onboardingMarkMargin), mark_);
}

void OnboardingSheet::startFrames() {
  if (frameTimer_ == 0 && isVisible()) frame();
}

// Draws nothing while the window is not visible; the frames start again when it becomes visible.
void OnboardingSheet::frame() {
  frameTimer_ = 0;
  if (!isVisible() || (windowHandle() && !windowHandle()->isExposed())) return;
  update();
  if (const auto seconds = nextFrameIn(scheduler_.now()))
    frameTimer_ = scheduler_.after(*seconds, [this] { frame(); });
}

std::optional<double> OnboardingSheet::nextFrameIn(double now) const {
  const auto moves = [now](const AnimatedValue<double>& value) { return value.isMoving(now); };
  if (moves(arrival_) || moves(heroTop_)) return windowFrameSeconds;
  if (motion_.isReduced()) return std::nullopt;
  if (doneView_) {
    const bool isDrawing =
        moves(doneView_->ticks) || moves(doneView_->checkDrawn) || moves(doneView_->checkPop);
    return isDrawing ? std::optional(windowFrameSeconds) : std::nullopt;
  }
  return helperView_ ? std::optional(breathFrame) : std::nullopt;
}

bool OnboardingSheet::event(QEvent* event) {
  const bool handled = PaperWindow::event(event);
  if (event->type() == QEvent::Show) {
    windowHandle()->installEventFilter(this);
    startFrames();
  }
  return handled;
}

// Qt reports to the window, not to the widget, that it can be seen. The widget is shown before that.
bool OnboardingSheet::eventFilter(QObject* watched, QEvent* event) {
  if (watched == windowHandle() && event->type() == QEvent::Expose) startFrames();
  return PaperWindow::eventFilter(watched, event);
}

void OnboardingSheet::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (primary_->isEnabled()) primary_->click();
    return;
  }
  PaperWindow::keyPressEvent(event);
}

void OnboardingSheet::closeEvent(QCloseEvent* event) {
  content_.cancel();
  helperView_ = nullptr;
  doneView_ = nullptr;
  PaperWindow::closeEvent(event);
}

}  // namespace vorli::ui
