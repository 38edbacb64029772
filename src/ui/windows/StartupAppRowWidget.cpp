#include "ui/windows/StartupAppRowWidget.h"

#include "ui/kit/MixedColour.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SpokenName.h"
#include "ui/kit/SpokenRole.h"
#include "ui/windows/ApplicationPictures.h"
#include "ui/windows/LetterTile.h"
#include "ui/windows/StartupAppsLayout.h"

#include <QAccessible>
#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <QPainterPath>
#include <QPointerEvent>
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace vorli::ui {
namespace {

constexpr double badgeGap = 8.0, badgeTop = 1.0;
constexpr double rowDotSide = 6.0, rowDotGap = 7.0;
constexpr double dividerHeight = 1.0;

GlassPillButton::Role roleOf(RowVerb verb) {
  switch (verb) {
    case RowVerb::remove:
      return GlassPillButton::Role::destructive;
    case RowVerb::quit:
      return GlassPillButton::Role::quiet;
    case RowVerb::disable:
    case RowVerb::enable:
      return GlassPillButton::Role::plain;
  }
  return GlassPillButton::Role::plain;
}

double naturalWidthOf(RowVerb verb, Appearance appearance) {
  const GlassPillButton sample(qtText(verbText(verb)), roleOf(verb), appearance, nullptr);
  return sample.sizeHint().width() - 2.0 * GlassPillButton::ringMargin;
}

// "Disable" and "Enable" are equally wide, so that the buttons beside them form one column over all rows. A
// list of a thousand rows has only a handful of different buttons.
double widthOf(RowVerb verb, Appearance appearance) {
  static std::map<RowVerb, double> widths;
  const auto known = widths.find(verb);
  if (known != widths.end()) return known->second;
  double width = naturalWidthOf(verb, appearance);
  if (verb == RowVerb::disable) width = std::max(width, naturalWidthOf(RowVerb::enable, appearance));
  if (verb == RowVerb::enable) width = std::max(width, naturalWidthOf(RowVerb::disable, appearance));
  return widths[verb] = width;
}

double widthOf(const std::vector<RowButton>& buttons, Appearance appearance) {
  double width = -StartupAppsMetrics::buttonGap;
  for (const auto& button : buttons)
    width += StartupAppsMetrics::buttonGap + widthOf(button.verb, appearance);
  return width;
}

double badgesWidth(const StartupAppRow& row) {
  double width = 0.0;
  for (const auto badge : row.badges()) width += badgeGap + badgeWidth(qtText(badgeText(badge)));
  return width;
}

/// The texts of a row, broken into lines beside its buttons. Badges follow the first line of the name.
struct RowTexts {
  RowTexts(const StartupAppRow& row, const StartupItem& item, double buttonsWidth)
      : name(qtText(item.displayName), TextRole::rowTitle(),
             StartupAppRowLayout::textWidth(buttonsWidth) - badgesWidth(row)),
        description(qtText(item.description), TextRole::rowText(),
                    StartupAppRowLayout::textWidth(buttonsWidth)) {}

  StartupAppRowLayout::Texts heights() const {
    return {name.height(), description.height(), TextRole::meta().leading};
  }

  Paragraph name, description;
};

Tone toneOf(RowBadge badge) {
  switch (badge) {
    case RowBadge::leftover:
      return Tone::red;
    case RowBadge::newItem:
      return Tone::lit;
    case RowBadge::disabled:
      return Tone::plain;
  }
  return Tone::plain;
}

QColor dotColour(const StartupItem& item, const WindowPalette& palette) {
  if (!item.isEnabled) return palette.idle;
  switch (item.footprint) {
    case StartupItem::Footprint::heavy:
      return palette.red;
    case StartupItem::Footprint::medium:
      return palette.amber;
    case StartupItem::Footprint::light:
      return item.isRunning ? palette.green : palette.idle;
  }
  return palette.idle;
}

}  // namespace

StartupAppRowWidget::StartupAppRowWidget(StartupAppsView& view, ApplicationPictures& pictures,
                                         Appearance appearance, QWidget* parent)
    : FollowsPointer(parent),
      view_(view),
      pictures_(pictures),
      appearance_(appearance),
      palette_(WindowPalette::of(appearance)) {
  installSpokenRole<StartupAppRowWidget, QAccessible::ListItem>();
}

StartupAppRowWidget::~StartupAppRowWidget() = default;

double StartupAppRowWidget::heightOf(const StartupAppRow& row, const StartupItem& item,
                                     Appearance appearance) {
  const double buttonsWidth = widthOf(row.buttons(), appearance);
  const RowTexts texts(row, item, buttonsWidth);
  return StartupAppRowLayout::of(texts.heights(), buttonsWidth).height;
}

void StartupAppRowWidget::show(const StartupAppsSection& section, const StartupItem& item, Date now,
                               RowEdges edges) {
  item_ = item;
  edges_ = edges;
  const StartupAppRow row = view_.row(item_);
  origin_ = qtText(originLine(item_, now));
  setSpokenName(*this, qtText(row.accessibilityLabel(now)));
  buttonsWidth_ = widthOf(row.buttons(), appearance_);
  rowHeight_ = heightOf(row, item_, appearance_);
  updateButtons(row);
  updatePanel(section);
  updateOpacity();
  update();
  QWidget::show();
}

void StartupAppRowWidget::updateButtons(const StartupAppRow& row) {
  std::vector<RowButton> wanted = row.buttons();
  std::ranges::reverse(wanted);  // the main button is at the right
  if (wanted == shownButtons_) return;
  shownButtons_ = std::move(wanted);
  const bool hadFocus = std::ranges::any_of(buttons_, [](const auto* button) { return button->hasFocus(); });
  for (auto* button : std::exchange(buttons_, {})) button->deleteLater();
  double left = StartupAppsMetrics::width - StartupAppsMetrics::sidePadding - buttonsWidth_;
  for (const auto& each : shownButtons_) {
    auto* button = new GlassPillButton(qtText(each.title), roleOf(each.verb), appearance_, this);
    button->setEnabled(each.isActive);
    button->setToolTip(qtText(each.toolTip));
    button->say(qtText(each.accessibilityLabel), qtText(each.accessibilityHint),
                qtText(each.accessibilityValue));
    const double width = widthOf(each.verb, appearance_);
    const int ring = GlassPillButton::ringMargin;
    button->setGeometry(QRectF(left, StartupAppsMetrics::buttonTop, width, StartupAppsMetrics::buttonHeight)
                            .toAlignedRect()
                            .adjusted(-ring, -ring, ring, ring));
    connect(button, &QAbstractButton::clicked, this, [this, verb = each.verb] {
      const StartupItem item = item_;
      view_.press(item, verb);
    });
    button->show();
    buttons_.push_back(button);
    left += width + StartupAppsMetrics::buttonGap;
  }
  if (hadFocus) buttons_.back()->setFocus(Qt::TabFocusReason);
}

// Shows the question instead of the callout if there are both.
void StartupAppRowWidget::updatePanel(const StartupAppsSection& section) {
  QString key;
  std::optional<CalloutPanel::Words> words;
  auto kind = CalloutPanel::Kind::callout;
  std::function<void()> accept, refuse;
  if (auto question = view_.pendingConfirmation(item_)) {
    key = qtText(question->id);
    kind = question->actionLabel == verbText(RowVerb::enable) ? CalloutPanel::Kind::confirmation
                                                              : CalloutPanel::Kind::destructiveConfirmation;
    words = CalloutPanel::Words{qtText(question->title), qtText(question->message),
                                qtText(question->actionLabel), qtText(RowConfirmation::cancelLabel)};
    accept = question->action;
    refuse = [this] { view_.confirmationCancelled(StartupItem(item_)); };
  } else if (auto callout = view_.callout(section, item_)) {
    key = qtText(callout->heading);
    words = CalloutPanel::Words{qtText(callout->heading), qtText(callout->body),
                                qtText(callout->buttons[0].title), qtText(callout->buttons[1].title)};
    accept = callout->buttons[0].action;
    refuse = callout->buttons[1].action;
  }
  if (key == panelKey_) return placePanel();
  panelKey_ = key;
  const bool hadFocus = panel_ && panel_->isAncestorOf(window()->focusWidget());
  if (kind != CalloutPanel::Kind::callout && !hadFocus) asker_ = window()->focusWidget();
  if (panel_) closePanel(words ? Replaced::yes : Replaced::no);
  if (hadFocus && kind == CalloutPanel::Kind::callout) giveFocusBack();
  if (!words) return;
  dropClosingPanel();
  panel_ = new CalloutPanel(kind, *words, appearance_, this, accept, refuse);
  panelHeight_ = panel_->heightForWidth(static_cast<int>(StartupAppsMetrics::panelWidth));
  placePanel();
  panel_->show();
}

void StartupAppRowWidget::placePanel() {
  if (!panel_) return;
  panel_->setGeometry(
      QRectF(StartupAppsMetrics::panelLeft, rowHeight_, StartupAppsMetrics::panelWidth, panelHeight_)
          .toAlignedRect());
}

// Keeps the focus of a keyboard user at the row whose panel was answered.
void StartupAppRowWidget::giveFocusBack() {
  if (asker_ && !isAncestorOf(asker_)) return asker_->setFocus(Qt::OtherFocusReason);
  const auto asker = std::ranges::find(buttons_, asker_.data());  // the asker may have been replaced
  (asker == buttons_.end() ? buttons_.back() : *asker)->setFocus(Qt::TabFocusReason);
}

void StartupAppRowWidget::closePanel(Replaced replaced) {
  auto* panel = std::exchange(panel_, nullptr);
  dropClosingPanel();
  if (replaced == Replaced::yes) {
    panel->hide();
    return panel->deleteLater();
  }
  panel->stopAnswering();
  closing_ = panel;
}

void StartupAppRowWidget::dropClosingPanel() {
  if (!closing_) return;
  closing_->hide();
  std::exchange(closing_, nullptr)->deleteLater();
}

// Fades the contents in the later part of the movement; the row's own height clips the panel.
void StartupAppRowWidget::setPanelShown(double share) {
  constexpr double fadeFrom = 0.4;
  if (share <= 0.0) dropClosingPanel();
  auto* panel = panel_ ? panel_ : closing_;
  if (!panel) return;
  panel->setPresence(std::clamp((share - fadeFrom) / (1.0 - fadeFrom), 0.0, 1.0));
}

void StartupAppRowWidget::setPresence(double share) {
  if (std::exchange(presence_, share) != share) updateOpacity();
}

void StartupAppRowWidget::updateOpacity() {
  const double opacity = view_.row(item_).opacity() * presence_;
  if (opacity >= 1.0) return setGraphicsEffect(nullptr);
  auto* effect = dynamic_cast<QGraphicsOpacityEffect*>(graphicsEffect());
  if (!effect) {
    effect = new QGraphicsOpacityEffect(this);
    setGraphicsEffect(effect);
  }
  effect->setOpacity(opacity);
}

std::vector<QWidget*> StartupAppRowWidget::controls() const {
  std::vector<QWidget*> all(buttons_.begin(), buttons_.end());
  if (panel_) all.insert(all.end(), {&panel_->acceptButton(), &panel_->refuseButton()});
  return all;
}

void StartupAppRowWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (hover() > 0.0 && presence_ >= 1.0) paintHover(painter);
  if (!edges_.isFirst) {
    painter.fillRect(QRectF(StartupAppsMetrics::textLeft, 0.0,
                            StartupAppsMetrics::width - StartupAppsMetrics::textLeft, dividerHeight),
                     palette_.divider);
  }
  paintTexts(painter);
}

// Rounds the corners of the first and the last row like the card's.
void StartupAppRowWidget::paintHover(QPainter& painter) const {
  const QRectF row(0.0, 0.0, width(), rowHeight_);
  const bool endsCard = edges_.isLast && !panel_ && !closing_;
  QRectF plate = row;
  if (!edges_.isFirst) plate.setTop(plate.top() - cardRadius);
  if (!endsCard) plate.setBottom(plate.bottom() + cardRadius);
  painter.save();
  painter.setClipRect(row);
  painter.setPen(Qt::NoPen);
  painter.setBrush(fadedTo(palette_.wash2, hover()));
  painter.drawRoundedRect(plate, cardRadius, cardRadius);
  painter.restore();
}

void StartupAppRowWidget::paintTexts(QPainter& painter) const {
  const StartupAppRow row = view_.row(item_);
  const RowTexts texts(row, item_, buttonsWidth_);
  const auto layout = StartupAppRowLayout::of(texts.heights(), buttonsWidth_);
  paintIcon(painter, layout.icon);

  // A faint row keeps enough contrast because its texts start from the
  // strongest ink.
  const auto ink = [this](const QColor& colour) { return item_.isEnabled ? colour : palette_.ink; };
  texts.name.paint(painter, layout.name, palette_.ink);
  double left = layout.name.left() + texts.name.naturalWidth() + 1.0;
  for (const auto badge : row.badges()) {
    const QString text = qtText(badgeText(badge));
    const Tone tone = toneOf(badge);
    paintBadge(painter, {left + badgeGap, layout.name.top() + badgeTop}, text, tone,
               ink(badgeInk(tone, palette_)), palette_);
    left += badgeGap + badgeWidth(text);
  }
  texts.description.paint(painter, layout.description, ink(palette_.ink2));
  paintMeta(painter, layout.meta, ink(palette_.meta));
}

// Paints an icon in its own shape. While the icon is being loaded, nothing is painted: a letter would only
// flash up.
void StartupAppRowWidget::paintIcon(QPainter& painter, const QRectF& place) const {
  const auto path = applicationPath();
  if (!path.empty()) {
    const int pixels = qRound(place.width() * devicePixelRatioF());
    const auto& picture = pictures_.of(path, pixels);
    if (!picture.image.isNull()) return painter.drawImage(place, picture.image);
    if (picture.state == ApplicationPictures::State::underWay) return;
  }
  paintLetterTile(painter, place, qtText(item_.displayName), qtText(item_.id), appearance_);
}

std::string StartupAppRowWidget::applicationPath() const {
  return item_.appURL ? *item_.appURL : item_.plistURL.value_or("");
}

bool StartupAppRowWidget::event(QEvent* event) {
  if (event->type() == QEvent::Enter || event->type() == QEvent::HoverMove)
    isPointerOnPanel_ = static_cast<QSinglePointEvent*>(event)->position().y() >= rowHeight_;
  return FollowsPointer::event(event);
}

void StartupAppRowWidget::paintMeta(QPainter& painter, const QRectF& place, const QColor& ink) const {
  const QRectF dot(place.left(), place.center().y() - rowDotSide / 2.0, rowDotSide, rowDotSide);
  painter.setPen(Qt::NoPen);
  painter.setBrush(dotColour(item_, palette_));
  painter.drawEllipse(dot);
  const QString status = qtText(statusWord(item_));
  QRectF words = place;
  words.setLeft(dot.right() + rowDotGap);
  paintLine(painter, status, TextRole::metaStatus(), words, ink);
  if (origin_.isEmpty()) return;
  words.setLeft(words.left() + ui::textWidth(status, TextRole::metaStatus()));
  paintLine(painter, QStringLiteral(" · ") + origin_, TextRole::meta(), words, ink);
}

}  // namespace vorli::ui
