#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace vorli::linuxhost {

/// Size of a page on this machine, which the readers of a recording count with.
inline const auto pageBytes = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));

/// Values in the stat file of a process, without its name.
struct RecordedProcess {
  std::int32_t parent = 1;
  std::uint64_t userTicks = 0;
  std::uint64_t systemTicks = 0;
  std::uint64_t startTicks = 100;
  std::uint64_t virtualBytes = 4096000;
  std::uint64_t residentPages = 50;
};

/// A folder that stands in for the root of the file system, filled with a recording of tests/data. A test
/// changes its files in place, as the kernel would.
class RecordedTree {
 public:
  explicit RecordedTree(const std::string& recording = "") {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorli-tree-XXXXXX").string();
    root_ = std::filesystem::canonical(mkdtemp(pattern.data()));
    std::filesystem::create_directories(root_ / "proc");
    if (recording.empty()) return;
    const auto source = std::filesystem::path(VORLI_TEST_DATA) / recording;
    std::filesystem::copy(source, root_, std::filesystem::copy_options::recursive);
  }
  RecordedTree(const RecordedTree&) = delete;
  ~RecordedTree() { std::filesystem::remove_all(root_); }

  std::string root() const { return root_.string(); }
  std::filesystem::path path(const std::string& file) const { return root_ / file; }

  void write(const std::string& file, std::string_view text) const {
    std::filesystem::create_directories(path(file).parent_path());
    std::ofstream(path(file), std::ios::binary) << text;
  }
  void remove(const std::string& file) const { std::filesystem::remove_all(path(file)); }
  void replaceByFolder(const std::string& file) const {
    remove(file);
    std::filesystem::create_directories(path(file));
  }
  void replaceByFIFO(const std::string& file) const {
    remove(file);
    std::filesystem::create_directories(path(file).parent_path());
    mkfifo(path(file).c_str(), 0600);
  }

  static std::string statLine(std::int32_t pid, std::string_view name, const RecordedProcess& process = {}) {
    const auto number = [](auto value) { return std::to_string(value) + " "; };
    return number(pid) + "(" + std::string(name) + ") S " + number(process.parent) +
           "7 7 0 -1 4194560 11 12 13 14 " + number(process.userTicks) + number(process.systemTicks) +
           "901 902 20 0 1 0 " + number(process.startTicks) + number(process.virtualBytes) +
           number(process.residentPages) + "18446744073709551615 1 1 0 0 0 0 0 0 0 0 0 0 17 2 0 0 0 0 0\n";
  }

  void process(std::int32_t pid, std::string_view name, const RecordedProcess& process = {}) const {
    write("proc/" + std::to_string(pid) + "/stat", statLine(pid, name, process));
  }
  void program(std::int32_t pid, const std::string& target) const {
    const auto link = path("proc/" + std::to_string(pid) + "/exe");
    std::filesystem::remove(link);
    std::filesystem::create_directories(link.parent_path());
    std::filesystem::create_symlink(target, link);
  }

 private:
  std::filesystem::path root_;
};

}  // namespace vorli::linuxhost
