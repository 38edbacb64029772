#include "startup/BackgroundItems.h"
#include "startup/CandidateGathering.h"
#include "startup/LaunchDirectories.h"
#include "tests/fakes/CapturedLog.h"
#include "tests/fakes/InstalledApplications.h"
#include "tests/fakes/StartupFiles.h"
#include "tests/fakes/SystemStartupLists.h"
#include "tests/formats/SampleFiles.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Container = BTMFileParser::Container;
using Strings = std::vector<std::string>;

struct BackgroundItemsTest : testing::Test {
  fakes::StartupFiles files;
  fakes::InstalledApplications applications;
  fakes::SystemStartupLists lists;
  BackgroundItems items{files, applications, lists, "/home/kim"};
};

TEST_F(BackgroundItemsTest, anApplicationGivesItsIdentifierAndName) {
  applications.install("/Applications/Acme.app", "com.acme", "Acme");
  const auto candidate = items.candidateFromBundleURL("/Applications/Acme.app", false);
  EXPECT_EQ(candidate, (RawCandidate{.identifier = "com.acme",
                                     .displayNameHint = "Acme",
                                     .programPath = "/Applications/Acme.app",
                                     .plistURL = std::nullopt,
                                     .plistIsUserWritable = false,
                                     .registersAtLogin = true,
                                     .isEnabled = false,
                                     .source = StartupItem::Source::autoInstalled}));
}

TEST_F(BackgroundItemsTest, aHelperInsideOfAnApplicationIsListedAsTheApplication) {
  applications.install("/Applications/Acme.app", "com.acme", "Acme");
  const auto candidate = items.candidateFromBundleURL("/Applications/Acme.app/Contents/MacOS/helper", true);
  EXPECT_EQ(candidate->identifier, "com.acme");
  EXPECT_EQ(candidate->programPath, "/Applications/Acme.app");
  EXPECT_TRUE(candidate->isEnabled);
}

TEST_F(BackgroundItemsTest, theInnermostApplicationCountsEvenIfItDoesNotOpen) {
  applications.install("/Applications/Acme.app", "com.acme", "Acme");
  const auto candidate =
      items.candidateFromBundleURL("/Applications/Acme.app/Contents/Library/LoginItems/Helper.app", true);
  EXPECT_EQ(candidate->identifier, "Helper");
  EXPECT_EQ(candidate->displayNameHint, "Helper");
  EXPECT_EQ(candidate->programPath, "/Applications/Acme.app/Contents/Library/LoginItems/Helper.app");
}

TEST_F(BackgroundItemsTest, anythingButAnApplicationIsNamedAfterItsFile) {
  EXPECT_EQ(items.candidateFromBundleURL("/opt/acme/agent.sh", true)->identifier, "agent");
  EXPECT_EQ(items.candidateFromBundleURL("/Acme.APP", true)->identifier, "Acme");
  EXPECT_EQ(items.candidateFromBundleURL("/", true), std::nullopt);
}

TEST_F(BackgroundItemsTest, theDisplayNameComesBeforeTheName) {
  applications.bundles["/Applications/A.app"] = {std::nullopt, "Shown", "Named"};
  EXPECT_EQ(items.candidateFromBundleURL("/Applications/A.app", true)->displayNameHint, "Shown");
  applications.bundles["/Applications/A.app"] = {std::nullopt, std::nullopt, "Named"};
  EXPECT_EQ(items.candidateFromBundleURL("/Applications/A.app", true)->displayNameHint, "Named");
  EXPECT_EQ(items.candidateFromBundleURL("/Applications/A.app", true)->identifier, "A");
}

TEST_F(BackgroundItemsTest, aContainerGivesAllThatIsInIt) {
  Container first{.appURL = "/Applications/A.app",
                  .isEnabled = false,
                  .internalURLs = {"/Applications/A.app/Contents/One.app", "/opt/two"}};
  Container second{.internalURLs = {"/opt/three"}};
  Strings found;
  for (const auto& candidate : items.candidatesFromContainers({first, second}))
    found.push_back(candidate.identifier + (candidate.isEnabled ? " on" : " off"));
  EXPECT_EQ(found, (Strings{"A off", "One off", "two off", "three on"}));
}

TEST_F(BackgroundItemsTest, theStoreIsReadFromTheHomeFolder) {
  files.add(
      "/home/kim/Library/Application Support/com.apple.backgroundtaskmanagementagent/backgrounditems.btm",
      formats::sampleStore(2));
  files.add("/Applications/Example 0.app");
  files.add("/Applications/Example 1.app");
  const auto candidates = items.candidates();
  ASSERT_EQ(candidates.size(), 2u);
  EXPECT_EQ(candidates[0].identifier, "Example 0");
  EXPECT_FALSE(candidates[0].isEnabled);
  EXPECT_EQ(candidates[1].identifier, "Example 1");
  EXPECT_TRUE(candidates[1].isEnabled);
}

using SystemsContainers = std::vector<ports::BackgroundContainer>;

/// A store of a disabled application with two helpers.
struct BackgroundItemsComparisonTest : BackgroundItemsTest {
  BackgroundItemsComparisonTest() {
    files.add(store, formats::sampleStoreOfHelpers());
    for (const char* path : {"/Applications/A.app", "/opt/one", "/opt/two"}) files.add(path);
  }

  const std::string store =
      "/home/kim/Library/Application Support/com.apple.backgroundtaskmanagementagent/backgrounditems.btm";
  const ports::BackgroundContainer same{"/Applications/A.app", false, {"/opt/two", "/opt/one"}};
  fakes::CapturedLog log;
};

TEST_F(BackgroundItemsComparisonTest, anEqualReadingOfTheSystemIsNotLogged) {
  lists.containers = SystemsContainers{same};
  items.candidates();
  EXPECT_EQ(lists.readStores, Strings{store});
  EXPECT_EQ(log.messages(), Strings());
}

TEST_F(BackgroundItemsComparisonTest, aSystemWithoutAReaderIsNotLogged) {
  items.candidates();
  EXPECT_EQ(lists.readStores, Strings{store});
  EXPECT_EQ(log.messages(), Strings());
}

TEST_F(BackgroundItemsComparisonTest, aStoreThatTheSystemCannotReadIsLogged) {
  lists.containers = SystemsContainers{};
  ASSERT_EQ(items.candidates().size(), 3u);
  EXPECT_EQ(log.messages(),
            Strings{"The store of background items: Vorli alone reads 1 containers, the system alone 0"});
}

TEST_F(BackgroundItemsComparisonTest, aDifferentReadingOfTheSystemIsLoggedOnceAndChangesNoItem) {
  auto enabled = same;
  enabled.isEnabled = true;
  lists.containers = SystemsContainers{enabled, {"/Applications/Moved.app", true, {}}};
  const auto candidates = items.candidates();
  ASSERT_EQ(candidates.size(), 3u);
  EXPECT_FALSE(candidates.front().isEnabled);
  EXPECT_EQ(items.candidates(), candidates);
  EXPECT_EQ(lists.readStores, Strings{store});
  EXPECT_EQ(log.messages(),
            Strings{"The store of background items: Vorli alone reads 1 containers, the system alone 2"});
}

TEST_F(BackgroundItemsTest, anEqualLabelMergesWithItsJob) {
  files.add(
      "/home/kim/Library/Application Support/com.apple.backgroundtaskmanagementagent/backgrounditems.btm",
      formats::sampleStore(1));
  applications.install("/Applications/Example 0.app", "com.example", "Example");
  files.add("/Applications/Example 0.app");
  files.add("/home/kim/Library/LaunchAgents/a.plist",
            "<plist><dict><key>Label</key><string>com.example</string></dict></plist>");
  LaunchDirectories directories(files, "/home/kim");
  StartupSource* const sources[] = {&directories, &items};
  const auto gathered = gatherCandidates(sources);
  ASSERT_EQ(gathered.byIdentifier.size(), 1u);
  EXPECT_EQ(gathered.byIdentifier.at("com.example"),
            (RawCandidate{.identifier = "com.example",
                          .displayNameHint = "Example",
                          .programPath = "/Applications/Example 0.app",
                          .plistURL = "/home/kim/Library/LaunchAgents/a.plist",
                          .plistIsUserWritable = true,
                          .registersAtLogin = true,
                          .isEnabled = false,
                          .source = StartupItem::Source::userLinked}));
}

}  // namespace
}  // namespace vorli
