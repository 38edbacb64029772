#pragma once

#include "flows/VorliSettingsView.h"
#include "ui/windows/SettingsPage.h"

#include <QPointer>

namespace vorli::ui {

class SettingsWindow;
class WindowSurroundings;

/// Owns the one window of the settings. It is created when it is shown and deleted when it is closed; the
/// view keeps its state.
class SettingsWindowController {
 public:
  explicit SettingsWindowController(const WindowSurroundings& surroundings) : surroundings_(surroundings) {}
  ~SettingsWindowController();
  SettingsWindowController(const SettingsWindowController&) = delete;
  SettingsWindowController& operator=(const SettingsWindowController&) = delete;

  /// Must be set before the window is shown for the first time; without it, there is no such tab.
  void setSneakyAppsPage(SneakyAppsPageFactory factory) { sneakyApps_ = std::move(factory); }

  /// Opens the window, or brings it to the front.
  void show(VorliSettingsView& view);
  /// Closes the window at once; must be called before the view is destroyed.
  void close();

 private:
  const WindowSurroundings& surroundings_;
  SneakyAppsPageFactory sneakyApps_;
  QPointer<SettingsWindow> window_;
};

}  // namespace vorli::ui
