#pragma once

#include <array>
#include <span>
#include <string_view>

namespace vorli {

/// One explanation on the card of the first steps.
struct ExplainerRow {
  /// Look of the icon: `lit` for a request or a finished step, `plain` for a further step, `warning` for
  /// trouble.
  enum class Look { lit, plain, warning };

  std::string_view icon;
  Look look = Look::lit;
  std::string_view title;
  std::string_view body;

  bool operator==(const ExplainerRow&) const = default;
};

/// Texts of one state of the helper step.
struct OnboardingStateTexts {
  std::string_view title;
  std::string_view sentence;
  std::span<const ExplainerRow> rows;
  std::string_view statusLine;  // empty when there is none
};

/// Texts of the first steps.
struct OnboardingTexts {
  OnboardingStateTexts notInstalled;
  OnboardingStateTexts notRegistered;
  OnboardingStateTexts requiresApproval;
  OnboardingStateTexts enabled;
  OnboardingStateTexts notFound;
  /// Title and sentence when nothing can ask for a password.
  std::string_view noPromptTitle;
  std::string_view noPromptSentence;

  std::string_view showApplications;
  std::string_view askAgain;
  std::string_view askAgainHint;
  std::string_view waitingHint;

  std::string_view doneSentence;

  static const OnboardingTexts macOS;
  static const OnboardingTexts linuxDesktop;

  // Texts that are the same on every system.
  static constexpr std::string_view tryAgain = "Try again";
  static constexpr std::string_view installHelper = "Install Helper";
  static constexpr std::string_view waiting = "Waiting…";
  static constexpr std::string_view waitingLabel = "Waiting for helper approval";
  static constexpr std::string_view continueTitle = "Continue";
  static constexpr std::string_view doneTitle = "You're all set";
  static constexpr std::string_view startUsing = "Start using Vorli";
};

}  // namespace vorli
