#include "flows/OnboardingTexts.h"

namespace vorli {

namespace {

using Look = ExplainerRow::Look;

constexpr std::string_view notInstalledLine = "Helper not installed yet.";
constexpr std::string_view waitingLine = "Waiting for approval…";
constexpr std::string_view readyLine = "Helper is set up and ready.";

constexpr std::array enabledRows{
    ExplainerRow{"checkmark.seal", Look::lit, "Background helper installed",
                 "Vorli can now free memory and flush caches when you press Polish."}};
constexpr OnboardingStateTexts enabledTexts{"All set up", "Helper is approved.", enabledRows, readyLine};

constexpr ExplainerRow comeBackRow{
    "arrow.right", Look::plain, "Then come back here",
    "This window catches up automatically. You don't need to do anything else in Vorli."};

constexpr std::array macOSNotInstalledRows{
    ExplainerRow{"folder", Look::warning, "Move Vorli to Applications",
                 "macOS only lets apps living in /Applications run a background helper. This is a security "
                 "guarantee, not a Vorli rule."}};
constexpr std::array macOSNotRegisteredRows{
    ExplainerRow{"lock.shield", Look::lit, "One small permission",
                 "macOS will ask you to approve a small background helper. It only runs when Vorli asks, and "
                 "uninstalls when you move Vorli to the Trash."}};
constexpr std::array macOSApprovalRows{
    ExplainerRow{"gearshape", Look::lit, "In System Settings",
                 "Open General → Login Items & Extensions. Scroll to \"Allow in the Background\" and turn "
                 "Vorli on."},
    comeBackRow};
constexpr std::array macOSNotFoundRows{ExplainerRow{
    "box.missing", Look::warning, "Helper bundle missing",
    "macOS couldn't find the helper inside the Vorli app bundle. This usually means the DMG copy "
    "was interrupted or the app got moved while open."}};

constexpr std::array linuxNotInstalledRows{
    ExplainerRow{"folder", Look::warning, "Install Vorli",
                 "Your system only lets installed programs run a background helper. This is a security "
                 "guarantee, not a Vorli rule."}};
constexpr std::array linuxNotRegisteredRows{
    ExplainerRow{"lock.shield", Look::lit, "One small permission",
                 "Your system will ask for your password to set up a small background helper. It only runs "
                 "when Vorli asks, and goes when you remove Vorli."}};
constexpr std::array linuxApprovalRows{
    ExplainerRow{"gearshape", Look::lit, "In the password window",
                 "Enter your password, or an administrator's. Nothing else is changed."},
    comeBackRow};
constexpr std::array linuxNotFoundRows{
    ExplainerRow{"box.missing", Look::warning, "Helper missing",
                 "Vorli's helper isn't where it was installed. This usually means that an installation was "
                 "interrupted, or files were moved."}};

}  // namespace

constexpr OnboardingTexts OnboardingTexts::macOS{
    .notInstalled = {"Almost there",
                     "Vorli needs to live in your Applications folder before it can install the helper.",
                     macOSNotInstalledRows,
                     {}},
    .notRegistered = {"Welcome to Vorli",
                      "Vorli polishes your Mac when things slow down, frees memory and flushes caches in "
                      "seconds to make your Mac feel new again.",
                      macOSNotRegisteredRows, notInstalledLine},
    .requiresApproval = {"Waiting for approval",
                         "System Settings just opened. Toggle Vorli on, then come back.", macOSApprovalRows,
                         waitingLine},
    .enabled = enabledTexts,
    .notFound = {"Almost there",
                 "macOS couldn't find the helper inside the app bundle.",
                 macOSNotFoundRows,
                 {}},
    .noPromptTitle = {},
    .noPromptSentence = {},
    .showApplications = "Open Applications",
    .askAgain = "Open Settings again",
    .askAgainHint = "Reopens the System Settings Login Items pane if you closed it",
    .waitingHint = "Toggle Vorli on in System Settings to continue",
    .doneSentence = "When your Mac feels tight, click the Vorli icon up top and press Polish.",
};
constexpr OnboardingTexts OnboardingTexts::linuxDesktop{
    .notInstalled = {"Almost there",
                     "Vorli needs to be installed before it can set up its helper.",
                     linuxNotInstalledRows,
                     {}},
    .notRegistered =
        {"Welcome to Vorli",
         "Vorli polishes your computer when things slow down, frees memory and flushes caches in "
         "seconds to make it feel new again.",
         linuxNotRegisteredRows, notInstalledLine},
    .requiresApproval = {"Waiting for approval",
                         "Your system is asking for your password. Enter it to let Vorli's helper work.",
                         linuxApprovalRows, waitingLine},
    .enabled = enabledTexts,
    .notFound = {"Almost there", "The helper that belongs to Vorli is missing.", linuxNotFoundRows, {}},
    .noPromptTitle = "Almost there",
    .noPromptSentence =
        "No password window could be opened. Start your desktop's authentication agent, or "
        "ask an administrator.",
    .showApplications = "Show how",
    .askAgain = "Ask again",
    .askAgainHint = "Opens the password window again if you closed it",
    .waitingHint = "Enter your password to continue",
    .doneSentence = "When your computer feels tight, click the Vorli icon in the panel and press Polish.",
};

}  // namespace vorli
