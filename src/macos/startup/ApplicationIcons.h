#pragma once

#include "ports/ApplicationIcons.h"

namespace vorli::machost {

/// The icons that the system shows for applications.
class ApplicationIcons final : public ports::ApplicationIcons {
 public:
  /// Does nothing: the system's answers are always current.
  void lookAgain() override {}
  /// `application` is the path of a bundle or a program.
  std::optional<std::string> image(const std::string& application, int sidePixels) override;
};

}  // namespace vorli::machost
