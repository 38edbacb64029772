#include "polish/PolishTexts.h"

namespace vorli {

constexpr PolishTexts PolishTexts::macOS{
    .approveHelper = "A gentle tidy. Approve Vorli in Login Items for a full polish.",
    .approveHelperWords = "Approve Vorli in Login Items",
    .helperOutOfReach = "A gentle tidy. Couldn't reach the helper for a full polish.",
    .helperOutOfReachWords = "Couldn't reach the helper",
    .soundSpared = "A gentle tidy. Held off the deep polish so your audio stays smooth.",
    .polished = "Now, your Mac has room to breathe.",
};
constexpr PolishTexts PolishTexts::linuxDesktop{
    .approveHelper = "A gentle tidy. Approve Vorli's helper for a full polish.",
    .approveHelperWords = "Approve Vorli's helper",
    .helperOutOfReach = "A gentle tidy. Couldn't reach the helper for a full polish.",
    .helperOutOfReachWords = "Couldn't reach the helper",
    .soundSpared = "A gentle tidy. Held off the deep polish so your audio stays smooth.",
    .polished = "Now, your computer has room to breathe.",
};

}  // namespace vorli
