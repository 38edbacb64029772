#include "ui/kit/Control.h"

#include "ui/kit/FocusRing.h"
#include "ui/kit/SpokenButtonAccessible.h"

#include <QAccessible>
#include <QKeyEvent>

namespace vorli::ui {
namespace {

QAccessible::Role qtRole(Control::SpokenRole role) {
  switch (role) {
    case Control::SpokenRole::button:
      return QAccessible::Button;
    case Control::SpokenRole::link:
      return QAccessible::Link;
    case Control::SpokenRole::toggle:
      return QAccessible::CheckBox;
    case Control::SpokenRole::tab:
      return QAccessible::PageTab;
    case Control::SpokenRole::choice:
      return QAccessible::RadioButton;
  }
  return QAccessible::Button;
}

class ControlAccessible final : public SpokenButtonAccessible {
 public:
  explicit ControlAccessible(Control* control)
      : SpokenButtonAccessible(control, qtRole(control->spokenRole())) {}

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.checkable = control()->isCheckable();
    state.checked = control()->isChecked();
    state.selectable = control()->spokenRole() == Control::SpokenRole::tab;
    state.selected = state.selectable && control()->isChecked();
    return state;
  }

  using SpokenButtonAccessible::text;
  QString text(QAccessible::Text kind) const override {
    const QString said = SpokenButtonAccessible::text(kind);
    return kind == QAccessible::Name && said.isEmpty() ? control()->text() : said;
  }

  QStringList actionNames() const override {
    const bool isToggle = control()->spokenRole() == Control::SpokenRole::toggle;
    return {isToggle ? toggleAction() : pressAction()};
  }

  void doAction(const QString& name) override {
    SpokenButtonAccessible::doAction(name == toggleAction() ? pressAction() : name);
  }

 private:
  Control* control() const { return static_cast<Control*>(object()); }
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
  if (auto* control = dynamic_cast<Control*>(object)) return new ControlAccessible(control);
  return nullptr;
}

void installAccessibility() {
  static const bool installed = [] {
    QAccessible::installFactory(makeAccessible);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace

Control::Control(SpokenRole role, Appearance appearance, QWidget* parent)
    : FollowsPointer(parent), role_(role), appearance_(appearance), palette_(WindowPalette::of(appearance)) {
  installAccessibility();
  setFocusPolicy(Qt::TabFocus);
  connect(this, &QAbstractButton::toggled, this, [this] {
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
  });
}

void Control::focusInEvent(QFocusEvent* event) {
  showsFocus_ = cameByKeyboard(*event);
  FollowsPointer::focusInEvent(event);
}

void Control::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
  FollowsPointer::keyPressEvent(event);
}

}  // namespace vorli::ui
