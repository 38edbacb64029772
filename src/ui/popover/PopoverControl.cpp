#include "ui/popover/PopoverControl.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/SpokenButtonAccessible.h"
#include "ui/popover/PopoverWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QRegion>

namespace vorli::ui {
namespace {

// Makes the popover a dialog: a plain window would count as part of one, whose appearance is not announced.
QAccessibleInterface* makeAccessiblePart(const QString&, QObject* object) {
  if (auto* control = dynamic_cast<PopoverControl*>(object)) {
    const bool isLink = control->id() == PopoverControlId::link;
    return new SpokenButtonAccessible(control, isLink ? QAccessible::Link : QAccessible::Button);
  }
  if (auto* window = dynamic_cast<PopoverWidget*>(object))
    return new QAccessibleWidget(window, QAccessible::Dialog);
  return nullptr;
}

}  // namespace

PopoverControl::PopoverControl(PopoverControlId id, Watcher watcher, QWidget* parent)
    : SpokenButton(parent), id_(id), watcher_(std::move(watcher)) {
  setFocusPolicy(Qt::TabFocus);
  connect(this, &QAbstractButton::pressed, this, [this] { watcher_.pressed(true); });
  connect(this, &QAbstractButton::released, this, [this] { watcher_.pressed(false); });
}

void PopoverControl::setRound() {
  isRound_ = true;
}

void PopoverControl::placeAt(const QRectF& place) {
  const QRect rectangle = place.toAlignedRect();
  if (geometry() == rectangle) return;
  setGeometry(rectangle);
  if (isRound_) setMask(QRegion(rect(), QRegion::Ellipse));
}

bool PopoverControl::event(QEvent* event) {
  if (event->type() == QEvent::Enter) watcher_.hovered(true);
  if (event->type() == QEvent::Leave || event->type() == QEvent::Hide) watcher_.hovered(false);
  if (event->type() == QEvent::Hide && isDown()) {  // a hidden control gets no release
    setDown(false);
    watcher_.pressed(false);
  }
  return QAbstractButton::event(event);
}

void PopoverControl::focusInEvent(QFocusEvent* event) {
  QAbstractButton::focusInEvent(event);
  if (cameByKeyboard(*event)) showFocus();
}

void PopoverControl::focusOutEvent(QFocusEvent* event) {
  QAbstractButton::focusOutEvent(event);
  showsFocus_ = false;
  watcher_.focusShown(false);
}

void PopoverControl::showFocus() {
  showsFocus_ = true;
  watcher_.focusShown(true);
}

void installPopoverAccessibility() {
  static const bool installed = [] {
    QAccessible::installFactory(makeAccessiblePart);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace vorli::ui
