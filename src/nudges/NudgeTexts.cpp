#include "nudges/NudgeTexts.h"

namespace vorli {

constexpr NudgeTexts NudgeTexts::macOS{
    .nudgeTitle = "Vorli",
    .nudgeBody = "Your Mac is feeling full. A quick polish should help.",
    .polishNow = "Polish Now",
    .helperBrokenTitle = "Vorli needs your attention",
    .helperBrokenBody =
        "The background helper isn't responding. Tap Reinstall to fix it, or Open Settings "
        "and approve Vorli under Allow in the Background.",
    .reinstall = "Reinstall",
    .openSettings = "Open Settings",
};
constexpr NudgeTexts NudgeTexts::linuxDesktop{
    .nudgeTitle = "Vorli",
    .nudgeBody = "Your computer is feeling full. A quick polish should help.",
    .polishNow = "Polish Now",
    .helperBrokenTitle = "Vorli needs your attention",
    .helperBrokenBody =
        "The background helper isn't responding. Press Reinstall to fix it, or Open Settings "
        "to see what it needs.",
    .reinstall = "Reinstall",
    .openSettings = "Open Settings",
};

}  // namespace vorli
