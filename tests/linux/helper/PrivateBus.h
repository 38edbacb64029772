#pragma once

#include "tests/linux/helper/ChildProcess.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vorli {

/// A private system bus in its own folder, with a scripted daemon that it can activate and scripted
/// authorities. Everything in this process that looks for the system bus finds this one.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

  /// Applies the shipped rules; without them the bus allows everything. Call it before the start.
  void applyShippedRules();
  /// Makes the bus refuse this question to itself. Call it before the start.
  void refuse(const std::string& member);
  /// Starts the bus, and returns when it listens.
  void start();
  const ChildProcess& daemon() const { return daemon_; }
  void kill() { daemon_.end(); }

  /// Makes the daemon's name activatable, from the next start or `reload` on.
  void install(const std::string& command);
  void installScriptedHelper();
  void uninstall();
  void reload() const;

  /// Starts a scripted authority, "polkit" or "systemd", and returns when its name is owned.
  void startAuthority(const std::string& which);
  const ChildProcess& authority(const std::string& which) const;
  void tellOfChangedRules() const;

  /// The process that owns the name, or empty.
  std::optional<pid_t> ownerProcess(const std::string& name) const;

  /// Sets how the scripted programs behave.
  void setHelper(const std::string& lines) const { write("helper", lines); }
  void setAuthority(const std::string& lines) const { write("authority", lines); }

  /// Lines that the scripted daemon or the authorities have written.
  std::vector<std::string> helperLog() const { return lines("helper.log"); }
  std::vector<std::string> authorityLog() const { return lines("authority.log"); }
  void clearLogs() const;
  /// Process id of the daemon that the bus started last, or -1.
  pid_t helperPid() const;
  /// Sends a signal to the scripted daemon, if there is one.
  void signalHelper(int signal) const;
  /// Starts the daemon, and returns when it answers.
  void wakeHelper() const;

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
