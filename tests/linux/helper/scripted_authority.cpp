// Stands in for polkit and systemd on a private bus: scripted_authority FOLDER polkit|systemd. Answers as
// FOLDER/authority says, and writes each question to FOLDER/authority.log.

#include "linux/bus/Library.h"
#include "tests/linux/helper/Conduct.h"

#include <map>

namespace {

using vorli::scripted::Conduct;
namespace bus = vorli::linuxhost::bus;

using Details = std::map<std::string, std::string>;
using Subject = sdbus::Struct<std::string, std::map<std::string, sdbus::Variant>>;
using Verdict = sdbus::Struct<bool, bool, Details>;

constexpr const char* polkitInterface = "org.freedesktop.PolicyKit1.Authority";
constexpr const char* managerInterface = "org.freedesktop.systemd1.Manager";
constexpr const char* unitPath = "/org/freedesktop/systemd1/unit/vorli_2dhelper_2eservice";

Verdict verdictNamed(const std::string& word) {
  if (word == "yes") return {true, false, {}};
  if (word == "challenge") return {false, true, {}};
  if (word == "dismissed") return {false, false, {{"polkit.dismissed", "true"}}};
  if (word == "unregistered") {
    throw sdbus::Error(bus::ErrorName("org.freedesktop.PolicyKit1.Error.Failed"),
                       "Action com.kv.vorli.helper.purge-memory is not registered");
  }
  return {false, false, {}};
}

void servePolkit(sdbus::IConnection& connection, const std::string& folder) {
  const Conduct conduct(folder + "/authority");
  const std::string log = folder + "/authority.log";
  auto object = bus::object(connection, "/org/freedesktop/PolicyKit1/Authority");
  bus::addMethod(*object, polkitInterface, "CheckAuthorization",
                 [&](const Subject& subject, const std::string& action, const Details&,
                     const std::uint32_t& flags, const std::string&) {
                   const std::string verb = action.substr(action.rfind('.') + 1);
                   const bool asksUser = (flags & 1) != 0;
                   const std::string word = conduct.text(verb + (asksUser ? "_prompt" : ""), "yes");
                   // Comes second: a test may change the script as soon as it sees the line.
                   Conduct::note(log, std::get<0>(subject) + " " + verb + (asksUser ? " prompt" : ""));
                   return verdictNamed(word);
                 });
  bus::addSignal(*object, polkitInterface, "Changed");
  // Lets the test announce that rules have changed.
  bus::addMethod(*object, "com.kv.vorli.Test", "Touch",
                 [&] { object->emitSignal("Changed").onInterface(polkitInterface); });
  bus::publish(*object);
  connection.requestName(bus::ServiceName("org.freedesktop.PolicyKit1"));
  connection.enterEventLoop();
}

void serveSystemd(sdbus::IConnection& connection, const std::string& folder) {
  const Conduct conduct(folder + "/authority");
  auto manager = bus::object(connection, "/org/freedesktop/systemd1");
  bus::addMethod(*manager, managerInterface, "LoadUnit", [&](const std::string& unit) {
    Conduct::note(folder + "/authority.log", "LoadUnit " + unit);
    const std::string failure = conduct.text("load_unit_error", "");
    if (!failure.empty()) throw sdbus::Error(bus::ErrorName(failure), "scripted");
    return sdbus::ObjectPath(unitPath);
  });
  bus::publish(*manager);
  auto unit = bus::object(connection, unitPath);
  bus::addProperty(*unit, "org.freedesktop.systemd1.Unit", "LoadState",
                   [&] { return conduct.text("load_state", "loaded"); });
  bus::publish(*unit);
  connection.requestName(bus::ServiceName("org.freedesktop.systemd1"));
  connection.enterEventLoop();
}

}  // namespace

int main(int, char** arguments) {
  auto connection = sdbus::createSystemBusConnection();
  const std::string folder = arguments[1];
  if (std::string(arguments[2]) == "polkit") {
    servePolkit(*connection, folder);
  } else {
    serveSystemd(*connection, folder);
  }
}
