#include "macos/daemon/ClientRequirement.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Signature.h"

#include <gtest/gtest.h>

namespace vorli::machost {
namespace {

using macfake::signature;

TEST(ClientRequirementTest, theRequirementNamesTheApplicationAndTheDaemonsTeam) {
  signature().team = macfake::string("A1B2C3D4E5");
  EXPECT_EQ(clientRequirement(), "anchor apple generic and identifier \"com.kv.vorli\" and certificate "
                                 "leaf[subject.OU] = \"A1B2C3D4E5\"");
  EXPECT_EQ(signature().askedFlags, 2U);
}

TEST(ClientRequirementTest, withoutATeamThereIsNoRequirement) {
  EXPECT_FALSE(clientRequirement());
  signature().team = @"";
  EXPECT_FALSE(clientRequirement());
  signature().team = @7;
  EXPECT_FALSE(clientRequirement());
}

TEST(ClientRequirementTest, aTeamThatWouldChangeTheRequirementIsRefused) {
  for (NSString* team in @[ @"A\" or true", @"A B", @"A-B", @"A[0]", macfake::string("A\xC3\x84") ]) {
    signature().team = team;
    EXPECT_FALSE(clientRequirement()) << team.UTF8String;
  }
}

TEST(ClientRequirementTest, anUnreadableSignatureGivesNoRequirement) {
  signature().team = @"A1B2C3D4E5";
  signature().informationStatus = -67062;
  EXPECT_FALSE(clientRequirement());
  signature().informationStatus = errSecSuccess;
  signature().selfStatus = -67061;
  EXPECT_FALSE(clientRequirement());
}

}  // namespace
}  // namespace vorli::machost
