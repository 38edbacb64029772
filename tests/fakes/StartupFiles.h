#pragma once

#include "ports/StartupFiles.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace vorli::fakes {

/// A disk in memory. A folder exists as soon as it contains a file.
class StartupFiles final : public ports::StartupFiles {
 public:
  struct File {
    std::string content;
    std::optional<Date> birth;
    bool isRegular = true;  // false for a pipe, a device or a folder
    bool isReadable = true;
    std::string link = {};  // a link's target, which is not followed

    bool operator==(const File&) const = default;
  };

  std::optional<std::vector<std::string>> visibleNames(const std::string& folder) override {
    listings.push_back(folder);
    if (unlistable.contains(folder)) return std::nullopt;
    std::vector<std::string> names;
    const std::string start = folder + "/";
    for (auto file = files.lower_bound(start); file != files.end(); ++file) {
      if (!file->first.starts_with(start)) break;
      const auto below = file->first.substr(start.size());
      auto name = below.substr(0, below.find('/'));
      if (!name.starts_with('.') && std::ranges::find(names, name) == names.end())
        names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
  }

  std::optional<std::string> read(const std::string& path, std::size_t limitBytes) override {
    reads.push_back(path);
    const auto found = files.find(path);
    if (found == files.end() || !found->second.isRegular || !found->second.isReadable) return std::nullopt;
    if (found->second.content.size() > limitBytes) return std::nullopt;
    return found->second.content;
  }

  bool exists(const std::string& path) override {
    ++looks;
    if (files.contains(path)) return true;
    const auto below = files.lower_bound(path + "/");
    return below != files.end() && below->first.starts_with(path + "/");
  }

  bool isMissing(const std::string& path) override { return !exists(path) && !isBelow(unseen, path); }

  std::optional<Date> birthTime(const std::string& path) override {
    const auto found = files.find(path);
    if (found == files.end()) return std::nullopt;
    return found->second.birth;
  }

  std::optional<std::string> linkTarget(const std::string& path) override {
    ++looks;
    const auto found = files.find(path);
    if (found == files.end() || found->second.link.empty()) return std::nullopt;
    return found->second.link;
  }

  ports::MoveResult moveWithoutReplacing(const std::string& from, const std::string& to) override {
    if (!files.contains(from)) return ports::MoveResult::sourceMissing;
    if (files.contains(to)) return ports::MoveResult::targetExists;
    if (isLocked(from) || isLocked(to)) return ports::MoveResult::failed;
    auto node = files.extract(from);
    node.key() = to;
    files.insert(std::move(node));
    return ports::MoveResult::moved;
  }

  bool rewrite(const std::string& path, const std::string& expected, const std::string& content) override {
    if (!isExpected(path, expected)) return false;
    files[path].content = content;
    files[path].birth = now;
    return true;
  }

  bool setAside(const std::string& path, const std::string& expected, const std::string& content,
                const std::string& aside) override {
    if (files.contains(aside) || isLocked(aside) || !isExpected(path, expected)) return false;
    files[aside] = files[path];
    return rewrite(path, expected, content);
  }

  bool putBack(const std::string& path, const std::string& expected, const std::string& aside) override {
    if (!files.contains(aside) || isLocked(aside) || !isExpected(path, expected)) return false;
    files[path] = files.extract(aside).mapped();
    return true;
  }

  bool create(const std::string& path, const std::string& content) override {
    if (isLocked(path) || files.contains(path)) return false;
    add(path, content, now);
    return true;
  }

  bool remove(const std::string& path) override { return !isLocked(path) && files.erase(path) > 0; }

  void add(const std::string& path, std::string content = {}, std::optional<Date> birth = std::nullopt) {
    files[path] = {std::move(content), birth};
  }

  void addLink(const std::string& path, const std::string& target) {
    files[path] = {.content = {}, .birth = std::nullopt, .link = target};
  }

  std::map<std::string, File> files;
  std::set<std::string> unlistable;
  /// Paths below which nothing may be changed; the empty one locks the whole disk.
  std::vector<std::string> locked;
  /// Paths below which the user may not read.
  std::vector<std::string> unseen;
  /// Creation time of each file that is written.
  Date now{1'000'000.0};
  std::vector<std::string> reads;
  std::vector<std::string> listings;
  int looks = 0;  // for a path or a link

 private:
  static bool isBelow(const std::vector<std::string>& starts, const std::string& path) {
    return std::ranges::any_of(starts, [&](const auto& start) { return path.starts_with(start); });
  }
  bool isLocked(const std::string& path) const { return isBelow(locked, path); }
  bool isExpected(const std::string& path, const std::string& expected) const {
    const auto found = files.find(path);
    if (isLocked(path) || found == files.end() || !found->second.isRegular) return false;
    return found->second.link.empty() && found->second.content == expected;
  }
};

}  // namespace vorli::fakes
