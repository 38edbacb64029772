#pragma once

#include "ui/kit/MovingValue.h"

#include <QEvent>
#include <QPointer>
#include <QWidget>

namespace vorli::ui {

/// A widget whose look fades in while the pointer is on it, and out again.
template <typename Widget>
class FollowsPointer : public Widget {
 public:
  explicit FollowsPointer(QWidget* parent) : Widget(parent) { this->setAttribute(Qt::WA_Hover); }

 protected:
  virtual bool isHovered() const { return this->isEnabled() && this->underMouse(); }
  /// How far the look of the hovered widget has faded in.
  double hover() const { return hover_.shown(); }

  bool event(QEvent* event) override {
    const QPointer<QWidget> self(this);  // a press may destroy the widget, as a deferred deletion does
    const auto type = event->type();
    const bool handled = Widget::event(event);
    if (self) follow(type);
    return handled;
  }

 private:
  void follow(QEvent::Type type) {
    constexpr double inSeconds = 0.10, outSeconds = 0.18;
    switch (type) {
      case QEvent::Enter:
      case QEvent::Leave:
      case QEvent::HoverMove:
      case QEvent::EnabledChange:
        return hover_.fadeTo(isHovered() ? 1.0 : 0.0, isHovered() ? inSeconds : outSeconds);
      case QEvent::Show:
      case QEvent::Hide:
        return hover_.jumpTo(isHovered() ? 1.0 : 0.0);
      default:
        return;
    }
  }

  MovingValue hover_{*this, 0.0};
};

}  // namespace vorli::ui
