#pragma once

#include "ports/Files.h"

#include <map>
#include <set>

namespace vorli::fakes {

/// A disk in memory that a test can make fail.
class Files final : public ports::Files {
 public:
  bool createFolder(const std::string& path) override {
    createdFolders.push_back(path);
    if (isReadOnly) return false;
    folders.insert(path);
    return true;
  }

  std::optional<std::uint64_t> size(const std::string& path) override {
    const auto found = contents.find(path);
    if (found == contents.end()) return std::nullopt;
    return found->second.size();
  }

  std::optional<std::string> read(const std::string& path, std::size_t largest) override {
    const auto found = contents.find(path);
    if (found == contents.end() || found->second.size() > largest || unreadable.contains(path)) {
      return std::nullopt;
    }
    return found->second;
  }

  bool append(const std::string& path, std::string_view bytes) override {
    if (isReadOnly || !folders.contains(folderOf(path))) return false;
    contents[path] += bytes;
    return true;
  }

  bool clear(const std::string& path) override {
    const auto found = contents.find(path);
    if (isReadOnly || found == contents.end()) return false;
    found->second.clear();
    return true;
  }

  std::expected<void, std::string> move(const std::string& from, const std::string& to) override {
    if (folders.contains(to)) return std::unexpected("Is a directory");
    auto node = contents.extract(from);
    if (!node) return std::unexpected("No such file or directory");
    if (isReadOnly || !folders.contains(folderOf(to))) {
      contents.insert(std::move(node));
      return std::unexpected(isReadOnly ? "Read-only file system" : "No such file or directory");
    }
    contents.insert_or_assign(to, std::move(node.mapped()));
    return {};
  }

  std::optional<std::vector<ports::FolderEntry>> list(const std::string& folder) override {
    if (!folders.contains(folder)) return std::nullopt;
    std::vector<ports::FolderEntry> entries;
    for (const auto& [path, bytes] : contents) {
      const auto name = path.substr(path.rfind('/') + 1);
      if (folderOf(path) != folder || name.starts_with('.')) continue;
      const auto date = modified.find(path);
      entries.push_back({name, date == modified.end() ? std::nullopt : std::optional(date->second)});
    }
    return entries;
  }

  std::map<std::string, std::string> contents;
  std::map<std::string, Date> modified;
  std::set<std::string> folders;
  std::set<std::string> unreadable;
  std::vector<std::string> createdFolders;  // as asked, in order
  bool isReadOnly = false;

 private:
  static std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }
};

}  // namespace vorli::fakes
