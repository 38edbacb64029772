#include "formats/PauseMarks.h"
#include "tests/linux/startup/StartupOnDiskFixture.h"
#include "tests/startup/RandomSequences.h"
#include "tests/startup/RandomUser.h"

#include <algorithm>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace vorli::linuxhost {
namespace {

namespace fs = std::filesystem;

/// A random user of a real folder.
class SequenceOnDisk : public RandomUser<StartupOnDiskFixture> {
 public:
  explicit SequenceOnDisk(unsigned seed) : RandomUser(seed) {
    for (const auto& file : movable) write(file);
    for (const auto& file : fixed) write(file);
    for (const auto& file : fixed) atFirst_[file] = contentOf(tree.path(file));
    fs::create_symlink("../../dotfiles/cup.desktop", tree.path(cup));
    for (const auto& [folder, name] : wishes) want(folder, name);
    lists.table = "@reboot /opt/nine\n";
    files.locked = locksOf(0);
    units.whenCalled = [this](const std::string& call) {
      if (units.answer == ports::UnitReply::done) maskAsManager(call);
    };
  }

 private:
  static inline const std::string autostart = "home/.config/autostart/";
  static inline const std::string cup = autostart + "cup.desktop";  // a link into the dotfiles
  static inline const std::vector<std::string> movable{
      autostart + "acme.desktop",  // alone
      autostart + "tea.desktop",   // overrides the system's
      "home/.config/systemd/user/one.service",
      "home/.config/systemd/user/two.service",  // overrides a package's
      "etc/systemd/user/six.service",
      "etc/systemd/system/four.service"};
  static inline const std::vector<std::string> fixed{
      "etc/xdg/autostart/tea.desktop",       "etc/xdg/autostart/box.desktop",
      "home/dotfiles/cup.desktop",           "usr/lib/systemd/user/two.service",
      "usr/lib/systemd/user/three.service",  "usr/lib/systemd/user/seven@.service",
      "usr/lib/systemd/user/eight.service",  "usr/lib/systemd/user/eight.timer",
      "usr/lib/systemd/system/five.service",
  };
  static inline const std::vector<std::pair<std::string, std::string>> wishes{
      {"home/.config/systemd/user", "one.service"},
      {"home/.config/systemd/user", "two.service"},
      {"etc/systemd/user", "three.service"},
      {"etc/systemd/user", "six.service"},
      {"home/.config/systemd/user", "seven@one.service"},
      {"etc/systemd/user", "eight.timer"},
      {"etc/systemd/system", "four.service"},
      {"etc/systemd/system", "five.service"}};

  static std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator(in), {}};
  }

  void write(const std::string& file) {
    const auto program = nextProgram();
    const bool isEntry = file.contains(".desktop"), isTimer = file.ends_with(".timer");
    const auto text = isEntry ? "[Desktop Entry]\nType=Application\nName=Acme\nExec=/bin/sh " + program + "\n"
                      : isTimer ? "[Timer]\nOnCalendar=daily\n# " + program + "\n"
                                : "[Unit]\nDescription=Acme\n[Service]\nExecStart=/bin/sh " + program + "\n";
    // An earlier run of the program left entries with longer names marked.
    const bool isMarked = isEntry && !file.ends_with(".desktop");
    tree.write(file, isMarked ? *formats::withPauseMarks(text, std::nullopt) : text);
    chmod(path(file).c_str(), 0640);
    const timespec times[]{{1000, 5}, {2000, 7}};
    utimensat(AT_FDCWD, path(file).c_str(), times, 0);
    const auto place =
        std::ranges::find_if(movable, [&](const auto& each) { return file.starts_with(each); });
    if (place != movable.end()) alive_[program] = {*place, text};
  }

  void want(const std::string& folder, const std::string& name) const {
    fs::create_directories(tree.path(folder + "/default.target.wants"));
    fs::create_symlink("../" + name, tree.path(folder + "/default.target.wants/" + name));
  }

  void changeFromOutside() override {
    const auto file = movable[upTo(movable.size() - 1)] + endings[upTo(2)];
    if (fs::is_symlink(tree.path(file))) return;  // a mask of the manager's
    if (fs::exists(tree.path(file))) alive_.erase(programOf(contentOf(tree.path(file))));
    fs::remove(tree.path(file));
    if (oneIn(2)) write(file);
  }

  std::vector<std::string> locksOf(std::size_t degree) const override {
    if (degree == 2) return {tree.root()};
    std::vector<std::string> locks{path("etc/"), path("usr/")};
    if (degree == 1) locks.push_back(path("home/"));
    return locks;
  }

  void expectNothingLost() override {
    std::set<std::string> found;
    for (const auto& each : fs::recursive_directory_iterator(tree.root())) {
      const auto file = fs::relative(each.path(), tree.root()).string();
      if (each.is_symlink() || !each.is_regular_file() || atFirst_.contains(file)) continue;
      const auto content = contentOf(each.path());
      if (each.path().filename().string().starts_with('.')) {
        EXPECT_TRUE(file.ends_with(".vorli-original")) << file << " was left behind";
      } else if (!programOf(content).empty() && !content.contains("X-Vorli-Copy=true")) {
        expectSame(file, content);
        EXPECT_TRUE(found.insert(programOf(content)).second) << file << " is there twice";
      }
    }
    for (const auto& [file, content] : atFirst_) EXPECT_EQ(contentOf(tree.path(file)), content) << file;
    std::erase_if(alive_, [&](const auto& each) {
      return !found.contains(each.first) && mayBeDeleted_.contains(path(each.second.first));
    });
    for (const auto& [program, known] : alive_)
      EXPECT_TRUE(found.contains(program)) << known.first << " is lost";
    expectOneLink();
  }

  void expectSame(const std::string& file, const std::string& content) const {
    expectKnown(file, content);
    const auto info = fileStatus(file);
    EXPECT_EQ(info.st_mode & 07777u, 0640u) << file;
    EXPECT_EQ(info.st_mtim.tv_sec, 2000) << file;
  }

  void expectOneLink() const {
    int count = 0;
    for (const auto& name : {"cup.desktop", ".cup.desktop.vorli-link", ".cup.desktop.vorli-removed"})
      count += fs::is_symlink(tree.path(autostart + name)) ? 1 : 0;
    EXPECT_LE(count, 1);
    EXPECT_TRUE(count == 1 || mayBeDeleted_.contains(path(cup))) << "the link is lost";
  }

  // Acts like the most eager session, which starts every file, whatever its suffix, unless it is hidden.
  bool entryStarts(const std::string& id) const {
    const auto name = id + ".desktop";
    for (const auto& each : fs::directory_iterator(tree.path(autostart))) {
      const bool isOfItem = each.path().filename().string().starts_with(name);
      if (isOfItem && !contentOf(each.path()).contains("Hidden=true")) return true;
    }
    return !fs::exists(tree.path(autostart + name)) && fs::exists(tree.path("etc/xdg/autostart/" + name));
  }

  bool unitStarts(const std::string& name, const std::vector<ports::UnitFolder>& folders) const {
    const auto general = name.substr(0, name.find('@') + 1) + ".service";
    for (const auto& folder : folders)
      if (fs::symlink_status(folder.path + "/" + name).type() != fs::file_type::not_found)
        return !contentOf(folder.path + "/" + name).empty();
    return name.contains('@') && std::ranges::any_of(folders, [&](const auto& folder) {
             return fs::exists(folder.path + "/" + general);
           });
  }

  void expectTheTruth() override {
    for (const auto* id : {"acme", "tea", "box", "cup"}) expectRow(id, entryStarts(id));
    for (const auto* name :
         {"one.service", "two.service", "three.service", "six.service", "seven@one.service", "eight.service"})
      expectRow(name, unitStarts(name, places.userUnits));
    for (const std::string name : {"four.service", "five.service"})
      expectRow(name + "@system", unitStarts(name, places.systemUnits));
    expectRow("nine@reboot", true);
  }

  std::map<std::string, std::string> atFirst_;  // contents that nobody may change
};

TEST(StartupSequencesOnDiskTest, noSequenceLosesDoublesOrChangesAFile) {
  runRandomSequences<SequenceOnDisk>(randomSequences(100));
}

}  // namespace
}  // namespace vorli::linuxhost
