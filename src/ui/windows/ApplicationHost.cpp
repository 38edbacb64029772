#include "ui/windows/ApplicationHost.h"

#include "settings/VersionText.h"
#include "ui/windows/AboutPanel.h"
#include "ui/windows/InfoAlert.h"

#include <QApplication>
#include <QEvent>
#include <QWindow>
#include <utility>

namespace vorli::ui {

// Intercepts the event with which the end of the session, or anything else, quits a Qt program.
class ApplicationHost::QuitFilter final : public QObject {
 public:
  explicit QuitFilter(ApplicationHost& host) : host_(host) { qApp->installEventFilter(this); }

  bool eventFilter(QObject* receiver, QEvent* event) override {
    if (event->type() != QEvent::Quit || receiver != qApp || host_.isLeaving_) return false;
    event->ignore();
    host_.terminate();
    return true;
  }

 private:
  ApplicationHost& host_;
};

ApplicationHost::ApplicationHost(const ports::ApplicationBundle& bundle,
                                 const WindowSurroundings& surroundings)
    : bundle_(bundle), surroundings_(surroundings) {}

ApplicationHost::~ApplicationHost() {
  delete about_;
  for (const auto& alert : alerts_) delete alert;
}

void ApplicationHost::setTerminationHandler(std::function<bool()> mayTerminateNow) {
  mayTerminateNow_ = std::move(mayTerminateNow);
  if (!quitFilter_) quitFilter_ = std::make_unique<QuitFilter>(*this);
}

// Leaves alone what the user has minimised or put on another workspace: whoever wants that window presents
// it.
void ApplicationHost::activateIgnoringOtherApps() {
  for (auto* window : QGuiApplication::topLevelWindows()) {
    const bool isOrdinary =
        window->type() == Qt::Window || window->type() == Qt::Dialog || window->type() == Qt::Tool;
    const bool takesKeys = !(window->flags() & Qt::WindowDoesNotAcceptFocus);
    if (!window->isVisible() || !isOrdinary || !takesKeys) continue;
    const bool isMinimised = window->windowStates().testFlag(Qt::WindowMinimized);
    if (!isMinimised && surroundings_.isOnCurrentWorkspace(*window)) surroundings_.bringToFront(*window);
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
  deferred_ = true;  // set first: the reply may come before the handler returns
  if (mayTerminateNow_ && !mayTerminateNow_()) return;
  replyToTermination();
}

void ApplicationHost::replyToTermination() {
  if (!std::exchange(deferred_, false)) return;
  isLeaving_ = true;
  QApplication::quit();
}

}  // namespace vorli::ui
