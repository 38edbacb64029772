#include "popover/PopoverTexts.h"

namespace vorli {

constexpr PopoverTexts PopoverTexts::macOS{
    .healthy = "Your Mac feels great.",
    .warming = "Your Mac is starting to fill up.",
    .critical = "Your Mac is full. Time to polish it.",
    .polishing = "Polishing your Mac…",
    .polishToolTip = "Tap to polish your Mac",
    .nothingToPolishToolTip = "Your Mac is feeling great. No polish needed right now.",
    .helperAwayToolTip =
        "Background helper isn't ready. Open Settings, then General, then Login Items to approve Vorli.",
    .nothingToPolishHint = "Your Mac doesn't need polishing right now.",
    .openSettingsHint = "Opens System Settings to Login Items so you can approve Vorli's background helper.",
};
constexpr PopoverTexts PopoverTexts::linuxDesktop{
    .healthy = "Your computer feels great.",
    .warming = "Your computer is starting to fill up.",
    .critical = "Your computer is full. Time to polish it.",
    .polishing = "Polishing your computer…",
    .polishToolTip = "Tap to polish your computer",
    .nothingToPolishToolTip = "Your computer is feeling great. No polish needed right now.",
    .helperAwayToolTip = "Background helper isn't ready. Open Vorli's settings, then About, to set it up.",
    .nothingToPolishHint = "Your computer doesn't need polishing right now.",
    .openSettingsHint = "Asks for your password so that Vorli's background helper may work.",
};

}  // namespace vorli
