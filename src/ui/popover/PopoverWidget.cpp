#include "ui/popover/PopoverWidget.h"

#include "ui/kit/QtText.h"
#include "ui/popover/ChangedPart.h"
#include "ui/popover/FramePace.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QTextDocument>
#include <algorithm>
#include <cmath>

namespace vorli::ui {
namespace {

using Id = PopoverControlId;

// Rates of a screen that are believed, in frames a second. Some drivers report nonsense.
constexpr double leastRate = 30.0, usualRate = 60.0, mostRate = 240.0;

// Returns the place of a name's control in the culprit sentence.
constexpr std::size_t placeOfName(Id id) {
  return id == Id::secondName ? 1 : 0;
}

// Escapes what a tool tip would take for markup, as it may occur in the name of an application.
QString asToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

QImage clearImage(const QSize& points, double pixelRatio) {
  QImage image((QSizeF(points) * pixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(pixelRatio);
  image.fill(Qt::transparent);
  return image;
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
  setFixedSize(QSize(static_cast<int>(PopoverMetrics::width), static_cast<int>(PopoverMetrics::tallest))
                   .grownBy(margins));
  makeControls();
  content_ = view_.subscribeToContent([this] { followContent(); });
}

// Destroys the controls first, because they report their last changes to the other members.
PopoverWidget::~PopoverWidget() {
  for (auto* control : controls_) delete control;
  scheduler_.cancel(frameTimer_);
}

void PopoverWidget::begin() {
  isSeen_ = false;
  usesKeyboard_ = false;
  asksToQuit_ = false;  // so that an open question takes the focus again
  releaseControls();
  scene_.jumpToContent();
  updateControls();
  shown_ = scene_.picture(scheduler_.now());
  shownCard_ = {};
}

void PopoverWidget::prepare() {
  begin();
  painter_.prepare(shown_, devicePixelRatioF());
}

void PopoverWidget::paintAhead() {
  if (isSeen_) return;
  const QRect part = partAhead();
  QImage image = clearImage(part.size(), devicePixelRatioF());
  QPainter painter(&image);
  painter.translate(-part.topLeft());
  paint(painter, part);
  painter.end();
  ahead_ = std::move(image);
  aheadAt_ = part.topLeft();
  update();
}

// The part of the window that the card and its shadow need: at the opening a narrow strip. It begins on a
// device pixel at every pixel ratio in steps of 1/4.
QRect PopoverWidget::partAhead() const {
  if (compositing_ == Compositing::absent) return rect();
  constexpr int step = 4;
  const QRect needed = card().marginsAdded(margins) & rect();
  return {QPoint(needed.left() / step * step, needed.top() / step * step), needed.bottomRight()};
}

void PopoverWidget::end() {
  scheduler_.cancel(std::exchange(frameTimer_, 0));
  ahead_ = {};
  if (auto* focused = focusWidget()) focused->clearFocus();
  releaseControls();
}

// Resets hover and press: a window that opens under the pointer gets a new Enter event.
void PopoverWidget::releaseControls() {
  scene_.releaseControls();
  view_.setHovered(false);
}

// Upper left corner of the content. The card is fixed at its upper edge or at its lower one.
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
  const QSizeF size(PopoverMetrics::width, std::max(scene_.restingContentHeight(), scene_.cardHeight()));
  return QRectF(restingOrigin(), size).toAlignedRect();
}

void PopoverWidget::wake() {
  if (!isVisible() || !ahead_.isNull()) return;
  const double now = scheduler_.now();
  if (frameTimer_ != 0 && nextFrame_ <= now + displaySeconds()) return;
  scheduler_.cancel(std::exchange(frameTimer_, 0));
  nextFrame_ = now;
  frameTimer_ = scheduler_.after(0.0, [this] { frame(); });
}

// A slow change, such as that of most ticks, waits for the next frame.
void PopoverWidget::followContent() {
  const double now = scheduler_.now();
  scene_.followContent(now);
  updateControls();
  if (frameTimer_ == 0) return wake();
  const auto interval = secondsToNextFrame(view_, scene_, shown_, now, displaySeconds());
  if (!interval || nextFrame_ > now + *interval) wake();
}

void PopoverWidget::frame() {
  frameTimer_ = 0;
  if (!isVisible() || !ahead_.isNull()) return;
  const double now = scheduler_.now();
  PopoverPicture next = scene_.picture(now);
  const bool isTurned = placedEdge_ != scene_.edge();  // everything moves within the window
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

double PopoverWidget::displaySeconds() const {
  const double rate = screen()->refreshRate();
  return 1.0 / (rate < leastRate ? usualRate : std::min(rate, mostRate));
}

void PopoverWidget::armNextFrame(double now) {
  const auto interval = secondsToNextFrame(view_, scene_, shown_, now, displaySeconds());
  if (!interval) return;
  // Keeps in step with the last frame, unless this one came late.
  nextFrame_ = std::max(nextFrame_ + *interval, now + *interval / 2.0);
  frameTimer_ = scheduler_.after(nextFrame_ - now, [this] { frame(); });
}

void PopoverWidget::paintEvent(QPaintEvent* event) {
  ++framesPainted_;
  isSeen_ = true;
  QPainter painter(this);
  if (ahead_.isNull()) return paint(painter, event->region().boundingRect());
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(aheadAt_, std::exchange(ahead_, {}));
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
                                    if (id == Id::polish) view_.setHovered(hovered);
                                  },
                                  [this, id](bool pressed) {
                                    scene_.setPressed(id, pressed);
                                    if (pressed) pressedName_ = paintedName(id);
                                  },
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
  sentence_ = new SpokenText(this);
  culprits_ = new SpokenText(this);
  for (const Id id : {Id::firstName, Id::secondName}) makeControl(id, [this, id] { nameClicked(id); });
  question_ = new SpokenText(this);
  makeControl(Id::cancel, [this] { view_.quitCancelled(); });
  makeControl(Id::quit, [this] { view_.quitConfirmed(); });
  banner_ = new SpokenText(this);
  makeControl(Id::link, [this] { view_.openSettingsLinkPressed(); });
  makeControl(Id::gear, [this] { view_.gearPressed(); });
  for (std::size_t i = 1; i < controls_.size(); ++i) setTabOrder(controls_[i - 1], controls_[i]);
}

// Names can change under the pointer: a click counts only when one name was painted from its beginning to its
// end, and is still the current one.
void PopoverWidget::nameClicked(Id id) {
  const std::string name = nameAt(placeOfName(id));
  if (qtText(name) == pressedName_ && paintedName(id) == pressedName_) view_.culpritNamePressed(name);
}

std::string PopoverWidget::nameAt(std::size_t index) const {
  for (const auto& segment : view_.culpritSegments()) {
    if (segment.kind != CulpritSentence::Segment::Kind::app) continue;
    if (index-- == 0) return segment.text;
  }
  return {};
}

QString PopoverWidget::paintedName(Id id) const {
  const bool isName = id == Id::firstName || id == Id::secondName;
  return isName ? scene_.paintedName(static_cast<qsizetype>(placeOfName(id))) : QString();
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
  const double ring = PopoverMetrics::ringHitRadius;
  control(Id::polish)
      .placeAt(
          QRectF(PopoverMetrics::centreX - ring, scene_.restingRingCentreY() - ring, 2.0 * ring, 2.0 * ring)
              .translated(at));
  control(Id::gear).placeAt(PopoverMetrics::gear.translated(at));

  const auto place = [&](Id id, const QRectF* shape) {
    if (shape) control(id).placeAt(shape->translated(at));
    // Otherwise Qt would move the focus to the next control when this one is hidden.
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

  const double column = (PopoverMetrics::width - PopoverMetrics::columnWidth) / 2.0;
  const auto textPlace = [&](double top, double height) {
    return QRectF(column, top, PopoverMetrics::columnWidth, height).translated(at).toAlignedRect();
  };
  sentence_->setGeometry(textPlace(words.headlineTop, 44.0));
  culprits_->setVisible(layout.culprits.has_value());
  if (const auto& culprits = layout.culprits)
    culprits_->setGeometry(textPlace(culprits->top, culprits->bottom - culprits->top));
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
  const auto text = [](SpokenText& label, const QString& words) {
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
  for (const Id id : {Id::firstName, Id::secondName}) {
    const std::string name = nameAt(placeOfName(id));
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
  control(Id::link).say(qtText(PopoverView::openSettingsTitle), qtText(view_.openSettingsHint()));
  control(Id::gear).say(qtText(PopoverView::gearLabel), qtText(PopoverView::gearHint));
}

// Moves the focus to the harmless answer when the question appears.
void PopoverWidget::askedToQuit(bool asks) {
  if (std::exchange(asksToQuit_, asks) == asks || !asks) return;
  control(Id::cancel).setFocus(usesKeyboard_ ? Qt::TabFocusReason : Qt::OtherFocusReason);
}

// A key that is held down counts once.
void PopoverWidget::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    if (event->isAutoRepeat()) return;
    if (view_.confirmingQuitName().get()) return view_.quitCancelled();
    return callbacks_.escape();
  }
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (event->isAutoRepeat()) return;
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

// A close by the user through the window manager is handled like every other one. The program's own close at
// its end is accepted, because refusing it would keep the program from ending.
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
