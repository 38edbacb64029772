#pragma once

#include "ports/ApplicationBundle.h"
#include "ports/ApplicationHost.h"
#include "ui/WindowSurroundings.h"

#include <QList>
#include <QPointer>
#include <functional>

namespace vorli::ui {

class AboutPanel;
class InfoAlert;

/// The process as the desktop sees it, over Qt. Its windows are made when they are asked for and go when they
/// are closed.
class ApplicationHost final : public ports::ApplicationHost {
 public:
  ApplicationHost(const ports::ApplicationBundle& bundle, const WindowSurroundings& surroundings);
  ~ApplicationHost() override;

  /// `mayTerminateNow` answers each wish to end; false defers the end until `replyToTermination`.
  void setTerminationHandler(std::function<bool()> mayTerminateNow);

  void activateIgnoringOtherApps() override;
  void showInfoAlert(const std::string& messageText, const std::string& informativeText) override;
  void openAboutPanel() override;
  void terminate() override;
  void replyToTermination() override;

 private:
  const ports::ApplicationBundle& bundle_;
  const WindowSurroundings& surroundings_;
  std::function<bool()> mayTerminateNow_;
  bool deferred_ = false;
  QPointer<AboutPanel> about_;
  QList<QPointer<InfoAlert>> alerts_;
};

}  // namespace vorli::ui
