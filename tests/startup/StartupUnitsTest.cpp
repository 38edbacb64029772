#include "startup/StartupUnits.h"
#include "tests/fakes/StartupFiles.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vorli {
namespace {

using Owner = UnitFolder::Owner;
using Source = StartupItem::Source;

struct StartupUnitsTest : testing::Test {
  static constexpr const char* own = "/home/kim/units/";
  static constexpr const char* etc = "/etc/units/";
  static constexpr const char* usr = "/usr/units/";

  void add(const std::string& folder, const std::string& name, const std::string& program = "/usr/bin/acme",
           const std::string& description = "") {
    files.add(folder + name,
              "[Unit]\nDescription=" + description + "\n[Service]\nExecStart=" + program + "\n");
  }
  void want(const std::string& folder, const std::string& name) {
    files.addLink(folder + "default.target.wants/" + name, "../" + name);
  }
  static std::optional<RawCandidate> in(StartupUnits& units, std::string_view identifier) {
    const auto all = units.candidates();
    const auto found = std::ranges::find(all, identifier, &RawCandidate::identifier);
    return found == all.end() ? std::nullopt : std::optional(*found);
  }
  RawCandidate user(std::string_view identifier) {
    const auto found = in(ofUser, identifier);
    EXPECT_TRUE(found) << identifier;
    return found.value_or(RawCandidate());
  }
  RawCandidate system(std::string_view identifier) {
    const auto found = in(ofSystem, identifier);
    EXPECT_TRUE(found) << identifier;
    return found.value_or(RawCandidate());
  }

  fakes::StartupFiles files;
  StartupUnits ofUser{files,
                      {{"/home/kim/units", Owner::user},
                       {"/etc/units", Owner::administrator},
                       {"/usr/units", Owner::package}},
                      UnitManager::user,
                      "/home/kim"};
  StartupUnits ofSystem{
      files,
      {{"/run/above", Owner::runtime}, {"/etc/units", Owner::administrator}, {"/usr/units", Owner::package}},
      UnitManager::system,
      "/home/kim",
      "/etc/init.d"};
};

TEST_F(StartupUnitsTest, aUnitOfTheUsersIsTheUsersOwn) {
  add(own, "acme.service", "/opt/acme/run --daemon", "Acme sync daemon - keeps files in sync");
  want(own, "acme.service");
  EXPECT_EQ(user("acme.service"), (RawCandidate{.identifier = "acme.service",
                                                .displayNameHint = "Acme sync daemon",
                                                .programPath = "/opt/acme/run",
                                                .plistURL = "/home/kim/units/acme.service",
                                                .plistIsUserWritable = true,
                                                .registersAtLogin = true,
                                                .isEnabled = true,
                                                .source = Source::userLinked}));
}

TEST_F(StartupUnitsTest, aUnitOfAPackagesIsAnInstallationsAndMaskedWithoutTheHelper) {
  add(usr, "acme.service");
  want(etc, "acme.service");
  EXPECT_EQ(user("acme.service").plistURL, "/usr/units/acme.service");
  EXPECT_TRUE(user("acme.service").plistIsUserWritable);
  EXPECT_EQ(user("acme.service").source, Source::autoInstalled);
  EXPECT_FALSE(system("acme.service@system").plistIsUserWritable);
}

TEST_F(StartupUnitsTest, anAdministratorsUnitNeedsTheHelper) {
  add(etc, "acme.service");
  want(etc, "acme.service");
  EXPECT_EQ(user("acme.service").plistURL, "/etc/units/acme.service");
  EXPECT_FALSE(user("acme.service").plistIsUserWritable);
  EXPECT_EQ(system("acme.service@system").plistURL, "/etc/units/acme.service");
}

TEST_F(StartupUnitsTest, unwantedUnitsAreNotListed) {
  add(own, "acme.service");
  want(usr, "acme.service");  // a package's own links
  want(own, "none.service");  // leads to no unit
  EXPECT_TRUE(ofUser.candidates().empty());
}

TEST_F(StartupUnitsTest, aPausedUnitIsListedUnderItsOwnNameEvenWithoutALink) {
  add(own, "acme.service.vorli-disabled");
  EXPECT_FALSE(user("acme.service").isEnabled);
  EXPECT_EQ(user("acme.service").plistURL, "/home/kim/units/acme.service");
}

TEST_F(StartupUnitsTest, aTriggerIsTheServiceThatItStarts) {
  add(usr, "nightly.service", "/usr/bin/nightly");
  add(usr, "other.service", "/usr/bin/other");
  files.add(usr + std::string("nightly.timer"), "[Timer]\nOnCalendar=daily\n");
  files.add(usr + std::string("named.path"), "[Path]\nPathExists=/x\nUnit=other.service\n");
  want(own, "nightly.timer");
  want(own, "named.path");
  EXPECT_EQ(user("nightly.service").programPath, "/usr/bin/nightly");
  EXPECT_FALSE(user("nightly.service").registersAtLogin);
  EXPECT_EQ(user("other.service").programPath, "/usr/bin/other");
  EXPECT_EQ(ofUser.candidates().size(), 2u);
}

TEST_F(StartupUnitsTest, aSocketForEachConnectionAndATriggerOfNothingAreThemselves) {
  files.add(usr + std::string("each.socket"), "[Socket]\nListenStream=/run/x\nAccept=yes\n");
  add(usr, "each.service");
  files.add(usr + std::string("lost.timer"), "[Timer]\nOnCalendar=daily\n");
  files.add(usr + std::string("any.path"), "[Path]\nPathExists=/x\nUnit=%i.service\n");
  add(usr, "any.service");
  for (const char* name : {"each.socket", "lost.timer", "any.path"}) want(own, name);
  EXPECT_EQ(user("each.socket").plistURL, "/usr/units/each.socket");
  EXPECT_EQ(user("lost.timer").plistURL, "/usr/units/lost.timer");
  EXPECT_EQ(user("any.service").plistURL, "/usr/units/any.service");
}

TEST_F(StartupUnitsTest, anInstanceIsMaskedByItsNameAndTheSystemsByItsTemplatesFolder) {
  add(usr, "acme@.service");
  want(own, "acme@one.service");
  want(etc, "acme@two.service");
  EXPECT_EQ(user("acme@one.service").plistURL, "/home/kim/units/acme@one.service");
  EXPECT_EQ(system("acme@two.service@system").plistURL, "/usr/units/acme@two.service");
}

TEST_F(StartupUnitsTest, unitsThatCannotBeMovedInEtcAreMaskedForTheUserAndNotOfferedForTheSystem) {
  add(etc, "above.service");
  add(usr, "above.service");
  add(etc, "twin.service");
  add(etc, "twin.service.vorli-removed");
  files.files[etc + std::string("link.service")] = {
      .content = "[Service]\nExecStart=/opt/x\n", .birth = std::nullopt, .link = "/opt/link.service"};
  for (const std::string name : {"above.service", "twin.service", "link.service"}) {
    want(etc, name);
    EXPECT_EQ(user(name).plistURL, own + name);
    EXPECT_EQ(system(name + "@system").plistURL, std::nullopt);
    EXPECT_EQ(system(name + "@system").programPath, std::nullopt) << name << " could not be removed";
  }
}

TEST_F(StartupUnitsTest, aServiceThatHidesAnInitScriptIsNotOfferedForTheSystem) {
  add(etc, "acme.service");
  want(etc, "acme.service");
  files.add("/etc/init.d/acme");
  EXPECT_EQ(system("acme.service@system").plistURL, std::nullopt);
  EXPECT_EQ(user("acme.service").plistURL, "/etc/units/acme.service");
}

TEST_F(StartupUnitsTest, aUnitAboveTheAdministratorsIsNotOffered) {
  add("/run/above/", "acme.service");
  want(etc, "acme.service");
  EXPECT_EQ(system("acme.service@system").plistURL, std::nullopt);
}

TEST_F(StartupUnitsTest, aMaskedUnitOfAPackageWithoutItsProgramIsRemoved) {
  add(usr, "gone.service", "/usr/bin/gone");
  want(etc, "gone.service");
  EXPECT_TRUE(in(ofUser, "gone.service"));
  files.add(own + std::string("gone.service"), "");
  EXPECT_FALSE(in(ofUser, "gone.service"));
  files.add("/usr/bin/gone");
  EXPECT_FALSE(user("gone.service").isEnabled);
}

TEST_F(StartupUnitsTest, specifiersOfAProgramAreTheUsersHomeOrUnknown) {
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {"%h/bin/acme", "/home/kim/bin/acme"},
      {"%h", std::nullopt},
      {"/opt/%i/acme", std::nullopt},
      {"acme", "acme"},
      {"", std::nullopt},
  };
  want(own, "acme.service");
  for (const auto& [program, expected] : rows) {
    add(own, "acme.service", program);
    EXPECT_EQ(user("acme.service").programPath, expected) << program;
  }
  add(etc, "acme.service", "%h/bin/acme");
  want(etc, "acme.service");
  EXPECT_EQ(system("acme.service@system").programPath, std::nullopt);  // root's home, not the user's
}

TEST_F(StartupUnitsTest, aNameComesFromTheDescriptionOrElseTheUnit) {
  EXPECT_EQ(nameFromDescription("tea time daemon - brews tea"), "Tea time daemon");
  EXPECT_EQ(nameFromDescription("Acme on %I"), "Acme on");
  EXPECT_EQ(nameFromDescription("  %i  "), std::nullopt);
  EXPECT_EQ(nameFromDescription("100%"), "100");
  EXPECT_EQ(nameFromDescription(""), std::nullopt);
  EXPECT_EQ(nameFromDescription("well-known name"), "Well-known name");
  add(usr, "tea@.service");
  want(own, "tea@five.service");
  EXPECT_EQ(user("tea@five.service").displayNameHint, "Tea");
}

TEST_F(StartupUnitsTest, onlyUnitsOfPackagesAreHidden) {
  add(usr, "pipewire.service");
  add(own, "systemd-mine.service");
  add(own, "vorli-helper.service");
  for (const char* name : {"pipewire.service", "systemd-mine.service", "vorli-helper.service"})
    want(own, name);
  EXPECT_TRUE(ofUser.hides(user("pipewire.service")));
  EXPECT_FALSE(ofUser.hides(user("systemd-mine.service")));
  EXPECT_TRUE(ofUser.hides(user("vorli-helper.service")));
}

}  // namespace
}  // namespace vorli
