#include "startup/CandidateGathering.h"
#include "startup/LaunchDirectories.h"
#include "tests/fakes/StartupFiles.h"
#include "tests/formats/SampleFiles.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Source = StartupItem::Source;
using Strings = std::vector<std::string>;

std::string plist(const std::string& content) {
  return "<plist><dict>" + content + "</dict></plist>";
}

struct LaunchDirectoriesTest : testing::Test {
  static constexpr const char* agents = "/home/kim/Library/LaunchAgents/";

  fakes::StartupFiles files;
  LaunchDirectories directories{files, "/home/kim"};

  std::vector<RawCandidate> scan() { return directories.scanLaunchDirectories(); }
  Strings identifiers() {
    Strings found;
    for (const auto& candidate : scan()) found.push_back(candidate.identifier);
    return found;
  }
  LaunchPlist parsed(const std::string& content) {
    files.add("/x/acme.plist", content);
    const auto record = directories.parseLaunchPlist("/x/acme.plist");
    EXPECT_TRUE(record) << content;
    return record.value_or(LaunchPlist{"nothing", std::nullopt, false});
  }
  bool isRefused(const std::string& content) {
    files.add("/x/acme.plist", content);
    return !directories.parseLaunchPlist("/x/acme.plist");
  }
};

TEST_F(LaunchDirectoriesTest, visitsTheFoldersInTheirOrder) {
  files.add("/Library/LaunchDaemons/a.plist", plist(""));
  files.add("/Library/LaunchAgents/b.plist", plist(""));
  files.add("/home/kim/Library/LaunchAgents/c.plist", plist(""));
  files.add("/System/Library/LaunchAgents/d.plist", plist(""));
  const auto found = scan();
  ASSERT_EQ(identifiers(), (Strings{"c", "b", "a"}));
  EXPECT_EQ(found[0].source, Source::userLinked);
  EXPECT_TRUE(found[0].plistIsUserWritable);
  for (const int i : {1, 2}) {
    EXPECT_EQ(found[i].source, Source::autoInstalled);
    EXPECT_FALSE(found[i].plistIsUserWritable);
  }
}

TEST_F(LaunchDirectoriesTest, aFolderThatCannotBeListedIsPassedOver) {
  files.add("/home/kim/Library/LaunchAgents/c.plist", plist(""));
  files.add("/Library/LaunchDaemons/a.plist", plist(""));
  files.unlistable = {"/home/kim/Library/LaunchAgents"};
  EXPECT_EQ(identifiers(), Strings{"a"});
}

TEST_F(LaunchDirectoriesTest, onlyTwoEndingsCount) {
  for (const char* name :
       {"a.plist", "b.plist.vorli-disabled", "c.plist.vorli-removed", "d.PLIST", "e.Plist",
        "f.plist.VORLI-DISABLED", "g", "h.plist.bak", ".i.plist", "j.vorli-disabled", "plist"})
    files.add(std::string(agents) + name,
              plist("<key>Label</key><string>" + std::string(name) + "</string>"));
  EXPECT_EQ(identifiers(), (Strings{"a.plist", "b.plist.vorli-disabled", "j.vorli-disabled"}));
}

TEST_F(LaunchDirectoriesTest, aPausedJobKeepsThePathThatItHasWhileEnabled) {
  files.add(std::string(agents) + "acme.plist.vorli-disabled",
            plist("<key>Label</key><string>com.acme</string>"));
  const auto found = scan();
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].identifier, "com.acme");
  EXPECT_EQ(found[0].plistURL, std::string(agents) + "acme.plist");
  EXPECT_FALSE(found[0].isEnabled);
  EXPECT_EQ(found[0].displayNameHint, std::nullopt);
}

TEST_F(LaunchDirectoriesTest, anUnlabelledJobIsNamedAfterTheFileAsItIs) {
  files.add(std::string(agents) + "acme.plist", plist(""));
  files.add(std::string(agents) + "paused.plist.vorli-disabled", plist(""));
  EXPECT_EQ(identifiers(), (Strings{"acme", "paused.plist"}));
}

TEST_F(LaunchDirectoriesTest, aPausedAndAFreshFileOfOneLabelAreOneDisabledRow) {
  const auto content = plist("<key>Label</key><string>com.acme</string>");
  files.add(std::string(agents) + "acme.plist", content);
  files.add(std::string(agents) + "acme.plist.vorli-disabled", content);
  StartupSource* const sources[] = {&directories};
  const auto gathered = gatherCandidates(sources);
  ASSERT_EQ(gathered.byIdentifier.size(), 1u);
  EXPECT_FALSE(gathered.byIdentifier.at("com.acme").isEnabled);
}

TEST_F(LaunchDirectoriesTest, readsRealShapedFiles) {
  EXPECT_EQ(
      parsed(formats::sampleLaunchAgent()),
      (LaunchPlist{"com.example.updater", "/Library/Application Support/Example & Sons/updater", true}));
  EXPECT_EQ(parsed(formats::sampleBinaryLaunchAgent()),
            (LaunchPlist{"com.example.updater", "/usr/local/bin/updater", true}));
}

TEST_F(LaunchDirectoriesTest, anEmptyDictionaryIsAJob) {
  EXPECT_EQ(parsed(plist("")), (LaunchPlist{"acme", std::nullopt, false}));
}

TEST_F(LaunchDirectoriesTest, aLabelIsAText) {
  EXPECT_EQ(parsed(plist("<key>Label</key><integer>7</integer>")).label, "acme");
  EXPECT_EQ(parsed(plist("<key>Label</key><string></string>")).label, "");
}

TEST_F(LaunchDirectoriesTest, theProgramComesBeforeTheArguments) {
  const std::string arguments = "<key>ProgramArguments</key><array><string>/b</string></array>";
  EXPECT_EQ(parsed(plist("<key>Program</key><string>/a</string>" + arguments)).programPath, "/a");
  EXPECT_EQ(parsed(plist("<key>Program</key><string></string>" + arguments)).programPath, "");
  EXPECT_EQ(parsed(plist("<key>Program</key><true/>" + arguments)).programPath, "/b");
}

TEST_F(LaunchDirectoriesTest, argumentsAreTextsOrNothing) {
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {"<array/>", std::nullopt},
      {"<array><string>/a</string><integer>1</integer></array>", std::nullopt},
      {"<array><integer>1</integer><string>/a</string></array>", std::nullopt},
      {"<string>/a</string>", std::nullopt},
      {"<dict/>", std::nullopt},
      {"<array><string></string><string>/a</string></array>", ""},
      {"<array><string>/a</string><string>-x</string></array>", "/a"}};
  for (const auto& [content, expected] : rows) {
    EXPECT_EQ(parsed(plist("<key>ProgramArguments</key>" + std::string(content))).programPath, expected)
        << content;
  }
}

TEST_F(LaunchDirectoriesTest, onlyABooleanRunsAtLoad) {
  const std::pair<const char*, bool> rows[] = {{"<true/>", true},
                                               {"<false/>", false},
                                               {"<string>true</string>", false},
                                               {"<integer>1</integer>", false},
                                               {"<real>1</real>", false}};
  for (const auto& [content, expected] : rows)
    EXPECT_EQ(parsed(plist("<key>RunAtLoad</key>" + std::string(content))).runAtLoad, expected) << content;
}

TEST_F(LaunchDirectoriesTest, onlyADictionaryIsAJob) {
  EXPECT_TRUE(isRefused("<plist><array/></plist>"));
  EXPECT_TRUE(isRefused("<plist><string>a</string></plist>"));
  EXPECT_TRUE(isRefused("<plist><dict>"));
  EXPECT_TRUE(isRefused("not a property list"));
  EXPECT_TRUE(isRefused(""));
}

TEST_F(LaunchDirectoriesTest, aFileOfMoreThanAMebibyteIsNoJob) {
  const auto content = plist("<key>Label</key><string>big</string>");
  const std::size_t largest = 1024 * 1024;
  EXPECT_EQ(parsed(content + std::string(largest - content.size(), ' ')).label, "big");
  EXPECT_TRUE(isRefused(content + std::string(largest + 1 - content.size(), ' ')));
}

TEST_F(LaunchDirectoriesTest, aFileThatCannotBeReadIsNoJob) {
  EXPECT_FALSE(directories.parseLaunchPlist("/nowhere.plist"));
  files.add(std::string(agents) + "unreadable.plist", plist(""));
  files.files[std::string(agents) + "unreadable.plist"].isReadable = false;
  files.add(std::string(agents) + "pipe.plist", plist(""));
  files.files[std::string(agents) + "pipe.plist"].isRegular = false;
  files.add(std::string(agents) + "whole.plist", plist(""));
  EXPECT_EQ(identifiers(), Strings{"whole"});
}

}  // namespace
}  // namespace vorli
