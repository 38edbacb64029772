#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

class QSocketNotifier;

namespace vorli::linuxhost {

/// Reports the main processes of the units that desktops start applications in, by the control groups of the
/// user's service manager. Followed by inotify; never polls. The manager removes app.slice while it is empty,
/// and creates it again with the next unit. Reports nothing where no such manager runs. Main thread.
class ApplicationUnits {
 public:
  /// Calls `started` with the first process of each unit; for existing units, inside the constructor. `slice`
  /// is the folder of app.slice; `root` is the prefix of the paths in /proc.
  ApplicationUnits(std::string slice, std::function<void(std::int32_t pid)> started, std::string root = "");
  ~ApplicationUnits();
  ApplicationUnits(const ApplicationUnits&) = delete;
  ApplicationUnits& operator=(const ApplicationUnits&) = delete;

  /// Folder of app.slice of the user who runs this program.
  static std::string sliceOfThisUser();

 private:
  void readEvents();
  void readEvent(int watch, std::uint32_t mask, const char* name);
  void readFolder(const std::string& folder);
  void meet(const std::string& folder, std::string_view name);
  void lookInto(const std::string& unit);

  const std::string slice_;
  const std::function<void(std::int32_t)> started_;
  const std::string root_;
  int inotify_ = -1;
  int parent_ = -1;                     // watch of the folder in which app.slice is created
  std::map<int, std::string> folders_;  // watched slices
  std::map<int, std::string> empty_;    // watched units without a process
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::linuxhost
