#include "startup/ItemNames.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

TEST(ItemNamesTest, piecesLeaveOutEmptyOnes) {
  EXPECT_EQ(identifierPieces("com..acme."), (std::vector<std::string_view>{"com", "acme"}));
  EXPECT_TRUE(identifierPieces("").empty());
  EXPECT_TRUE(identifierPieces("...").empty());
}

TEST(ItemNamesTest, makesANameOfTheLastTwoPieces) {
  const std::pair<const char*, const char*> rows[] = {
      {"com.acme.cloud-agent", "Acme Cloud Agent"},
      {"com.acme.acme", "Acme"},
      {"com.acme.ACME", "Acme"},
      {"backupd", "Backupd"},
      {"acme..agent", "Acme Agent"},
      {"com.acme-tools.agent", "Acme-Tools Agent"},
      {"com.acme.LaunchAtLoginHelper", "Acme Launchatloginhelper"},
      {"com.1password.agent", "1Password Agent"},
      {"", ""},
      {"..", ".."},
  };
  for (const auto& [identifier, name] : rows) EXPECT_EQ(prettyName(identifier), name) << identifier;
}

struct InstallerNameTest : testing::Test {
  RawCandidate candidate;
  std::optional<Resolved> resolved;
  std::optional<std::string> name() const { return installerName(candidate, resolved); }
};

TEST_F(InstallerNameTest, theUsersOwnIsYou) {
  candidate.source = StartupItem::Source::userLinked;
  resolved = Resolved{"/Applications/Acme.app", "com.acme", "Acme"};
  EXPECT_EQ(name(), "you");
}

TEST_F(InstallerNameTest, anApplicationGivesItsName) {
  candidate.identifier = "com.other.agent";
  resolved = Resolved{"/Applications/Acme.app", "com.acme", "Acme"};
  EXPECT_EQ(name(), "Acme");
  resolved->displayName = "";
  EXPECT_EQ(name(), "Other");
}

TEST_F(InstallerNameTest, thePathGivesTheOutermostBundle) {
  candidate.identifier = "com.other.agent";
  candidate.programPath = "/Applications/Acme.APP/Contents/Helper.app/Contents/MacOS/helper";
  EXPECT_EQ(name(), "Acme");
  candidate.programPath = "Acme.app/x";
  EXPECT_EQ(name(), "Acme");
  candidate.programPath = "/.app/x";
  EXPECT_EQ(name(), "Other");
  candidate.programPath = "/Applications/Acme.app";  // nothing follows
  EXPECT_EQ(name(), "Other");
}

TEST_F(InstallerNameTest, theIdentifierGivesItsSecondPiece) {
  candidate.identifier = "com..ACME.agent";
  EXPECT_EQ(name(), "Acme");
  candidate.identifier = "acme";
  EXPECT_EQ(name(), std::nullopt);
}

TEST_F(InstallerNameTest, theTypeOfAUnitIsNobodysName) {
  candidate.identifier = "acme.service";
  EXPECT_EQ(installerName(candidate, resolved, HostSystem::linuxDesktop), std::nullopt);
  EXPECT_EQ(installerName(candidate, resolved, HostSystem::macOS), "Service");
  candidate.identifier = "org.acme.sync.service@system";
  EXPECT_EQ(installerName(candidate, resolved, HostSystem::linuxDesktop), "Acme");
}

}  // namespace
}  // namespace vorli
