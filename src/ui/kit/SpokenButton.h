#pragma once

#include <QAbstractButton>
#include <QString>

namespace vorli::ui {

/// A button with a name, a hint and a value for assistive tools.
class SpokenButton : public QAbstractButton {
 public:
  using QAbstractButton::QAbstractButton;

  /// Sets the texts for assistive tools: name, action and, if there is one, value of the control.
  void say(const QString& name, const QString& hint = {}, const QString& value = {});
  const QString& spokenValue() const { return value_; }

 private:
  QString value_;
};

}  // namespace vorli::ui
