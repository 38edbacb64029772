#include "tests/linux/helper/PrivateBus.h"

#include "tests/linux/helper/Waiting.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace vorli {

namespace {

const char* const busConfiguration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path=FOLDER/socket</listen>
  <auth>EXTERNAL</auth>
  <servicedir>FOLDER/services</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    CALLS
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
  </policy>
  RULES
</busconfig>
)";

constexpr const char* everyCall = R"(<allow send_type="method_call"/>)";
// Refuses everything that no rule allows, like the system bus.
constexpr const char* listedCalls = R"(<deny send_type="method_call"/>
    <allow send_destination="org.freedesktop.DBus"/>
    <allow send_destination="org.freedesktop.PolicyKit1"/>)";

void replaceAll(std::string& text, std::string_view word, const std::string& by) {
  for (auto at = text.find(word); at != std::string::npos; at = text.find(word))
    text.replace(at, word.size(), by);
}

// The socket's file exists shortly before the bus listens.
bool listens(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool connected = connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  close(client);
  return connected;
}

int run(const std::string& command) {
  return std::system(command.c_str());
}

}  // namespace

PrivateBus::PrivateBus() {
  std::string pattern = std::filesystem::temp_directory_path() / "vorli-bus-XXXXXX";
  folder_ = mkdtemp(pattern.data());
  std::filesystem::create_directory(folder_ / "services");
  configure(everyCall, "");
  setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + folder_.string() + "/socket").c_str(), 1);
}

PrivateBus::~PrivateBus() {
  signalHelper(SIGKILL);
  authorities_.clear();
  daemon_.end();
  std::filesystem::remove_all(folder_);
}

void PrivateBus::applyShippedRules() {
  configure(listedCalls, "<include>" SHIPPED_BUS_RULES "</include>");
}

void PrivateBus::refuse(const std::string& member) {
  const std::string rule =
      R"(<deny send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus" send_member=")" +
      member + R"("/>)";
  configure(everyCall + rule, "");
}

void PrivateBus::configure(const std::string& calls, const std::string& rules) const {
  std::string configuration = busConfiguration;
  replaceAll(configuration, "FOLDER", folder_.string());
  replaceAll(configuration, "CALLS", calls);
  replaceAll(configuration, "RULES", rules);
  write("bus.conf", configuration);
}

void PrivateBus::start() {
  std::filesystem::remove(folder_ / "socket");
  // If the test dies, the bus ends with it, and so does everything that the bus has started.
  daemon_ = ChildProcess({"setpriv", "--pdeathsig", "KILL", "dbus-daemon",
                          "--config-file=" + (folder_ / "bus.conf").string(), "--nofork"},
                         folder_ / "bus.log");
  waitUntil([&] { return listens(folder_ / "socket"); });
}

void PrivateBus::install(const std::string& command) {
  write("services/com.kv.vorli.helper.service",
        "[D-BUS Service]\nName=com.kv.vorli.helper\nExec=" + command + "\nUser=root\n");
}

void PrivateBus::installScriptedHelper() {
  // A copy, which a test may remove.
  const auto program = folder_ / "scripted_helper";
  std::filesystem::copy_file(SCRIPTED_HELPER, program, std::filesystem::copy_options::overwrite_existing);
  install(program.string() + " " + folder_.string());
}

void PrivateBus::uninstall() {
  std::filesystem::remove(folder_ / "services/com.kv.vorli.helper.service");
}

void PrivateBus::reload() const {
  run("dbus-send --system --print-reply --dest=org.freedesktop.DBus / "
      "org.freedesktop.DBus.ReloadConfig >/dev/null");
}

void PrivateBus::startAuthority(const std::string& which) {
  authorities_.push_back(
      {which, ChildProcess({SCRIPTED_AUTHORITY, folder_.string(), which}, folder_ / "authority.out")});
  const std::string name = which == "polkit" ? "org.freedesktop.PolicyKit1" : "org.freedesktop.systemd1";
  waitUntil([&] {
    return run("dbus-send --system --print-reply --dest=org.freedesktop.DBus / "
               "org.freedesktop.DBus.NameHasOwner string:" +
               name + " | grep -q 'boolean true'") == 0;
  });
}

const ChildProcess& PrivateBus::authority(const std::string& which) const {
  return std::ranges::find(authorities_, which, &Authority::which)->process;
}

std::optional<pid_t> PrivateBus::ownerProcess(const std::string& name) const {
  const auto answer = folder_ / "owner";
  run("dbus-send --system --print-reply=literal --dest=org.freedesktop.DBus /org/freedesktop/DBus "
      "org.freedesktop.DBus.GetConnectionUnixProcessID string:" +
      name + " >" + answer.string() + " 2>/dev/null");
  std::ifstream file(answer);
  std::string type;
  pid_t pid = -1;
  if (file >> type >> pid) return pid;
  return std::nullopt;
}

void PrivateBus::tellOfChangedRules() const {
  run("dbus-send --system --print-reply --dest=org.freedesktop.PolicyKit1 "
      "/org/freedesktop/PolicyKit1/Authority com.kv.vorli.Test.Touch >/dev/null");
}

void PrivateBus::clearLogs() const {
  std::filesystem::remove(folder_ / "helper.log");
  std::filesystem::remove(folder_ / "authority.log");
}

pid_t PrivateBus::helperPid() const {
  pid_t pid = -1;
  for (const auto& line : helperLog()) {
    if (line.starts_with("pid ")) pid = std::atoi(line.c_str() + 4);
  }
  return pid;
}

void PrivateBus::signalHelper(int signal) const {
  if (const pid_t pid = helperPid(); pid > 0) ::kill(pid, signal);
}

void PrivateBus::wakeHelper() const {
  run("dbus-send --system --print-reply --dest=com.kv.vorli.helper /com/kv/vorli/helper "
      "com.kv.vorli.helper.Ping >/dev/null");
}

void PrivateBus::write(const std::string& name, const std::string& text) const {
  // Replaces the file atomically, because a scripted program may be reading it.
  std::ofstream(folder_ / (name + ".new")) << text;
  std::filesystem::rename(folder_ / (name + ".new"), folder_ / name);
}

std::vector<std::string> PrivateBus::lines(const std::string& name) const {
  std::vector<std::string> result;
  std::ifstream file(folder_ / name);
  for (std::string line; std::getline(file, line);) result.push_back(line);
  return result;
}

}  // namespace vorli
