#include "helper/HelperTexts.h"

namespace vorli {

constexpr HelperTexts HelperTexts::macOS{
    .requiresApproval = "Awaiting approval in System Settings",
    .needsInstallation =
        "Vorli needs to live in your Applications folder. Drag Vorli there from the DMG, then reopen.",
};
constexpr HelperTexts HelperTexts::linuxDesktop{
    .requiresApproval = "Awaiting your approval",
    .needsInstallation =
        "Vorli needs to be installed before it can set up its helper. Install its package or run its "
        "installer, then reopen.",
};

}  // namespace vorli
