#include "flows/SettingsTexts.h"

namespace vorli {

constexpr SettingsTexts SettingsTexts::macOS{
    .autoPolish = "Polish your Mac when memory runs tight.",
    .gentleNudges = "A quiet hint when your Mac is full.",
    .quietTitle = "Stay quiet during Focus",
    .quiet = "Silent while a Focus is active.",
    .edgeGlow = "A warm glow once your Mac fills up.",
    .hiddenAppsUnknown = {},
    .dialPanelTitle = {},
    .dialPanel = {},
    .hotkeyDeclined = {},
    .requiresApproval = "Approve Vorli in System Settings → Login Items.",
    .notFound = "Helper bundle missing. Try Reinstall.",
};
constexpr SettingsTexts SettingsTexts::linuxDesktop{
    .autoPolish = "Polish your computer when memory runs tight.",
    .gentleNudges = "A quiet hint when your computer is full.",
    .quietTitle = "Stay quiet with Do Not Disturb",
    .quiet = "Silent while notifications are off.",
    .edgeGlow = "A warm glow once your computer fills up.",
    .hiddenAppsUnknown = "This desktop doesn't tell Vorli which windows are hidden.",
    .dialPanelTitle = "Dial on a light or dark panel",
    .dialPanel = "Auto takes the panel's own colours.",
    .hotkeyDeclined = "Your desktop didn't allow this one. Press to record another.",
    .requiresApproval = "Approve Vorli's helper with your password.",
    .notFound = "Helper missing. Try Reinstall.",
};

}  // namespace vorli
