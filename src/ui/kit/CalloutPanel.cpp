#include "ui/kit/CalloutPanel.h"

#include "ui/kit/GlassPillButton.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/SpokenRole.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>
#include <cmath>
#include <utility>

namespace vorli::ui {
namespace {

constexpr double calloutRadius = 12.0, calloutPadding = 14.0, calloutSidePadding = 16.0, calloutBodyGap = 3.0,
                 calloutButtonsGap = 11.0;
constexpr int betweenButtons = 8;
constexpr int calloutButtonHeight = 30;

using Role = GlassPillButton::Role;

Role acceptRole(CalloutPanel::Kind kind) {
  return kind == CalloutPanel::Kind::destructiveConfirmation ? Role::destructive : Role::primary;
}

}  // namespace

CalloutPanel::CalloutPanel(Kind kind, const Words& words, Appearance appearance, QWidget* parent,
                           const std::function<void()>& accept, const std::function<void()>& refuse)
    : QWidget(parent),
      kind_(kind),
      words_(words),
      palette_(WindowPalette::of(appearance)),
      accept_(new GlassPillButton(words.accept, acceptRole(kind), appearance, this)),
      refuse_(new GlassPillButton(words.refuse, Role::plain, appearance, this)) {
  // Assistive tools speak the name of a group when the focus moves to one of its answers.
  installSpokenRole<CalloutPanel, QAccessible::Grouping>();
  setAccessibleName(words.heading);
  setAccessibleDescription(words.body);
  accept_->say(words.accept, words.body);
  refuse_->say(words.refuse, words.body);
  connect(accept_, &QAbstractButton::clicked, this, [accept] { accept(); });
  connect(refuse_, &QAbstractButton::clicked, this, [refuse] { refuse(); });
}

void CalloutPanel::setPresence(double share) {
  if (std::exchange(presence_, share) == share) return;
  for (auto* button : {accept_, refuse_}) button->setPresence(share);
  update();
}

void CalloutPanel::stopAnswering() {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  for (auto* button : {accept_, refuse_}) {
    button->setFocusPolicy(Qt::NoFocus);
    disconnect(button, &QAbstractButton::clicked, this, nullptr);
  }
}

double CalloutPanel::textsHeight(double width) const {
  const double room = width - 2.0 * calloutSidePadding;
  return Paragraph(words_.heading, TextRole::panelHeading(), room).height() + calloutBodyGap +
         Paragraph(words_.body, TextRole::rowText(), room).height();
}

int CalloutPanel::heightForWidth(int width) const {
  return static_cast<int>(
      std::ceil(2.0 * calloutPadding + textsHeight(width) + calloutButtonsGap + calloutButtonHeight));
}

void CalloutPanel::resizeEvent(QResizeEvent*) {
  constexpr int ring = GlassPillButton::ringMargin;
  const int top = height() - static_cast<int>(calloutPadding) - calloutButtonHeight - ring;
  const QPoint first(static_cast<int>(calloutSidePadding) - ring, top);
  accept_->setGeometry(QRect(first, accept_->sizeHint()));
  const QPoint second(accept_->geometry().right() + 1 - 2 * ring + betweenButtons, top);
  refuse_->setGeometry(QRect(second, refuse_->sizeHint()));
}

void CalloutPanel::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (kind_ != Kind::callout) refuse_->setFocus(Qt::OtherFocusReason);
}

void CalloutPanel::keyPressEvent(QKeyEvent* event) {
  if (kind_ != Kind::callout && event->key() == Qt::Key_Escape) return refuse_->click();
  QWidget::keyPressEvent(event);
}

void CalloutPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(presence_);
  if (kind_ == Kind::callout)
    paintPlate(painter, rect(), calloutRadius, palette_.amberWash, palette_.amberLine);
  else
    paintPlate(painter, rect(), calloutRadius, palette_.wash2, palette_.fieldLine);
  QRectF texts =
      QRectF(rect()).adjusted(calloutSidePadding, calloutPadding, -calloutSidePadding, -calloutPadding);
  const Paragraph heading(words_.heading, TextRole::panelHeading(), texts.width());
  heading.paint(painter, texts, palette_.ink);
  texts.setTop(texts.top() + heading.height() + calloutBodyGap);
  Paragraph(words_.body, TextRole::rowText(), texts.width()).paint(painter, texts, palette_.ink2);
}

}  // namespace vorli::ui
