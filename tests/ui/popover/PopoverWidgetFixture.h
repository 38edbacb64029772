#pragma once

#include <gmock/gmock.h>
// The fixture is written for a program that has both precompiled.
#include "tests/fakes/Publish.h"
#include "tests/polish/PolishFixture.h"
#include "tests/ui/ActiveWindow.h"
#include "ui/popover/PopoverWidget.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <optional>
#include <string>
#include <vector>

namespace vorli::ui {

/// The popover's widget on a machine with two culprits, driven as the host drives it.
struct PopoverWidgetFixture : PolishFixture {
  PopoverWidgetFixture() {
    addProcess("Chrome", 3'000'000'000);
    addProcess("Figma", 2'000'000'000);
    monitor.refresh();
    widget.emplace(scheduler, *view, Compositing::present,
                   PopoverWidget::Callbacks{[this] { ++escapes; }, [] {}, [](const QRect&) {}});
  }
  ~PopoverWidgetFixture() override { widget.reset(); }

  void addProcess(const std::string& name, std::uint64_t bytes) {
    ProcessSnapshot process;
    process.id = static_cast<std::int32_t>(1000 + hogs.size());
    process.name = name;
    process.displayName = name;
    process.activationPolicy = ports::ActivationPolicy::regular;
    process.residentBytes = bytes;
    hogs.push_back(process);
  }

  /// Opens the card like the host: the view plays its opening, and the card gets the size it asks for.
  void open() {
    widget->begin();
    widget->show();
    notifications.post(VorliAnimateAppear{});
    fakes::publish(view->animatedState, RingState::critical);
    fakes::publish(view->animatedProgress, 0.91);
    fakes::publish(monitor.topMemoryHogs, hogs);
    widget->scene().setCardHeight(view->desiredSize().height);
    scheduler.advance(1.0);
    makeActive(*widget);
    QApplication::processEvents();
  }

  void close() {
    notifications.post(VorliAnimateDismiss{});
    scheduler.advance(0.3);
    widget->hide();
    widget->end();
  }

  void showState(double progress) {
    fakes::publish(view->animatedProgress, progress);
    fakes::publish(view->animatedState, ringState(progress));
    scheduler.advance(1.0);
  }

  void press(Qt::Key key) {
    QWidget* target = widget->focusWidget() ? widget->focusWidget() : &*widget;
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier), up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(target, &down);
    QApplication::sendEvent(target, &up);
    scheduler.runReady();
  }

  /// Holds a key like a keyboard: presses that repeat, then one release.
  void hold(Qt::Key key, int repeats) {
    QWidget* target = widget->focusWidget() ? widget->focusWidget() : &*widget;
    for (int i = 0; i <= repeats; ++i) {
      QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, QString(), i > 0);
      QApplication::sendEvent(target, &down);
      scheduler.runReady();
    }
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(target, &up);
  }

  PopoverControl* control(PopoverControlId id) const {
    for (auto* child : widget->findChildren<QWidget*>()) {
      if (auto* found = dynamic_cast<PopoverControl*>(child); found && found->id() == id) return found;
    }
    return nullptr;
  }

  void click(PopoverControlId id) {
    control(id)->click();
    scheduler.runReady();
  }

  /// Lists what an assistive tool finds in the window: role, name, description and value of each shown part.
  std::vector<std::string> spoken() {
    std::vector<std::string> lines;
    auto* root = QAccessible::queryAccessibleInterface(&*widget);
    for (int i = 0; i < root->childCount(); ++i) {
      auto* child = root->child(i);
      if (child->state().invisible) continue;
      QString line = child->role() == QAccessible::Button ? "button"
                     : child->role() == QAccessible::Link ? "link"
                                                          : "text";
      for (const auto kind : {QAccessible::Name, QAccessible::Description, QAccessible::Value}) {
        const QString said = child->text(kind);
        line += " | " + said;
      }
      lines.push_back(line.toStdString());
    }
    return lines;
  }

  /// Returns the place that is announced for the shown part with this name, in points from the window's top
  /// left corner; empty when there is none.
  QRect spokenPlace(const QString& name) {
    auto* root = QAccessible::queryAccessibleInterface(&*widget);
    for (int i = 0; i < root->childCount(); ++i) {
      auto* child = root->child(i);
      if (!child->state().invisible && child->text(QAccessible::Name) == name)
        return child->rect().translated(-root->rect().topLeft());
    }
    return {};
  }

  std::vector<ProcessSnapshot> hogs;
  std::optional<PopoverWidget> widget;
  int escapes = 0;
};

}  // namespace vorli::ui
