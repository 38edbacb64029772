#pragma once

#include "ports/ApplicationHost.h"

#include <utility>
#include <vector>

namespace vorli::fakes {

/// Records the program's requests to the desktop.
class ApplicationHost final : public ports::ApplicationHost {
 public:
  void activateIgnoringOtherApps() override { ++activations; }
  void showInfoAlert(const std::string& messageText, const std::string& informativeText) override {
    alerts.emplace_back(messageText, informativeText);
  }
  void openAboutPanel() override { ++aboutPanels; }
  void terminate() override { ++terminations; }
  void replyToTermination() override { ++terminationReplies; }

  int activations = 0;
  int aboutPanels = 0;
  int terminations = 0;
  int terminationReplies = 0;
  std::vector<std::pair<std::string, std::string>> alerts;  // message text, informative text
};

}  // namespace vorli::fakes
