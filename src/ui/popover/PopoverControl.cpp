#include "ui/popover/PopoverControl.h"

#include "ui/FocusRing.h"
#include "ui/ReadOnlyAccessibleText.h"
#include "ui/popover/PopoverWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QRegion>

namespace vorli::ui {
namespace {

class ControlAccessible final : public QAccessibleWidget, public ReadOnlyAccessibleText {
 public:
  explicit ControlAccessible(PopoverControl* control)
      : QAccessibleWidget(
            control, control->id() == PopoverControlId::link ? QAccessible::Link : QAccessible::Button) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface && !content().isEmpty())
      return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
  }

  using ReadOnlyAccessibleText::text;
  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Value) return control()->spokenValue();
    return QAccessibleWidget::text(kind);
  }

  QStringList actionNames() const override { return {pressAction()}; }

  void doAction(const QString& name) override {
    if (name == pressAction()) control()->click();
  }

 private:
  QString content() const override { return control()->spokenValue(); }
  PopoverControl* control() const { return static_cast<PopoverControl*>(object()); }
};

// A plain window would count as a piece of one, and nobody is told of a piece that comes up.
QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
  if (auto* control = dynamic_cast<PopoverControl*>(object)) return new ControlAccessible(control);
  if (auto* window = dynamic_cast<PopoverWidget*>(object))
    return new QAccessibleWidget(window, QAccessible::Dialog);
  return nullptr;
}

}  // namespace

PopoverControl::PopoverControl(PopoverControlId id, Watcher watcher, QWidget* parent)
    : QAbstractButton(parent), id_(id), watcher_(std::move(watcher)) {
  setFocusPolicy(Qt::TabFocus);
  connect(this, &QAbstractButton::pressed, this, [this] { watcher_.pressed(true); });
  connect(this, &QAbstractButton::released, this, [this] { watcher_.pressed(false); });
}

void PopoverControl::say(const QString& name, const QString& hint, const QString& value) {
  if (accessibleName() != name) setAccessibleName(name);
  if (accessibleDescription() != hint) setAccessibleDescription(hint);
  if (value_ == value) return;
  QAccessibleTextUpdateEvent change(this, 0, value_, value);
  value_ = value;
  QAccessible::updateAccessibility(&change);
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
  if (event->type() == QEvent::Hide && isDown()) {  // no release comes to what is hidden
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

PopoverText::PopoverText(QWidget* parent) : QLabel(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setTextFormat(Qt::PlainText);  // the name of an application may look like markup
}

void installPopoverAccessibility() {
  static const bool installed = [] {
    QAccessible::installFactory(makeAccessible);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace vorli::ui
