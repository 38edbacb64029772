#include "ui/kit/SpokenButton.h"

#include "ui/kit/SpokenName.h"

#include <QAccessible>

namespace vorli::ui {

void SpokenButton::say(const QString& name, const QString& hint, const QString& value) {
  setSpokenName(*this, name);
  setSpokenHint(*this, hint);
  if (value_ == value) return;
  QAccessibleTextUpdateEvent change(this, 0, value_, value);
  value_ = value;
  QAccessible::updateAccessibility(&change);
}

}  // namespace vorli::ui
