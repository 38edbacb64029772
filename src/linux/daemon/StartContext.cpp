#include "linux/daemon/StartContext.h"

#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

std::string variable(const char* name) {
  const char* value = ::secure_getenv(name);
  return value ? value : "";
}

}  // namespace

StartContext StartContext::take() {
  StartContext context;
  context.startedByServiceManager = variable("SYSTEMD_EXEC_PID") == std::to_string(::getpid());
  if (context.startedByServiceManager) {
    context.journalStream = variable("JOURNAL_STREAM");
  }
  // A message bus that starts a service itself passes its type and address in the environment.
  std::string starter;
  if (!context.startedByServiceManager && variable("DBUS_STARTER_BUS_TYPE") == "system")
    starter = variable("DBUS_STARTER_ADDRESS");

  ::clearenv();
  if (!starter.empty()) ::setenv("DBUS_SYSTEM_BUS_ADDRESS", starter.c_str(), 1);
  return context;
}

}  // namespace vorli::linuxhost
