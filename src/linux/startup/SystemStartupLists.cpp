#include "linux/startup/SystemStartupLists.h"

#include "linux/startup/SystemTool.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <systemd/sd-bus.h>

namespace vorli::linuxhost {

namespace {

constexpr std::uint64_t answerMicroseconds = 5'000'000;

struct CloseBus {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct DropMessage {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, CloseBus>;
using Message = std::unique_ptr<sd_bus_message, DropMessage>;

// Makes a separate connection, because this runs on a worker and may wait.
Bus connect(const std::string& address) {
  sd_bus* made = nullptr;
  if (sd_bus_new(&made) < 0) return nullptr;
  Bus bus(made);
  const char* const fromSession = getenv("DBUS_SESSION_BUS_ADDRESS");
  const char* const where = !address.empty() ? address.c_str() : fromSession;
  if (!where || sd_bus_set_address(made, where) < 0 || sd_bus_set_bus_client(made, 1) < 0) return nullptr;
  return sd_bus_start(made) < 0 ? nullptr : std::move(bus);
}

Message ask(sd_bus* bus) {
  sd_bus_message* made = nullptr;
  if (sd_bus_message_new_method_call(bus, &made, "org.freedesktop.impl.portal.PermissionStore",
                                     "/org/freedesktop/impl/portal/PermissionStore",
                                     "org.freedesktop.impl.portal.PermissionStore", "Lookup") < 0)
    return nullptr;
  const Message call(made);
  if (sd_bus_message_append(made, "ss", "background", "background") < 0) return nullptr;
  sd_bus_message* answer = nullptr;
  if (sd_bus_call(bus, made, answerMicroseconds, nullptr, &answer) < 0) return nullptr;
  return Message(answer);
}

std::optional<ports::BackgroundPermission> readPermission(sd_bus_message* answer) {
  if (sd_bus_message_enter_container(answer, 'e', "sas") <= 0) return std::nullopt;
  const char* application = nullptr;
  if (sd_bus_message_read(answer, "s", &application) < 0) return std::nullopt;
  ports::BackgroundPermission permission{.applicationIdentifier = application};
  if (sd_bus_message_enter_container(answer, 'a', "s") < 0) return std::nullopt;
  for (const char* word = nullptr; sd_bus_message_read(answer, "s", &word) > 0;)
    permission.isAllowed = permission.isAllowed || std::string_view(word) == "yes";
  if (sd_bus_message_exit_container(answer) < 0 || sd_bus_message_exit_container(answer) < 0)
    return std::nullopt;
  return permission;
}

}  // namespace

std::optional<std::string> SystemStartupLists::crontab() {
  auto result = runTool(QStringLiteral("crontab"), {QStringLiteral("-l")});
  if (!result || result->exitCode != 0) return std::nullopt;
  return std::move(result->output);
}

std::vector<ports::BackgroundPermission> SystemStartupLists::backgroundPermissions() {
  std::vector<ports::BackgroundPermission> permissions;
  const auto bus = connect(busAddress_);
  const auto answer = bus ? ask(bus.get()) : nullptr;
  if (!answer || sd_bus_message_enter_container(answer.get(), 'a', "{sas}") <= 0) return permissions;
  while (auto permission = readPermission(answer.get())) permissions.push_back(std::move(*permission));
  return permissions;
}

}  // namespace vorli::linuxhost
