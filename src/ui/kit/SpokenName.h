#pragma once

#include <QString>
#include <QWidget>

namespace vorli::ui {

// Qt reports a change to assistive tools each time a text is set, even to the same one, and a screen reader
// may say it again.

/// Names the widget for assistive tools.
inline void setSpokenName(QWidget& widget, const QString& name) {
  if (widget.accessibleName() != name) widget.setAccessibleName(name);
}

/// Sets what assistive tools say of the widget beside its name.
inline void setSpokenHint(QWidget& widget, const QString& hint) {
  if (widget.accessibleDescription() != hint) widget.setAccessibleDescription(hint);
}

}  // namespace vorli::ui
