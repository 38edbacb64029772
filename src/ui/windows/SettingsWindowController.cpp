#include "ui/windows/SettingsWindowController.h"

#include "ui/windows/SettingsWindow.h"

namespace vorli::ui {

SettingsWindowController::~SettingsWindowController() {
  close();
}

void SettingsWindowController::close() {
  delete window_;
}

void SettingsWindowController::show(VorliSettingsView& view) {
  if (!window_ || !window_->isVisible()) {
    delete window_;
    window_ = new SettingsWindow(surroundings_, view, sneakyApps_);
  }
  window_->present();
}

}  // namespace vorli::ui
