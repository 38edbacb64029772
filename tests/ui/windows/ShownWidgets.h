#pragma once

#include <QList>
#include <QWidget>

namespace vorli::ui {

/// The widgets of a class below `parent` that are not hidden, in the order of their creation. Qt's own search
/// confuses a class without metadata with its base class.
template <typename Widget>
QList<Widget*> shownWidgets(const QWidget& parent) {
  QList<Widget*> found;
  for (auto* each : parent.findChildren<QWidget*>()) {
    auto* widget = dynamic_cast<Widget*>(each);
    if (widget && !widget->isHidden()) found.push_back(widget);
  }
  return found;
}

}  // namespace vorli::ui
