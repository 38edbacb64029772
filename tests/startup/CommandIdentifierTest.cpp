#include "startup/CommandIdentifier.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(CommandIdentifierTest, aCommandHasAnEndingOfItsOwn) {
  EXPECT_EQ(commandIdentifier("tea.sh"), "tea.sh@reboot");
  EXPECT_EQ(withoutCommandEnding("tea.sh@reboot"), "tea.sh");
}

TEST(CommandIdentifierTest, otherIdentifiersStayAsTheyAre) {
  for (const char* identifier : {"tea", "mpd.service@system", "tea@reboot.service", ""})
    EXPECT_EQ(withoutCommandEnding(identifier), identifier);
}

}  // namespace
}  // namespace vorli
