#include "startup/UnitSearch.h"
#include "tests/fakes/StartupFiles.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace vorli {
namespace {

using Owner = UnitFolder::Owner;

struct UnitSearchTest : testing::Test {
  static constexpr const char* own = "/home/kim/units/";
  static constexpr const char* etc = "/etc/units/";
  static constexpr const char* usr = "/usr/units/";

  void add(const char* folder, const std::string& name, const std::string& text = "[Service]\n") {
    files.add(folder + name, text);
  }
  void link(const char* folder, const std::string& name, const std::string& target) {
    files.addLink(folder + name, target);
  }
  FoundUnit find(const std::string& name) {
    search.startedNames();  // the next listing sees the test's changes
    const auto found = search.find(name);
    EXPECT_TRUE(found) << name;
    return found.value_or(FoundUnit());
  }

  fakes::StartupFiles files;
  UnitSearch search{files,
                    {{"/home/kim/units", Owner::user},
                     {"/etc/units", Owner::administrator},
                     {"/usr/units", Owner::package}}};
};

TEST_F(UnitSearchTest, startedUnitsAreWantedOrPausedByThisProgram) {
  link(own, "default.target.wants/a.service", "../a.service");
  link(etc, "default.target.requires/b.timer", "../b.timer");
  link(etc, "default.target.wants/multi-user.target", "../x");
  link(usr, "default.target.wants/c.service", "../c.service");
  add(own, "d.service.vorli-disabled");
  add(own, "e.service.vorli-removed");
  add(own, "f.service");
  add(own, ".vorli-disabled");
  EXPECT_EQ(search.startedNames(), (std::set<std::string>{"a.service", "b.timer", "d.service"}));
}

TEST_F(UnitSearchTest, readsNoFileInAFolderThatDoesNotListIt) {
  add(usr, "a.service");
  search.find("a.service");
  EXPECT_EQ(files.reads, std::vector<std::string>{"/usr/units/a.service"});
}

TEST_F(UnitSearchTest, eachFolderIsListedOnceUntilTheNextListing) {
  add(own, "a.service.vorli-disabled");
  add(usr, "b.service");
  search.startedNames();
  search.find("a.service");
  search.find("b.service");
  EXPECT_EQ(files.listings, (std::vector<std::string>{"/home/kim/units", "/etc/units", "/usr/units"}));
  search.startedNames();
  search.find("b.service");
  EXPECT_EQ(files.listings, (std::vector<std::string>{"/home/kim/units", "/etc/units", "/usr/units",
                                                      "/home/kim/units", "/etc/units", "/usr/units"}));
}

TEST_F(UnitSearchTest, aFolderThatCannotBeListedIsTriedByName) {
  add(etc, "a.service", "etc");
  files.unlistable = {"/etc/units"};
  EXPECT_EQ(find("a.service").text, "etc");
}

TEST_F(UnitSearchTest, aFileOfMoreThanOneMebibyteIsNoUnit) {
  add(etc, "a.service", std::string(1'048'576, '#'));
  add(etc, "b.service", std::string(1'048'577, '#'));
  EXPECT_TRUE(search.find("a.service"));
  EXPECT_FALSE(search.find("b.service"));
}

TEST_F(UnitSearchTest, theMostImportantFolderCounts) {
  EXPECT_FALSE(search.find("a.service"));
  add(usr, "a.service", "usr");
  EXPECT_EQ(find("a.service").text, "usr");
  EXPECT_FALSE(find("a.service").overridesAnother);
  add(own, "a.service", "own");
  EXPECT_EQ(find("a.service").text, "own");
  EXPECT_EQ(find("a.service").folder->path, "/home/kim/units");
  EXPECT_TRUE(find("a.service").overridesAnother);
  EXPECT_TRUE(find("a.service").isEnabled);
}

TEST_F(UnitSearchTest, aMaskHidesAUnitButDoesNotDescribeIt) {
  add(usr, "a.service", "usr");
  link(own, "a.service", "/dev/null");
  EXPECT_EQ(find("a.service").text, "usr");
  EXPECT_FALSE(find("a.service").isEnabled);
  add(own, "a.service", "");
  EXPECT_FALSE(find("a.service").isEnabled);
  EXPECT_TRUE(search.isMask(search.folders().front(), "a.service"));
  EXPECT_FALSE(search.isMask(search.folders().back(), "a.service"));
}

TEST_F(UnitSearchTest, aMaskBelowAUnitHidesNothing) {
  add(own, "a.service", "own");
  link(etc, "a.service", "/dev/null");
  EXPECT_TRUE(find("a.service").isEnabled);
}

TEST_F(UnitSearchTest, aUnitOverridesWhateverHasItsNameInALaterFolder) {
  for (const char* name : {"a.service", "b.service", "c.service"}) add(own, name, "own");
  link(etc, "a.service", "/dev/null");
  add(usr, "b.service", "");
  files.files["/usr/units/c.service"] = {.content = {}, .birth = std::nullopt, .isReadable = false};
  for (const char* name : {"a.service", "b.service", "c.service"})
    EXPECT_TRUE(find(name).overridesAnother) << name;
}

TEST_F(UnitSearchTest, aMaskThatTheNextStartEndsHidesNothing) {
  UnitSearch withRuntime{files, {{"/run/units", Owner::runtime}, {"/usr/units", Owner::package}}};
  add(usr, "a.service", "usr");
  add(usr, "a@.service", "template");
  files.addLink("/run/units/a.service", "/dev/null");
  files.addLink("/run/units/a@one.service", "/dev/null");
  files.addLink("/run/units/default.target.wants/b.service", "../b.service");
  EXPECT_TRUE(withRuntime.startedNames().empty());
  EXPECT_TRUE(withRuntime.find("a.service")->isEnabled);
  EXPECT_TRUE(withRuntime.find("a@one.service")->isEnabled);
}

TEST_F(UnitSearchTest, aTemplateOrAnInitScriptIsAnotherOriginOfAUnit) {
  UnitSearch withScripts{
      files, {{"/etc/units", Owner::administrator}, {"/usr/units", Owner::package}}, "/etc/init.d"};
  for (const char* name : {"a@one.service", "b.service", "b.timer", "c.service", "d.service"}) add(etc, name);
  add(usr, "a@.service");
  files.add("/etc/init.d/b");
  files.add("/etc/init.d/d.sh");
  EXPECT_TRUE(withScripts.find("a@one.service")->overridesAnother);
  EXPECT_TRUE(withScripts.find("b.service")->overridesAnother);
  EXPECT_FALSE(withScripts.find("b.timer")->overridesAnother);
  EXPECT_FALSE(withScripts.find("c.service")->overridesAnother);
  EXPECT_TRUE(withScripts.find("d.service")->overridesAnother);
  EXPECT_FALSE(find("b.service").overridesAnother);
}

TEST_F(UnitSearchTest, anEarlierFileIsOneThatWasPutAwayUnderTheSameName) {
  for (const char* name : {"a.service", "b.service", "c.service"}) add(own, name, "own");
  add(own, "a.service.vorli-disabled");
  add(own, "b.service.vorli-removed");
  add(etc, "c.service.vorli-disabled");
  EXPECT_TRUE(find("a.service").hasEarlierFile);
  EXPECT_TRUE(find("b.service").hasEarlierFile);
  EXPECT_FALSE(find("c.service").hasEarlierFile);
}

TEST_F(UnitSearchTest, aPausedUnitCountsWhereNothingElseIsLoaded) {
  add(own, "a.service.vorli-disabled", "paused");
  EXPECT_EQ(find("a.service").text, "paused");
  EXPECT_FALSE(find("a.service").isEnabled);
  add(usr, "a.service", "usr");
  EXPECT_EQ(find("a.service").text, "usr");
  EXPECT_TRUE(find("a.service").isEnabled);
  add(own, "a.service", "");
  EXPECT_EQ(find("a.service").text, "paused");
  EXPECT_FALSE(find("a.service").isEnabled);
}

TEST_F(UnitSearchTest, anAliasIsResolvedToItsUnit) {
  add(usr, "a.service", "usr");
  link(etc, "dbus-a.service", "/usr/units/a.service");
  EXPECT_EQ(find("dbus-a.service").name, "a.service");
  EXPECT_EQ(find("dbus-a.service").text, "usr");
}

TEST_F(UnitSearchTest, aFileInAMoreImportantFolderIsNoAlias) {
  add(own, "b.service", "own");
  add(usr, "a.service", "usr");
  link(etc, "b.service", "/usr/units/a.service");
  EXPECT_EQ(find("b.service").name, "b.service");
  EXPECT_EQ(find("b.service").text, "own");
}

TEST_F(UnitSearchTest, circularAliasesLeadNowhere) {
  link(etc, "a.service", "b.service");
  link(etc, "b.service", "a.service");
  EXPECT_FALSE(search.find("a.service"));
}

TEST_F(UnitSearchTest, aLinkToAFileElsewhereIsNoAlias) {
  files.files["/etc/units/a.service"] = {
      .content = "elsewhere", .birth = std::nullopt, .link = "/opt/a.service"};
  EXPECT_EQ(find("a.service").text, "elsewhere");
  EXPECT_TRUE(find("a.service").isLink);
}

TEST_F(UnitSearchTest, anInstanceIsMadeFromItsTemplate) {
  add(usr, "a@.service", "template");
  EXPECT_EQ(find("a@one.service").name, "a@one.service");
  EXPECT_EQ(find("a@one.service").text, "template");
  EXPECT_TRUE(find("a@one.service").isInstance);
  link(own, "a@one.service", "/dev/null");
  EXPECT_FALSE(find("a@one.service").isEnabled);
  EXPECT_TRUE(find("a@two.service").isEnabled);
  add(etc, "a@two.service", "own file");
  EXPECT_FALSE(find("a@two.service").isInstance);
}

}  // namespace
}  // namespace vorli
