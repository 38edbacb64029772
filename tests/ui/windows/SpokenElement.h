#pragma once

#include <QAccessible>
#include <QString>
#include <QWidget>
#include <gtest/gtest.h>
#include <ostream>

namespace vorli::ui {

/// One widget as assistive tools find it.
struct SpokenElement {
  QAccessible::Role role = QAccessible::NoRole;
  QString name, value, hint;

  bool operator==(const SpokenElement&) const = default;
};

inline void PrintTo(const SpokenElement& element, std::ostream* out) {
  *out << "role " << element.role << ", name \"" << element.name.toStdString() << "\", value \""
       << element.value.toStdString() << "\", hint \"" << element.hint.toStdString() << '"';
}

inline SpokenElement spokenElement(QWidget& widget) {
  const auto* found = QAccessible::queryAccessibleInterface(&widget);
  if (!found) {
    ADD_FAILURE() << widget.metaObject()->className() << " says nothing";
    return {};
  }
  return {found->role(), found->text(QAccessible::Name), found->text(QAccessible::Value),
          found->text(QAccessible::Description)};
}

}  // namespace vorli::ui
