#pragma once

#include "base/Logger.h"

namespace vorli {

inline constexpr Logger helperLog{logSubsystem, "helper-client"};

}  // namespace vorli
