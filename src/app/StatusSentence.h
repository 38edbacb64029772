#pragma once

#include "app/StatusTexts.h"
#include "base/HostSystem.h"

#include <string>

namespace vorli {

/// Whether the user has completed the onboarding.
enum class SetupState { incomplete, finished };

/// The status item's state as read out by a screen reader: the meaning of its picture in words.
std::string statusSentence(SetupState setup, double ringProgress,
                           const StatusTexts& texts = ofThisSystem<StatusTexts>());

}  // namespace vorli
