#include "ui/popover/PopoverWidget.h"

#include "ui/QtText.h"
#include "ui/popover/ChangedPart.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QTextDocument>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

using Metrics = PopoverMetrics;
using Id = PopoverControlId;

// The card's own motions are short and quick, and so are sparks; the other light of a polish is soft, and the
// breath slow.
constexpr double quickFrame = 1.0 / 60.0, lightFrame = 1.0 / 30.0, breathFrame = 1.0 / 10.0;

// A tool tip follows what looks like markup, as the name of an application may.
QString asToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

}  // namespace

PopoverWidget::PopoverWidget(Scheduler& scheduler, PopoverView& view, Compositing compositing,
                             Callbacks callbacks)
    : QWidget(nullptr,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint),
      scheduler_(scheduler),
      view_(view),
      compositing_(compositing),
      callbacks_(std::move(callbacks)),
      scene_(scheduler, view, [this] { wake(); }) {
  installPopoverAccessibility();
  setWindowTitle(QStringLiteral("Vorli"));
  setObjectName(QStringLiteral("popover"));
  setFocusPolicy(Qt::NoFocus);
  setAttribute(Qt::WA_AlwaysShowToolTips);
  setAttribute(compositing == Compositing::present ? Qt::WA_TranslucentBackground : Qt::WA_OpaquePaintEvent);
  setFixedSize(QSize(static_cast<int>(Metrics::width), static_cast<int>(Metrics::tallest)).grownBy(margins));
  makeControls();
  content_ = view_.subscribeToContent([this] {
    scene_.followContent(scheduler_.now());
    updateControls();
  });
}

// The controls tell what becomes of them, while there still is somebody to tell.
PopoverWidget::~PopoverWidget() {
  for (auto* control : controls_) delete control;
  scheduler_.cancel(frameTimer_);
}

void PopoverWidget::begin() {
  isSeen_ = false;
  usesKeyboard_ = false;
  asksToQuit_ = false;  // a question that is still open takes the focus anew
  releaseControls();
  scene_.jumpToContent();
  updateControls();
  shown_ = scene_.picture(scheduler_.now());
  shownCard_ = {};
}

void PopoverWidget::paintAhead() {
  if (isSeen_) return;
  const double ratio = devicePixelRatioF();
  QImage image((QSizeF(size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  paint(painter, rect());
  painter.end();
  ahead_ = std::move(image);
  update();
}

void PopoverWidget::end() {
  scheduler_.cancel(std::exchange(frameTimer_, 0));
  ahead_ = {};
  if (auto* focused = focusWidget()) focused->clearFocus();
  releaseControls();
}

// The pointer comes anew to a window that opens under it.
void PopoverWidget::releaseControls() {
  scene_.releaseControls();
  if (view_.hovered) view_.hovered = false;
}

// Where the content begins: the card hangs from its upper edge, or stands on its lower one.
QPointF PopoverWidget::origin() const {
  if (scene_.edge() == PopoverScene::Edge::top) return {margins.left() * 1.0, margins.top() * 1.0};
  constexpr double shadowBelow = CardPainter::bottomReach;
  return {margins.left() * 1.0, height() - shadowBelow - (shown_.cardTop + shown_.cardHeight)};
}

QPointF PopoverWidget::restingOrigin() const {
  if (scene_.edge() == PopoverScene::Edge::top) return origin();
  return {origin().x(), height() - CardPainter::bottomReach - scene_.restingContentHeight()};
}

QRect PopoverWidget::card() const {
  return PopoverPainter::cardOf(origin(), shown_, devicePixelRatioF()).toAlignedRect();
}

QRect PopoverWidget::restingCard() const {
  const QSizeF size(Metrics::width, std::max(scene_.restingContentHeight(), scene_.cardHeight()));
  return QRectF(restingOrigin(), size).toAlignedRect();
}

void PopoverWidget::wake() {
  if (!isVisible() || !ahead_.isNull()) return;
  const double now = scheduler_.now();
  if (frameTimer_ != 0 && nextFrame_ <= now + quickFrame) return;
  scheduler_.cancel(std::exchange(frameTimer_, 0));
  nextFrame_ = now;
  frameTimer_ = scheduler_.after(0.0, [this] { frame(); });
}

void PopoverWidget::frame() {
  frameTimer_ = 0;
  if (!isVisible() || !ahead_.isNull()) return;
  const double now = scheduler_.now();
  PopoverPicture next = scene_.picture(now);
  const bool isTurned = placedEdge_ != scene_.edge();  // all of it lies elsewhere in the window
  if (isTurned) placeControls();
  const auto changed = isTurned ? std::nullopt : changedPart(shown_, next);
  shown_ = std::move(next);
  if (!changed) {
    update();
  } else if (!changed->isEmpty()) {
    update(changed->translated(origin()).toAlignedRect());
  }
  if (const QRect nowCard = card(); nowCard != shownCard_) {
    shownCard_ = nowCard;
    callbacks_.card(nowCard);
  }
  armNextFrame(now);
}

void PopoverWidget::armNextFrame(double now) {
  const PopoverMotion motion = view_.motion(now);
  double interval = 0.0;
  if (now < scene_.restsAt() || (motion == PopoverMotion::full && hasLitSparks(shown_.aurora))) {
    interval = quickFrame;
  } else if (motion == PopoverMotion::full) {
    interval = lightFrame;
  } else if (motion == PopoverMotion::breath) {
    interval = breathFrame;
  } else {
    return;
  }
  // In step with the last frame, unless this one came late.
  nextFrame_ = std::max(nextFrame_ + interval, now + interval / 2.0);
  frameTimer_ = scheduler_.after(nextFrame_ - now, [this] { frame(); });
}

void PopoverWidget::paintEvent(QPaintEvent* event) {
  ++framesPainted_;
  isSeen_ = true;
  QPainter painter(this);
  if (ahead_.isNull()) return paint(painter, event->region().boundingRect());
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(QPointF(), std::exchange(ahead_, {}));
  wake();
}

void PopoverWidget::paint(QPainter& painter, const QRectF& dirty) {
  const auto frame =
      compositing_ == Compositing::present ? PopoverPainter::Frame::shadow : PopoverPainter::Frame::hairline;
  painter_.paint(painter, origin(), shown_, frame, dirty, devicePixelRatioF());
}

PopoverControl* PopoverWidget::makeControl(Id id, std::function<void()> action) {
  PopoverControl::Watcher watcher{[this, id](bool hovered) {
                                    scene_.setHovered(id, hovered);
                                    if (id == Id::polish && view_.hovered != hovered) view_.hovered = hovered;
                                  },
                                  [this, id](bool pressed) { scene_.setPressed(id, pressed); },
                                  [this, id](bool shown) { scene_.setFocusShown(id, shown); }};
  auto* control = new PopoverControl(id, std::move(watcher), this);
  controls_[static_cast<std::size_t>(id)] = control;
  connect(control, &QAbstractButton::clicked, this, [this, control, action = std::move(action)] {
    usesKeyboard_ = control->showsFocus();
    action();
  });
  return control;
}

void PopoverWidget::makeControls() {
  makeControl(Id::polish, [this] { view_.polishPressed(); })->setRound();
  sentence_ = new PopoverText(this);
  culprits_ = new PopoverText(this);
  makeControl(Id::firstName, [this] { view_.culpritNamePressed(nameAt(0)); });
  makeControl(Id::secondName, [this] { view_.culpritNamePressed(nameAt(1)); });
  question_ = new PopoverText(this);
  makeControl(Id::cancel, [this] { view_.quitCancelled(); });
  makeControl(Id::quit, [this] { view_.quitConfirmed(); });
  banner_ = new PopoverText(this);
  makeControl(Id::link, [this] { view_.openSettingsLinkPressed(); });
  makeControl(Id::gear, [this] { view_.gearPressed(); });
  for (std::size_t i = 1; i < controls_.size(); ++i) setTabOrder(controls_[i - 1], controls_[i]);
}

std::string PopoverWidget::nameAt(std::size_t index) const {
  for (const auto& segment : view_.culpritSegments()) {
    if (segment.kind != CulpritSentence::Segment::Kind::app) continue;
    if (index-- == 0) return segment.text;
  }
  return {};
}

void PopoverWidget::updateControls() {
  placeControls();
  sayControls();
  askedToQuit(scene_.restingWords().quit.has_value());
}

void PopoverWidget::placeControls() {
  placedEdge_ = scene_.edge();
  const QPointF at = restingOrigin();
  const auto& words = scene_.restingWords();
  const auto layout = PopoverLayout::of(words, devicePixelRatioF());
  const double ring = Metrics::ringHitRadius;
  control(Id::polish)
      .placeAt(QRectF(Metrics::centreX - ring, scene_.restingRingCentreY() - ring, 2.0 * ring, 2.0 * ring)
                   .translated(at));
  control(Id::gear).placeAt(Metrics::gear.translated(at));

  const auto place = [&](Id id, const QRectF* shape) {
    if (shape) control(id).placeAt(shape->translated(at));
    // The focus must not wander to the next control by itself when its own goes.
    if (!shape && control(id).hasFocus()) control(id).clearFocus();
    control(id).setVisible(shape != nullptr);
  };
  std::array<QRectF, 2> plates;
  std::size_t names = 0;
  if (layout.culprits) {
    for (const auto& name : layout.culprits->names) {
      if (names < plates.size()) plates[names++] = name.plate();
    }
  }
  place(Id::firstName, names > 0 ? &plates[0] : nullptr);
  place(Id::secondName, names > 1 ? &plates[1] : nullptr);
  place(Id::cancel, layout.quit ? &layout.quit->cancel : nullptr);
  place(Id::quit, layout.quit ? &layout.quit->quit : nullptr);
  place(Id::link, layout.link ? &layout.link->capsule : nullptr);

  const double column = (Metrics::width - Metrics::columnWidth) / 2.0;
  const auto textPlace = [&](double top, double height) {
    return QRectF(column, top, Metrics::columnWidth, height).translated(at).toAlignedRect();
  };
  sentence_->setGeometry(textPlace(words.headlineTop, 44.0));
  culprits_->setVisible(layout.culprits.has_value());
  if (layout.culprits) culprits_->setGeometry(textPlace(plates[0].top(), layout.bottom - plates[0].top()));
  question_->setVisible(layout.quit.has_value());
  if (layout.quit) question_->setGeometry(textPlace(layout.quit->cancel.top() - 24.0, 20.0));
  banner_->setVisible(layout.banner.has_value());
  if (layout.banner) banner_->setGeometry(layout.banner->capsule.translated(at).toAlignedRect());
}

void PopoverWidget::sayControls() {
  const auto tip = [this](Id id, const QString& text) {
    const QString said = asToolTip(text);
    if (control(id).toolTip() != said) control(id).setToolTip(said);
  };
  const auto text = [](PopoverText& label, const QString& words) {
    if (label.text() != words) label.setText(words);
  };
  const QString sentence = qtText(view_.statusSentence());
  control(Id::polish)
      .say(qtText(view_.polishAccessibilityLabel()), qtText(view_.polishAccessibilityHint()), sentence);
  tip(Id::polish, qtText(view_.polishToolTip()));
  text(*sentence_, sentence);
  QString culprits;
  for (const auto& segment : view_.culpritSegments()) culprits += qtText(segment.text);
  text(*culprits_, culprits);
  for (const auto& [id, index] : {std::pair(Id::firstName, 0U), std::pair(Id::secondName, 1U)}) {
    const std::string name = nameAt(index);
    if (name.empty()) continue;
    control(id).say(qtText(AppNameChip::accessibilityLabel(name)),
                    qtText(AppNameChip::accessibilityHint(name)));
    tip(id, qtText(AppNameChip::helpText(name)));
  }
  if (const auto question = view_.quitQuestion()) text(*question_, qtText(*question));
  control(Id::cancel).say(qtText(PopoverView::cancelTitle), {});
  control(Id::quit).say(qtText(PopoverView::quitTitle), {});
  const auto banner = view_.percentBannerAccessibilityText();
  text(*banner_, banner ? qtText(*banner) : QString());
  control(Id::link).say(qtText(PopoverView::openSettingsTitle), qtText(PopoverView::openSettingsHint));
  control(Id::gear).say(qtText(PopoverView::gearLabel), qtText(PopoverView::gearHint));
}

// The question takes the focus to its harmless answer.
void PopoverWidget::askedToQuit(bool asks) {
  if (std::exchange(asksToQuit_, asks) == asks || !asks) return;
  control(Id::cancel).setFocus(usesKeyboard_ ? Qt::TabFocusReason : Qt::OtherFocusReason);
}

void PopoverWidget::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    if (view_.confirmingQuitName().get()) return view_.quitCancelled();
    return callbacks_.escape();
  }
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    auto* focused = dynamic_cast<PopoverControl*>(focusWidget());
    return (focused ? focused : &control(Id::polish))->click();
  }
  QWidget::keyPressEvent(event);
}

bool PopoverWidget::focusNextPrevChild(bool next) {
  auto* focused = dynamic_cast<PopoverControl*>(focusWidget());
  if (!focused || focused->showsFocus()) return QWidget::focusNextPrevChild(next);
  focused->showFocus();
  return true;
}

// The user's wish, by the window manager, goes the way of every other. The program's own, at its end, is not
// refused: that would keep it from ending.
void PopoverWidget::closeEvent(QCloseEvent* event) {
  if (!event->spontaneous()) return QWidget::closeEvent(event);
  event->ignore();
  callbacks_.escape();
}

bool PopoverWidget::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate) callbacks_.left();
  if (event->type() == QEvent::Show) wake();
  return QWidget::event(event);
}

}  // namespace vorli::ui
