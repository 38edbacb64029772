#pragma once

#include "ports/ApplicationHost.h"

#include <functional>

namespace vorli::ui {

class ApplicationHost final : public ports::ApplicationHost {
 public:
  void setTerminationHandler(std::function<bool()> mayTerminateNow) { mayTerminate_ = std::move(mayTerminateNow); }
  void activateIgnoringOtherApps() override;
  void showInfoAlert(const std::string& messageText, const std::string& informativeText) override;
  void openAboutPanel() override;
  void terminate() override;
  void replyToTermination() override;

 private:
  std::function<bool()> mayTerminate_;
};

}  // namespace vorli::ui
