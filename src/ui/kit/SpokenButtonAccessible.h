#pragma once

#include "ui/kit/ReadOnlyAccessibleText.h"
#include "ui/kit/SpokenButton.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QString>
#include <QStringList>

namespace vorli::ui {

/// Describes a `SpokenButton` to assistive tools: its value as a text as well, and that it can be pressed.
class SpokenButtonAccessible : public QAccessibleWidget, public ReadOnlyAccessibleText {
 public:
  SpokenButtonAccessible(SpokenButton* button, QAccessible::Role role) : QAccessibleWidget(button, role) {}

  void* interface_cast(QAccessible::InterfaceType type) override;
  using ReadOnlyAccessibleText::text;
  QString text(QAccessible::Text kind) const override;
  QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& name) override;

 private:
  QString content() const override { return button()->spokenValue(); }
  SpokenButton* button() const { return static_cast<SpokenButton*>(object()); }
};

}  // namespace vorli::ui
