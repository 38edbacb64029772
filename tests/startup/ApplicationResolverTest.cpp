#include "startup/ApplicationResolver.h"
#include "tests/fakes/InstalledApplications.h"

#include <gtest/gtest.h>

namespace vorli {
namespace {

struct ApplicationResolverTest : testing::Test {
  fakes::InstalledApplications applications;
  RawCandidate candidate;

  std::optional<Resolved> resolve() { return ApplicationResolver(applications).resolveApp(candidate); }
  void allowBundle(const std::string& path, std::optional<std::string> identifier) {
    applications.bundles[path].bundleIdentifier = std::move(identifier);
  }
};

TEST_F(ApplicationResolverTest, theInnermostApplicationAroundTheProgramComesFirst) {
  candidate = {.identifier = "com.acme.agent",
               .programPath = "/Applications/Acme.app/Contents/Library/Helper.app/Contents/MacOS/helper"};
  applications.install("/Applications/Acme.app", "com.acme", "Acme");
  applications.install("/Applications/Acme.app/Contents/Library/Helper.app", "com.acme.helper", "Helper");
  applications.install("/Applications/Other.app", "com.acme.agent", "Other");
  EXPECT_EQ(resolve(),
            (Resolved{"/Applications/Acme.app/Contents/Library/Helper.app", "com.acme.helper", "Helper"}));
}

TEST_F(ApplicationResolverTest, anApplicationThatDoesNotOpenLeadsFurtherOut) {
  candidate = {.identifier = "x", .programPath = "/Applications/Acme.app/Contents/Helper.app/helper"};
  applications.install("/Applications/Acme.app", "com.acme", "Acme");
  EXPECT_EQ(resolve()->appURL, "/Applications/Acme.app");
}

TEST_F(ApplicationResolverTest, anApplicationAtTheRootIsFound) {
  candidate = {.identifier = "x", .programPath = "/Acme.app"};
  allowBundle("/Acme.app", "com.acme");
  EXPECT_EQ(resolve(), (Resolved{"/Acme.app", "com.acme", "Acme"}));
}

TEST_F(ApplicationResolverTest, otherEndingsAndRelativePathsAreNoApplication) {
  allowBundle("/Applications/Acme.APP", "com.acme");
  allowBundle("Acme.app", "com.acme");
  for (const char* path : {"/Applications/Acme.APP/x", "Acme.app/x", ""}) {
    candidate = {.identifier = "x", .programPath = path};
    EXPECT_EQ(resolve(), std::nullopt) << path;
  }
}

TEST_F(ApplicationResolverTest, theIdentifierIsAskedNextAndThenItsBeginningsFromTheLongest) {
  candidate.identifier = "com.acme.cloud.agent";
  applications.install("/Applications/Acme.app", "com.acme", "Acme");
  EXPECT_EQ(resolve()->appURL, "/Applications/Acme.app");
  EXPECT_EQ(applications.lookups,
            (std::vector<std::string>{"com.acme.cloud.agent", "com.acme.cloud", "com.acme"}));
}

TEST_F(ApplicationResolverTest, aSinglePieceIsNeverAsked) {
  candidate.identifier = "com.acme";
  applications.install("/Applications/Com.app", "com", "Com");
  EXPECT_EQ(resolve(), std::nullopt);
  EXPECT_EQ(applications.lookups, std::vector<std::string>{"com.acme"});
}

TEST_F(ApplicationResolverTest, emptyPiecesDoNotCount) {
  candidate.identifier = "com..acme..agent";
  applications.install("/Applications/Acme.app", "com.acme.agent", "Acme");
  EXPECT_EQ(resolve()->bundleID, "com.acme.agent");
}

TEST_F(ApplicationResolverTest, anApplicationThatDoesNotOpenIsSkipped) {
  candidate.identifier = "com.acme.agent";
  applications.urls["com.acme.agent"] = "/Applications/Broken.app";
  applications.install("/Applications/Acme.app", "com.acme", "Acme");
  EXPECT_EQ(resolve()->appURL, "/Applications/Acme.app");
}

TEST_F(ApplicationResolverTest, aBundleWithoutTextsIsNamedAfterItsFile) {
  candidate = {.identifier = "x", .programPath = "/Applications/Acme Cloud.app"};
  allowBundle("/Applications/Acme Cloud.app", std::nullopt);
  EXPECT_EQ(resolve(), (Resolved{"/Applications/Acme Cloud.app", "Acme Cloud", "Acme Cloud"}));
}

TEST_F(ApplicationResolverTest, theDisplayNameComesBeforeTheName) {
  candidate = {.identifier = "x", .programPath = "/Applications/A.app"};
  applications.bundles["/Applications/A.app"] = {"com.acme", "Shown", "Named"};
  EXPECT_EQ(resolve()->displayName, "Shown");
}

}  // namespace
}  // namespace vorli
