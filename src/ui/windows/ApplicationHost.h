#pragma once

#include "ports/ApplicationBundle.h"
#include "ports/ApplicationHost.h"
#include "ui/kit/WindowSurroundings.h"

#include <QList>
#include <QPointer>
#include <functional>
#include <memory>

namespace vorli::ui {

class AboutPanel;
class InfoAlert;

/// The process as the desktop sees it, implemented with Qt. Its windows are created on demand and deleted
/// when they are closed.
class ApplicationHost final : public ports::ApplicationHost {
 public:
  ApplicationHost(const ports::ApplicationBundle& bundle, const WindowSurroundings& surroundings);
  ~ApplicationHost() override;

  /// `mayTerminateNow` is called for each request to terminate, also for those of the desktop or Qt; false
  /// defers it until `replyToTermination`.
  void setTerminationHandler(std::function<bool()> mayTerminateNow);

  void activateIgnoringOtherApps() override;
  void showInfoAlert(const std::string& messageText, const std::string& informativeText) override;
  void openAboutPanel() override;
  void terminate() override;
  void replyToTermination() override;

 private:
  class QuitFilter;

  const ports::ApplicationBundle& bundle_;
  const WindowSurroundings& surroundings_;
  std::function<bool()> mayTerminateNow_;
  bool deferred_ = false;
  bool isLeaving_ = false;
  std::unique_ptr<QuitFilter> quitFilter_;
  QPointer<AboutPanel> about_;
  QList<QPointer<InfoAlert>> alerts_;
};

}  // namespace vorli::ui
