#include "ui/ApplicationHost.h"

#include "app/VersionText.h"
#include "ui/AboutPanel.h"
#include "ui/InfoAlert.h"

#include <QApplication>
#include <QWindow>
#include <utility>

namespace vorli::ui {

ApplicationHost::ApplicationHost(const ports::ApplicationBundle& bundle,
                                 const WindowSurroundings& surroundings)
    : bundle_(bundle), surroundings_(surroundings) {}

ApplicationHost::~ApplicationHost() {
  delete about_;
  for (const auto& alert : alerts_) delete alert;
}

void ApplicationHost::setTerminationHandler(std::function<bool()> mayTerminateNow) {
  mayTerminateNow_ = std::move(mayTerminateNow);
}

void ApplicationHost::activateIgnoringOtherApps() {
  for (auto* window : QGuiApplication::topLevelWindows()) {
    const bool isOrdinary =
        window->type() == Qt::Window || window->type() == Qt::Dialog || window->type() == Qt::Tool;
    const bool takesKeys = !(window->flags() & Qt::WindowDoesNotAcceptFocus);
    if (window->isVisible() && isOrdinary && takesKeys) surroundings_.bringToFront(*window);
  }
}

void ApplicationHost::showInfoAlert(const std::string& messageText, const std::string& informativeText) {
  const auto text = QString::fromStdString(informativeText);
  alerts_.removeIf([](const auto& alert) { return alert.isNull(); });
  for (const auto& open : alerts_) {
    if (open->informativeText() == text) return open->present();
  }
  alerts_.push_back(new InfoAlert(surroundings_, QString::fromStdString(messageText), text));
  alerts_.back()->present();
}

void ApplicationHost::openAboutPanel() {
  if (!about_) about_ = new AboutPanel(surroundings_, QString::fromStdString(versionText(bundle_)));
  about_->present();
}

void ApplicationHost::terminate() {
  if (deferred_) return;
  deferred_ = true;  // first: the reply may come before the answer
  if (mayTerminateNow_ && !mayTerminateNow_()) return;
  replyToTermination();
}

void ApplicationHost::replyToTermination() {
  if (std::exchange(deferred_, false)) QApplication::quit();
}

}  // namespace vorli::ui
