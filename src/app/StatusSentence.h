#pragma once

#include <string>

namespace vorli {

/// Whether the user has been through all of the onboarding.
enum class SetupState { incomplete, finished };

/// The status item's spoken state: what its picture says, in words.
std::string statusSentence(SetupState setup, double ringProgress);

}  // namespace vorli
