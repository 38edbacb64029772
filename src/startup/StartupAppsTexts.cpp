#include "startup/StartupAppsTexts.h"

namespace vorli {

constexpr StartupAppsTexts StartupAppsTexts::macOS{
    .looking = "Looking for apps running on your Mac…",
    .nothing = "Nothing unusual is running in the background. Your Mac is in good shape.",
    .hiddenItems = " apps that macOS runs for itself. They're safe and you shouldn't turn them off.",
    .managedToolTip = "Managed by macOS. Click to open System Settings.",
    .managedHint = "Opens System Settings, where you can turn this off.",
    .isApprovedElsewhere = true,
    .notApproved = "Approve Vorli under Allow in the Background to remove ",
    .notApprovedSpoken = ". System Settings is now open.",
    .approve = "Open Settings",
    .approveLabel = "Open Login Items in System Settings",
    .declinedSpoken = {},
};
constexpr StartupAppsTexts StartupAppsTexts::linuxDesktop{
    .looking = "Looking for apps running on your computer…",
    .nothing = "Nothing unusual is running in the background. Your computer is in good shape.",
    .hiddenItems = " apps that your system runs for itself. They're safe and you shouldn't turn them off.",
    .managedToolTip = "Managed by your system. Click to open its startup settings.",
    .managedHint = "Opens your system's startup settings, where you can turn this off.",
    .isApprovedElsewhere = false,
    .notApproved = "Your password is needed to change ",
    .notApprovedSpoken = ". The password window is now open.",
    .approve = "Ask again",
    .approveLabel = "Ask for the password again",
    .declinedSpoken = ". Press Ask again to enter it.",
};

}  // namespace vorli
