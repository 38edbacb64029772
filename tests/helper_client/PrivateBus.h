#pragma once

#include "tests/helper_client/ChildProcess.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// A system bus of the test's own, in a folder of its own, with a scripted daemon that it can activate and
/// scripted authorities. Everything that looks for the system bus in this process finds this one.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

  /// Everything is allowed otherwise. Before the start.
  void applyShippedRules();
  /// Runs the bus, and returns when it listens.
  void start();
  const ChildProcess& daemon() const { return daemon_; }
  void kill() { daemon_.end(); }

  /// Makes the daemon's name activatable. Counts from the next start or `reload`.
  void install(const std::string& command);
  void installScriptedHelper();
  void uninstall();
  void reload() const;

  /// Starts a scripted authority, "polkit" or "systemd", and returns when its name is owned.
  void startAuthority(const std::string& which);
  const ChildProcess& authority(const std::string& which) const;
  void tellOfChangedRules() const;

  /// The process that owns the name; empty when nobody does.
  std::optional<pid_t> ownerProcess(const std::string& name) const;

  /// Sets how the scripted programs behave.
  void setHelper(const std::string& lines) const { write("helper", lines); }
  void setAuthority(const std::string& lines) const { write("authority", lines); }

  /// What the scripted daemon or the authorities noted.
  std::vector<std::string> helperLog() const { return lines("helper.log"); }
  std::vector<std::string> authorityLog() const { return lines("authority.log"); }
  void clearLogs() const;
  /// The process number of the daemon that the bus started last; -1 when it started none.
  pid_t helperPid() const;
  /// To the scripted daemon; nothing while none is known.
  void signalHelper(int signal) const;

 private:
  struct Authority {
    std::string which;
    ChildProcess process;
  };

  void configure(const std::string& calls, const std::string& rules) const;
  void write(const std::string& name, const std::string& text) const;
  std::vector<std::string> lines(const std::string& name) const;

  std::filesystem::path folder_;
  ChildProcess daemon_;
  std::vector<Authority> authorities_;
};

}  // namespace vorli
