#include "startup/CandidateGathering.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace vorli {
namespace {

using Source = StartupItem::Source;

RawCandidate candidate(std::string identifier) {
  RawCandidate made;
  made.identifier = std::move(identifier);
  return made;
}

struct ListedSource final : StartupSource {
  explicit ListedSource(std::vector<RawCandidate> listed) : listed(std::move(listed)) {}
  std::vector<RawCandidate> candidates() override { return listed; }
  std::vector<RawCandidate> listed;
};

struct NumberedSource final : StartupSource {
  NumberedSource(int number, std::vector<int>& readings) : number(number), readings(readings) {}
  std::vector<RawCandidate> candidates() override {
    readings.push_back(number);
    return {};
  }
  const int number;
  std::vector<int>& readings;
};

GatheredCandidates gathered(ListedSource first, ListedSource second = ListedSource({})) {
  StartupSource* const sources[] = {&first, &second};
  return gatherCandidates(sources);
}

TEST(CandidateGatheringTest, theFirstOfAnIdentifierIsKeptUnchanged) {
  const auto incoming = candidate("com.acme.agent");
  EXPECT_EQ(mergeCandidate(std::nullopt, incoming), incoming);
}

TEST(CandidateGatheringTest, textsOfTheEarlierSourceWin) {
  auto existing = candidate("com.acme.agent");
  auto incoming = candidate("com.acme.other");
  incoming.displayNameHint = "Acme";
  incoming.programPath = "/Applications/Acme.app";
  incoming.plistURL = "/Library/LaunchAgents/acme.plist";
  auto merged = mergeCandidate(existing, incoming);
  EXPECT_EQ(merged.identifier, "com.acme.agent");
  EXPECT_EQ(merged.displayNameHint, "Acme");
  EXPECT_EQ(merged.programPath, "/Applications/Acme.app");
  EXPECT_EQ(merged.plistURL, "/Library/LaunchAgents/acme.plist");

  existing.displayNameHint = "First";
  existing.programPath = "";  // an empty text counts as a text
  existing.plistURL = "/first.plist";
  merged = mergeCandidate(existing, incoming);
  EXPECT_EQ(merged.displayNameHint, "First");
  EXPECT_EQ(merged.programPath, "");
  EXPECT_EQ(merged.plistURL, "/first.plist");
}

TEST(CandidateGatheringTest, aMergedItemHasTheFlagsOfEitherAndIsEnabledIfBothAre) {
  for (const bool first : {false, true}) {
    for (const bool second : {false, true}) {
      auto existing = candidate("a");
      auto incoming = candidate("a");
      existing.plistIsUserWritable = existing.registersAtLogin = existing.isEnabled = first;
      incoming.plistIsUserWritable = incoming.registersAtLogin = incoming.isEnabled = second;
      existing.source = first ? Source::userLinked : Source::autoInstalled;
      incoming.source = second ? Source::userLinked : Source::autoInstalled;
      const auto merged = mergeCandidate(existing, incoming);
      EXPECT_EQ(merged.plistIsUserWritable, first || second);
      EXPECT_EQ(merged.registersAtLogin, first || second);
      EXPECT_EQ(merged.isEnabled, first && second);
      EXPECT_EQ(merged.source, first || second ? Source::userLinked : Source::autoInstalled);
    }
  }
}

TEST(CandidateGatheringTest, onlyEqualIdentifiersAreMerged) {
  const auto result = gathered(ListedSource({candidate("com.acme.a"), candidate("com.Acme.a")}),
                               ListedSource({candidate("com.acme.a")}));
  EXPECT_EQ(result.byIdentifier.size(), 2u);
  EXPECT_TRUE(result.byIdentifier.contains("com.acme.a"));
  EXPECT_TRUE(result.byIdentifier.contains("com.Acme.a"));
  EXPECT_EQ(result.hidden, 0);
}

TEST(CandidateGatheringTest, earlierSourcesComeFirst) {
  auto plist = candidate("com.acme.a");
  plist.programPath = "/usr/local/bin/acme";
  auto stored = candidate("com.acme.a");
  stored.programPath = "/Applications/Acme.app";
  const auto result = gathered(ListedSource({plist}), ListedSource({stored}));
  EXPECT_EQ(result.byIdentifier.at("com.acme.a").programPath, "/usr/local/bin/acme");
}

TEST(CandidateGatheringTest, theLastSourceIsReadFirst) {
  std::vector<int> readings;
  NumberedSource folders(1, readings), store(2, readings);
  StartupSource* const sources[] = {&folders, &store};
  gatherCandidates(sources);
  EXPECT_EQ(readings, (std::vector<int>{2, 1}));
}

TEST(CandidateGatheringTest, itemsOfTheSystemAreCountedAndHidden) {
  const std::pair<const char*, bool> rows[] = {
      {"com.apple.dock", true},      {"com.apple.", true},        {"COM.Apple.Dock", true},
      {"com.apple", false},          {"com.applesauce.a", false}, {"com.amazon.webservices.a", true},
      {"com.amazon.music", false},   {"org.ssh-agent", true},     {"org.ssh-agents", true},
      {"com.kv.vorli.helper", true}, {"com.kv.vorlix", true},     {"com.kv.other", false},
  };
  for (const auto& [identifier, isHidden] : rows) {
    const auto result = gathered(ListedSource({candidate(identifier)}));
    EXPECT_EQ(result.hidden, isHidden ? 1 : 0) << identifier;
    EXPECT_EQ(result.byIdentifier.size(), isHidden ? 0u : 1u) << identifier;
  }
}

TEST(CandidateGatheringTest, aHiddenItemInTwoPlacesCountsTwice) {
  const auto result =
      gathered(ListedSource({candidate("com.apple.a")}), ListedSource({candidate("com.apple.a")}));
  EXPECT_EQ(result.hidden, 2);
}

}  // namespace
}  // namespace vorli
