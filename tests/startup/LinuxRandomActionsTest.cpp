#include "formats/PauseMarks.h"
#include "tests/startup/LinuxStartupFixture.h"
#include "tests/startup/RandomSequences.h"
#include "tests/startup/RandomUser.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vorli {
namespace {

/// A random user of the fake disk.
class LinuxRandomActions : public RandomUser<LinuxStartupFixture> {
 public:
  explicit LinuxRandomActions(unsigned seed) : RandomUser(seed) {
    for (const auto& path : movable) write(path);
    for (const auto& path : untouchable) write(path);
    for (const auto* name : {"one.service", "two.service"}) wanted(myUnits, name);
    for (const auto* name : {"three.service", "six.service"}) wanted(userUnits, name);
    for (const auto* name : {"four.service", "five.service"}) wanted(systemUnits, name);
    for (const auto& [path, file] : files.files)
      if (!isMovable(path)) atFirst_.emplace(path, file);
  }

 private:
  static inline const std::vector<std::string> movable{
      "/home/kim/.config/autostart/acme.desktop",  // alone
      "/home/kim/.config/autostart/tea.desktop",   // overrides the system's
      "/home/kim/.config/systemd/user/one.service",
      "/home/kim/.config/systemd/user/two.service",
      "/etc/systemd/user/six.service",
      "/etc/systemd/system/four.service"};
  static inline const std::vector<std::string> untouchable{
      "/etc/xdg/autostart/tea.desktop", "/etc/xdg/autostart/box.desktop", "/usr/lib/systemd/user/two.service",
      "/usr/lib/systemd/user/three.service", "/usr/lib/systemd/system/five.service"};

  static bool isMovable(const std::string& path) {
    return std::ranges::any_of(movable, [&](const auto& each) { return path.starts_with(each); });
  }

  void write(const std::string& path) {
    const auto program = nextProgram();
    const bool isEntry = path.contains(".desktop");
    const auto text = isEntry ? entry("Acme", program) : unit(program);
    // An earlier run of the program left entries with longer names marked.
    const bool isMarked = isEntry && !path.ends_with(".desktop");
    files.add(path, isMarked ? *formats::withPauseMarks(text, std::nullopt) : text);
    const auto suffix = path.find(isEntry ? ".desktop" : ".service");
    alive_[program] = {path.substr(0, suffix + 8), text};
  }

  void changeFromOutside() override {
    const auto path = movable[upTo(movable.size() - 1)] + endings[upTo(2)];
    if (const auto found = files.files.find(path); found != files.files.end()) {
      alive_.erase(programOf(found->second.content));
      files.files.erase(found);
    }
    if (oneIn(2)) write(path);
  }

  std::vector<std::string> locksOf(std::size_t degree) const override {
    const std::vector<std::vector<std::string>> locks{{"/etc/", "/usr/"}, {"/etc/", "/usr/", "/home/"}, {""}};
    return locks[degree];
  }

  void expectNothingLost() override {
    std::set<std::string> found;
    for (const auto& [path, file] : files.files) {
      const auto program = programOf(file.content);
      if (program.empty() || !isMovable(path)) continue;
      EXPECT_TRUE(found.insert(program).second) << program << " is there twice";
      expectKnown(path, file.content);
    }
    for (const auto& [path, file] : atFirst_) EXPECT_EQ(files.files[path], file) << path;
    std::erase_if(alive_, [&](const auto& each) {
      return !found.contains(each.first) && mayBeDeleted_.contains(each.second.first);
    });
    for (const auto& [program, known] : alive_)
      EXPECT_TRUE(found.contains(program) || atFirst_.contains(known.first)) << known.first << " is lost";
  }

  // Acts like the most eager session, which starts every file, whatever its suffix, unless it is hidden.
  bool entryStarts(const std::string& id) {
    const auto own = mine + id + ".desktop", system = shared + id + ".desktop";
    const auto isHidden = [&](const std::string& path) {
      return files.files[path].content.contains("Hidden=true");
    };
    for (const auto& ending : endings)
      if (files.files.contains(own + ending) && !isHidden(own + ending)) return true;
    return !files.files.contains(own) && files.files.contains(system);
  }

  bool unitStarts(const std::string& name, const std::vector<std::string>& folders) const {
    for (const auto& folder : folders) {
      const auto found = files.files.find(folder + name);
      if (found != files.files.end()) return !found->second.content.empty();
    }
    return false;
  }

  void expectTheTruth() override {
    for (const auto* id : {"acme", "tea", "box"}) expectRow(id, entryStarts(id));
    for (const auto* id : {"one.service", "two.service", "three.service", "six.service"})
      expectRow(id, unitStarts(id, {myUnits, userUnits, packagedUserUnits}));
    for (const std::string name : {"four.service", "five.service"})
      expectRow(name + "@system", unitStarts(name, {systemUnits, packagedSystemUnits}));
  }

  std::map<std::string, fakes::StartupFiles::File> atFirst_;  // everything that nobody may change
};

TEST(LinuxRandomActionsTest, noSequenceLosesDoublesOrChangesAFile) {
  runRandomSequences<LinuxRandomActions>(randomSequences());
}

}  // namespace
}  // namespace vorli
