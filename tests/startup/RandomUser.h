#pragma once

#include "formats/PauseMarks.h"
#include "startup/StartupItemService.h"
#include "tests/startup/RandomSequences.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vorli {

/// One user, one helper and one service manager that act at random on the disk of a fixture for Linux. Every
/// file starts its own program, so that the test can follow it.
template <typename Fixture>
class RandomUser : public Fixture {
 public:
  explicit RandomUser(unsigned seed) : chance_(seed) {
    this->launchControl.whenCalled = [this] {
      if (oneIn(8)) changeFromOutside();  // between the two steps of an action
    };
    this->transport.whenAnswered = [this](const std::string& request) { answer(request); };
  }

  void TestBody() override {}

  void run() {
    scanAll();
    for (int step = 0; step < 8; ++step) {
      act();
      this->scheduler.advance(std::uniform_real_distribution(0.0, 2.0)(chance_));
      expectNothingLost();
    }
    changeFaults(Faults::none);
    this->scheduler.advance(60.0);
    scanAll();
    expectNothingLost();
    expectTheTruth();
  }

 protected:
  static inline const std::vector<std::string> endings{"", ".vorli-disabled", ".vorli-removed"};

  /// Removes, replaces or creates a file, as other programs do.
  virtual void changeFromOutside() = 0;
  /// Checks that each file exists once, unchanged and beside the place that it was written to. Only what the
  /// user asked to remove may be missing. Files of the system or a package never change.
  virtual void expectNothingLost() = 0;
  /// Checks that the rows show what a session would do.
  virtual void expectTheTruth() = 0;
  /// Paths below which the user may change nothing: 0 the usual ones, 1 also the home, 2 everything.
  virtual std::vector<std::string> locksOf(std::size_t degree) const = 0;

  std::size_t upTo(std::size_t largest) {
    return std::uniform_int_distribution(std::size_t{0}, largest)(chance_);
  }
  bool oneIn(std::size_t many) { return upTo(many - 1) == 0; }

  /// A new program's folder.
  std::string nextProgram() { return "/opt/" + std::to_string(++lastProgram_) + "/"; }
  /// The folder of the program; empty for a mask or an override.
  static std::string programOf(const std::string& content) {
    const auto start = content.find("/opt/");
    if (start == std::string::npos) return {};
    return content.substr(start, content.find('/', start + 5) + 1 - start);
  }

  void expectKnown(const std::string& file, const std::string& content) const {
    const auto known = alive_.find(programOf(content));
    ASSERT_NE(known, alive_.end()) << file << " came from nowhere";
    const auto& [place, text] = known->second;
    EXPECT_TRUE(file.starts_with(place)) << file << " was " << place;
    EXPECT_TRUE(isEnding(file.substr(std::min(place.size(), file.size())))) << file;
    EXPECT_EQ(formats::withoutPauseMarks(content).value_or(content), text) << file;
  }

  void expectRow(const std::string& id, bool starts) const {
    const auto& all = this->items.service.items.get();
    const auto row = std::ranges::find(all, id, &StartupItem::id);
    EXPECT_EQ(row != all.end() && row->isEnabled, starts) << id;
  }

  std::map<std::string, std::pair<std::string, std::string>> alive_;  // programs: where, and in which text
  std::set<std::string> mayBeDeleted_;

 private:
  using CreateUndo = StartupItemService::CreateUndo;
  enum class Faults { any, none };

  // A file that was moved out of the way has a number at its end.
  static bool isEnding(const std::string& text) {
    return std::ranges::any_of(endings, [&](const auto& ending) {
      return text == ending || (!ending.empty() && text.starts_with(ending + "."));
    });
  }

  void scanAll() {
    this->items.service.refresh();
    this->settle();
  }

  void act() {
    const auto& all = this->items.service.items.get();
    if (oneIn(4)) return changeFromOutside();
    if (oneIn(4)) return changeFaults(Faults::any);
    if (oneIn(5)) return undo();
    if (all.empty()) return;
    const StartupItem row = all[upTo(all.size() - 1)];
    const auto times = oneIn(3) ? 2 : 1;  // the second press finds the row unchanged
    for (int i = 0; i < times; ++i) {
      if (row.plistURL && oneIn(4)) {
        mayBeDeleted_.insert(*row.plistURL);
        this->items.service.remove(row, CreateUndo::yes);
      } else {
        this->items.service.setEnabled(oneIn(2) ? Enablement::enabled : Enablement::paused, row,
                                       CreateUndo::yes);
      }
    }
  }

  void undo() {
    const auto action = this->items.service.pendingUndo.get();
    if (!action) return;
    if (action->kind == UndoAction::Kind::paused) return this->items.service.undoPause(*action);
    if (oneIn(2)) return this->items.service.undoRemove(*action);
    this->items.service.commitRemoval(*action);
  }

  void changeFaults(Faults faults) {
    using Conduct = typename Fixture::Conduct;
    const bool isCalm = faults == Faults::none;
    this->files.locked = locksOf(isCalm ? 0 : upTo(2));
    this->background.seconds = !isCalm && oneIn(4) ? 10.0 : 0.1;  // the service manager hangs
    helper_ = isCalm ? 0 : upTo(3);
    this->transport.setConduct(helper_ == 1 ? Conduct::silent : Conduct::answers);
    this->service.rawStatus = !isCalm && oneIn(4) ? 2 : 1;
    this->units.answer = isCalm ? ports::UnitReply::done : static_cast<ports::UnitReply>(upTo(2));
  }

  // The helper is honest, gives no answer, refuses, or reports a move that it did not make.
  void answer(const std::string& request) {
    if (helper_ == 2) this->transport.moveLaunchAgentPlist.answer = {7, "refused"};
    if (helper_ == 3) this->transport.moveLaunchAgentPlist.answer = {0, "moved"};
    if (helper_ == 0) this->moveAsHelper(request);
  }

  std::mt19937 chance_;
  int lastProgram_ = 0;
  std::size_t helper_ = 0;
};

}  // namespace vorli
