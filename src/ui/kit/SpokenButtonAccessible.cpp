#include "ui/kit/SpokenButtonAccessible.h"

namespace vorli::ui {

void* SpokenButtonAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TextInterface && !content().isEmpty())
    return static_cast<QAccessibleTextInterface*>(this);
  return QAccessibleWidget::interface_cast(type);
}

QString SpokenButtonAccessible::text(QAccessible::Text kind) const {
  return kind == QAccessible::Value ? content() : QAccessibleWidget::text(kind);
}

void SpokenButtonAccessible::doAction(const QString& name) {
  if (name == pressAction()) button()->click();
}

}  // namespace vorli::ui
