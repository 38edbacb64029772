#pragma once

#include <QAccessible>
#include <QAccessibleWidget>
#include <QString>

namespace vorli::ui {

/// Gives all widgets of a class, which Qt does not know, their role for assistive tools. Call it in the
/// constructor of the class.
template <typename Widget, QAccessible::Role role>
void installSpokenRole() {
  static const bool installed = [] {
    QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
      auto* widget = dynamic_cast<Widget*>(object);
      return widget ? new QAccessibleWidget(widget, role) : nullptr;
    });
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace vorli::ui
