#include "app/StatusTexts.h"

namespace vorli {

constexpr StatusTexts StatusTexts::macOS{
    .healthy = "Your Mac is feeling great. ",
    .warming = "Your Mac is warming up. ",
    .critical = "Your Mac is under heavy pressure. ",
    .restartDock = "Restart Dock",
    .restartFinder = "Restart Finder",
    .openLoginItems = "Open Login Items",
};
constexpr StatusTexts StatusTexts::linuxDesktop{
    .healthy = "Your computer is feeling great. ",
    .warming = "Your computer is warming up. ",
    .critical = "Your computer is under heavy pressure. ",
    .restartDock = "Restart Panel",
    .restartFinder = "Restart File Manager",
    .openLoginItems = "Open Startup Applications",
};

}  // namespace vorli
