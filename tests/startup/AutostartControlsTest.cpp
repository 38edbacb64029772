#include "tests/startup/LinuxStartupFixture.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli {
namespace {

/// One entry, "acme", in the folder of the user's entries.
struct AutostartControlsTest : LinuxStartupFixture {
  void addLink(const std::string& text) {
    files.files[own] = {.content = text, .birth = std::nullopt, .link = "../dotfiles/acme.desktop"};
  }
  void remove() {
    items.service.remove(item("acme"), StartupItemService::CreateUndo::yes);
    settle();
  }
  void undoRemove() {
    items.service.undoRemove(*items.service.pendingUndo.get());
    settle();
  }

  void addSeenEntry() {
    files.add(own, text, Date{1000.0});
    defaults.values[StartupItemService::lastVisitKey] = Date{2000.0};
    scan();
  }
  void expectNotNew() {
    EXPECT_FALSE(item("acme").isNewSinceLastVisit);
    EXPECT_EQ(item("acme").firstSeenAt, Date{1000.0});
  }

  const std::string own = mine + std::string("acme.desktop");
  const std::string paused = own + ".vorli-disabled";
  const std::string pausedLink = mine + std::string(".acme.desktop.vorli-link");
  const std::string original = mine + std::string(".acme.desktop.vorli-original");
  const std::string removedLink = mine + std::string(".acme.desktop.vorli-removed");
  const std::string text = entry("Acme", "acme");
  const std::string other = entry("Acme", "acme", "X-New=1\n");
};

TEST_F(AutostartControlsTest, anEntryThatCannotBeReadIsNotDeleted) {
  files.add(shared + std::string("acme.desktop"), text);
  files.add(own, entry("Mine", "acme"));
  files.files[own].isReadable = false;
  scan();
  EXPECT_FALSE(item("acme").isEnabled);
  resume("acme");
  EXPECT_TRUE(files.files.contains(own));
}

TEST_F(AutostartControlsTest, enableRemovesAMaskOfTheSystemsEntry) {
  files.add(shared + std::string("acme.desktop"), text);
  files.addLink(own, "/dev/null");
  scan();
  EXPECT_FALSE(item("acme").isEnabled);
  resume("acme");
  EXPECT_TRUE(item("acme").isEnabled);
  EXPECT_FALSE(files.files.contains(own));
}

TEST_F(AutostartControlsTest, aLinkWaitsUnderANameThatNoSessionReads) {
  addLink(text);
  expectPauseAndResume("acme");
  pause("acme");
  EXPECT_FALSE(files.files.contains(own));
  EXPECT_EQ(files.files.at(pausedLink).link, "../dotfiles/acme.desktop");
  EXPECT_TRUE(files.files.at(paused).content.contains("Hidden=true"));
}

TEST_F(AutostartControlsTest, anEntryThatTookThePlaceOfAPausedLinkIsKept) {
  addLink(text);
  scan();
  pause("acme");
  files.add(own, other);  // the application has rewritten its entry
  scan();
  EXPECT_TRUE(item("acme").isEnabled);
  pause("acme");
  EXPECT_FALSE(item("acme").isEnabled);
  resume("acme");
  EXPECT_EQ(files.files.at(own).content, other);
  EXPECT_TRUE(files.files.contains(pausedLink));
}

TEST_F(AutostartControlsTest, aPausedLinkOutlivesTheEntryThatTookItsPlace) {
  addLink(text);
  scan();
  pause("acme");
  files.add(own, other);
  scan();
  pause("acme");
  resume("acme");
  files.files.erase(own);
  scan();
  EXPECT_FALSE(item("acme").isEnabled);
  resume("acme");
  EXPECT_EQ(files.files.at(own).link, "../dotfiles/acme.desktop");
}

TEST_F(AutostartControlsTest, anEntryThatTookThePlaceOfAPausedOverrideIsKept) {
  files.add(shared + std::string("acme.desktop"), text);
  addLink(text);
  scan();
  pause("acme");
  files.add(own, other);
  scan();
  pause("acme");
  resume("acme");
  EXPECT_EQ(files.files.at(own).content, other);
}

TEST_F(AutostartControlsTest, aLinkThatWasMadeAgainPausesOnceMore) {
  addLink(text);
  scan();
  pause("acme");
  addLink(text);
  scan();
  pause("acme");
  EXPECT_FALSE(item("acme").isEnabled);
  EXPECT_FALSE(files.files.contains(own));
  resume("acme");
  EXPECT_EQ(files.files.at(own).link, "../dotfiles/acme.desktop");
  EXPECT_EQ(files.files.size(), 1u);
}

TEST_F(AutostartControlsTest, aLinkToATextThatCannotBeMarkedStays) {
  addLink(text);
  scan();
  const auto row = item("acme");
  const std::string marked = "[Desktop Entry]\nHidden=true\nX-Vorli-Paused=true\nName=Acme\nExec=acme\n";
  for (const std::string& changed : {std::string("no entry"), marked}) {
    addLink(changed);
    const auto before = files.files;
    items.service.setEnabled(Enablement::paused, row, StartupItemService::CreateUndo::yes);
    settle();
    EXPECT_EQ(files.files, before) << changed;
  }
}

TEST_F(AutostartControlsTest, aRemovedLinkComesBackByUndoAndIsDeletedAtTheEnd) {
  addLink(text);
  scan();
  const auto before = files.files;
  remove();
  EXPECT_FALSE(find("acme"));
  EXPECT_FALSE(files.files.contains(own));
  undoRemove();
  EXPECT_EQ(files.files, before);
  remove();
  items.service.commitRemoval(*items.service.pendingUndo.get());
  settle();
  EXPECT_TRUE(files.files.empty());
}

TEST_F(AutostartControlsTest, aRemovedLinkDoesNotUncoverTheSystemsEntry) {
  files.unseen = {};
  files.add(shared + std::string("acme.desktop"), entry("Acme", "/opt/acme"));
  addLink(text);
  scan();
  const auto before = files.files;
  remove();
  EXPECT_FALSE(find("acme"));
  EXPECT_TRUE(files.files.at(own).content.contains("Hidden=true"));
  EXPECT_TRUE(files.files.contains(removedLink));
  undoRemove();
  EXPECT_EQ(files.files, before);
}

TEST_F(AutostartControlsTest, aRemovedEntryIsPausedOnceItsProgramIsBack) {
  files.unseen = {};
  files.add(shared + std::string("acme.desktop"), entry("Acme", "/opt/acme"));
  scan();
  EXPECT_TRUE(item("acme").isLeftover);
  remove();
  EXPECT_FALSE(find("acme"));
  program("/opt/acme");
  scan();
  EXPECT_FALSE(item("acme").isEnabled);
  EXPECT_FALSE(item("acme").isLeftover);
  resume("acme");
  EXPECT_TRUE(item("acme").isEnabled);
  EXPECT_FALSE(files.files.contains(own));
}

TEST_F(AutostartControlsTest, aResumedEntryIsNotNew) {
  addSeenEntry();
  expectNotNew();
  pause("acme");
  EXPECT_FALSE(item("acme").isNewSinceLastVisit);
  resume("acme");
  expectNotNew();
  EXPECT_EQ(files.files.size(), 1u);
}

TEST_F(AutostartControlsTest, anEntryThatIsPausedInItsPlaceIsNotNewEither) {
  files.add(shared + std::string("acme.desktop"), text);
  addSeenEntry();
  pause("acme");
  EXPECT_EQ(item("acme").firstSeenAt, std::nullopt);
  EXPECT_FALSE(item("acme").isNewSinceLastVisit);
  resume("acme");
  expectNotNew();
}

TEST_F(AutostartControlsTest, anEntryWhoseRemovalIsUndoneIsNotNew) {
  addSeenEntry();
  remove();
  undoRemove();
  expectNotNew();
  remove();
  items.service.commitRemoval(*items.service.pendingUndo.get());
  settle();
  EXPECT_TRUE(files.files.empty());
}

TEST_F(AutostartControlsTest, aChangeToAPausedEntryOutlivesIt) {
  addSeenEntry();
  pause("acme");
  EXPECT_EQ(files.files.at(original).content, text);
  files.files.at(paused).content += "X-New=1\n";
  resume("acme");
  EXPECT_EQ(files.files.at(own).content, other);
  EXPECT_EQ(files.files.size(), 1u);
}

TEST_F(AutostartControlsTest, anOrphanedOriginalIsReplaced) {
  addSeenEntry();
  pause("acme");
  files.files.erase(paused);  // deleted by hand
  files.add(own, other, Date{1000.0});
  scan();
  pause("acme");
  EXPECT_EQ(files.files.at(original).content, other);
  resume("acme");
  EXPECT_EQ(files.files.at(own).content, other);
  expectNotNew();
}

TEST_F(AutostartControlsTest, aMaskHasNoDate) {
  files.add(shared + std::string("acme.desktop"), text);
  files.addLink(own, "/dev/null");
  files.files[own].birth = Date{3000.0};
  defaults.values[StartupItemService::lastVisitKey] = Date{2000.0};
  scan();
  EXPECT_EQ(item("acme").firstSeenAt, std::nullopt);
  EXPECT_FALSE(item("acme").isNewSinceLastVisit);
}

TEST_F(AutostartControlsTest, anEntryOfWhichAnEarlierOneWasRemovedIsRemovedToo) {
  const auto removed = own + ".vorli-removed";
  files.add(own, text);
  scan();
  remove();
  files.add(own, other);  // installed again
  scan();
  remove();
  EXPECT_FALSE(find("acme"));
  EXPECT_TRUE(files.files.at(removed).content.contains("X-New=1"));
  EXPECT_TRUE(files.files.contains(removed + ".1"));
  undoRemove();
  EXPECT_EQ(files.files.at(own).content, other);
}

TEST_F(AutostartControlsTest, anEntryOfWhichAnEarlierLinkWasRemovedComesBackByUndoAndNotTheLink) {
  addLink(text);
  scan();
  remove();
  files.add(own, other);  // the application has written an entry
  scan();
  remove();
  EXPECT_FALSE(find("acme"));
  undoRemove();
  EXPECT_EQ(files.files.at(own).content, other);
  EXPECT_EQ(files.files.at(own).link, "");
  EXPECT_EQ(files.files.at(removedLink + ".1").link, "../dotfiles/acme.desktop");
}

TEST_F(AutostartControlsTest, aSecondPressOfRemoveCanBeUndoneToo) {
  files.add(own, text);
  scan();
  const auto before = files.files;
  const auto row = item("acme");
  for (int i = 0; i < 2; ++i) items.service.remove(row, StartupItemService::CreateUndo::yes);
  settle();
  undoRemove();
  EXPECT_EQ(files.files, before);
}

TEST_F(AutostartControlsTest, aPausedEntryIsNotRemoved) {
  files.add(own, text);
  scan();
  pause("acme");
  const auto before = files.files;
  remove();
  EXPECT_EQ(files.files, before);
  EXPECT_TRUE(find("acme"));
}

TEST_F(AutostartControlsTest, anEntryThatIsPausedUnderItsOwnNameGetsItsLongerName) {
  files.add(own, text);
  scan();
  pause("acme");
  files.moveWithoutReplacing(paused, own);
  scan();
  EXPECT_FALSE(item("acme").isEnabled);
  pause("acme");
  EXPECT_FALSE(files.files.contains(own));
  EXPECT_TRUE(files.files.contains(paused));
}

TEST_F(AutostartControlsTest, pausingOrRemovingAnEntryStopsWhatItStarted) {
  for (const std::string folder : {mine, shared}) {
    files.files.clear();
    launchControl.calls.clear();
    files.add(folder + "acme.desktop", text);
    const auto stop = "unload " + folder + "acme.desktop";
    scan();
    pause("acme");
    EXPECT_EQ(launchControl.calls, std::vector<std::string>{stop});
    resume("acme");
    EXPECT_EQ(launchControl.calls, std::vector<std::string>{stop});
    remove();
    EXPECT_EQ(launchControl.calls, (std::vector<std::string>{stop, stop}));
  }
}

}  // namespace
}  // namespace vorli
