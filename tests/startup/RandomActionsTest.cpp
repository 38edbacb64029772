#include "startup/StartupItemService.h"
#include "tests/startup/RandomSequences.h"
#include "tests/startup/StartupAppsFixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vorli {
namespace {

/// One user, one disk and one helper that act at random. Every file has unique content, so that the test can
/// follow it.
class RandomActions : public StartupAppsFixture {
 public:
  explicit RandomActions(unsigned seed) : chance_(seed) {
    for (const auto& path : launchPaths) write(path);
    launchControl.whenCalled = [this] {
      if (oneIn(8)) changeFromOutside();  // between the two steps of an action
    };
    transport.whenAnswered = [this](const std::string& request) { answer(request); };
  }

  void TestBody() override {}

  void run() {
    view.appear();
    settle();
    for (int step = 0; step < 8; ++step) {
      act();
      scheduler.advance(std::uniform_real_distribution(0.0, 2.5)(chance_));
      expectNothingLost();
    }
    endFaults();
    scheduler.advance(60.0);
    scan();
    expectNothingLost();
    expectTheListTellsTheTruth();
  }

 private:
  static inline const std::vector<std::string> launchPaths{
      "/home/kim/Library/LaunchAgents/com.acme.one.plist",
      "/home/kim/Library/LaunchAgents/com.acme.two.plist", "/Library/LaunchDaemons/com.acme.three.plist"};
  static inline const std::vector<std::string> endings{"", ".vorli-disabled", ".vorli-removed"};

  int upTo(int largest) { return std::uniform_int_distribution(0, largest)(chance_); }
  bool oneIn(int many) { return upTo(many - 1) == 0; }
  const std::string& anyLaunchPath() { return launchPaths[static_cast<std::size_t>(upTo(2))]; }

  void write(const std::string& path) {
    const auto content = "/opt/acme/" + std::to_string(++lastContent_);
    files.add(path, content);
    if (!oneIn(4)) files.add(content);  // the program, without which the job is a leftover
    alive_[content] = path.substr(0, path.find(".plist") + 6);
  }

  void act() {
    switch (upTo(8)) {
      case 0:
        return press(RowVerb::disable);
      case 1:
        return press(RowVerb::enable);
      case 2:
      case 3:
        return press(RowVerb::remove);
      case 4:
        if (view.undoToast()) view.undoToast()->undoPressed();
        return;
      case 5:
        return changeFromOutside();
      case 6:
        return changeFaults();
      case 7:
        return closeAndOpen();
      default:
        return actOnAll();
    }
  }

  // Presses twice now and then; the second press finds the row unchanged.
  void press(RowVerb verb) {
    const auto& items = startup->items.get();
    if (items.empty()) return;
    const StartupItem row = items[static_cast<std::size_t>(upTo(static_cast<int>(items.size()) - 1))];
    if (verb == RowVerb::remove) mayBeDeleted_.insert(*row.plistURL);
    view.press(row, verb);
    if (oneIn(3)) view.press(row, oneIn(2) ? RowVerb::enable : RowVerb::disable);
  }

  void actOnAll() {
    for (const auto& leftover : startup->leftoverItems()) mayBeDeleted_.insert(*leftover.plistURL);
    for (const auto& banner : view.banners()) banner.actions.at(0).action();
  }

  void closeAndOpen() {
    view.disappear();
    scheduler.advance(1.0);
    view.appear();
  }

  void changeFromOutside() {
    const auto path = anyLaunchPath() + endings[static_cast<std::size_t>(upTo(2))];
    if (const auto found = files.files.find(path); found != files.files.end()) {
      alive_.erase(found->second.content);
      files.files.erase(found);
    }
    if (oneIn(2)) write(path);
  }

  void changeFaults() {
    const std::vector<std::vector<std::string>> locks{{"/Library/"}, {"/Library/", "/home/"}, {""}};
    files.locked = locks[static_cast<std::size_t>(upTo(2))];
    background.seconds = oneIn(4) ? 10.0 : 0.1;  // the service manager hangs
    helper_ = static_cast<Helper>(upTo(3));
    transport.setConduct(helper_ == Helper::silent ? Conduct::silent : Conduct::answers);
    transport.moveLaunchAgentPlist.delaySeconds = oneIn(4) ? 3.5 : 0.0;
    service.rawStatus = oneIn(4) ? 2 : 1;
  }

  void endFaults() {
    files.locked = {"/Library/"};
    background.seconds = 0.1;
    helper_ = Helper::honest;
    transport.setConduct(Conduct::answers);
    transport.moveLaunchAgentPlist.delaySeconds = 0.0;
    service.rawStatus = 1;
  }

  void answer(const std::string& request) {
    if (helper_ == Helper::refusing) transport.moveLaunchAgentPlist.answer = {7, "refused"};
    if (helper_ == Helper::lying) transport.moveLaunchAgentPlist.answer = {0, "moved"};
    if (helper_ == Helper::honest) moveAsHelper()(request);
  }

  // Each content exists once, beside the place that it was written to. Only what the user asked to remove may
  // be missing.
  void expectNothingLost() {
    std::set<std::string> found;
    for (const auto& [path, file] : files.files) {
      if (path.starts_with("/opt/")) continue;
      EXPECT_TRUE(found.insert(file.content).second) << file.content << " is there twice";
      const auto place = alive_.find(file.content);
      ASSERT_NE(place, alive_.end()) << path << " came from nowhere";
      EXPECT_TRUE(path.starts_with(place->second)) << path << " was " << place->second;
      EXPECT_TRUE(std::ranges::count(endings, path.substr(place->second.size())) == 1) << path;
    }
    std::erase_if(alive_, [&](const auto& each) {
      return !found.contains(each.first) && mayBeDeleted_.contains(each.second);
    });
    for (const auto& [content, path] : alive_) EXPECT_TRUE(found.contains(content)) << path << " is lost";
  }

  void expectTheListTellsTheTruth() {
    for (const auto& path : launchPaths) {
      const bool isThere = files.files.contains(path);
      const bool isPaused = files.files.contains(path + ".vorli-disabled");
      const auto id = path.substr(path.rfind('/') + 1, path.size() - path.rfind('/') - 7);
      EXPECT_EQ(isListed(id), isThere || isPaused) << id;
      if (!isListed(id)) continue;
      EXPECT_EQ(item(id).isEnabled, !isPaused) << id;
    }
  }

  enum class Helper { honest, silent, refusing, lying };

  std::mt19937 chance_;
  int lastContent_ = 0;
  std::map<std::string, std::string> alive_;  // contents, and the place of each
  std::set<std::string> mayBeDeleted_;
  Helper helper_ = Helper::honest;
};

TEST(RandomActionsTest, noSequenceLosesDoublesOrChangesAFile) {
  runRandomSequences<RandomActions>(randomSequences());
}

}  // namespace
}  // namespace vorli
