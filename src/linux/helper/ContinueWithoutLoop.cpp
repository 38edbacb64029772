#include "linux/helper/ContinueWithoutLoop.h"

#include "base/Logger.h"
#include "contract/HelperMethods.h"
#include "contract/HelperProtocol.h"
#include "linux/helper/BusCalls.h"

#include <cstring>
#include <memory>
#include <string>
#include <systemd/sd-bus.h>

namespace vorli::linuxhost {

namespace {

constexpr Logger programLog{logSubsystem, "program"};

struct BusCloser {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};

// Returns 0 or a negative errno value.
int continueProcess(sd_bus* bus, std::int32_t pid) {
  const std::string name(helper::serviceName);
  sd_bus_message* reply = nullptr;
  int result = sd_bus_call_method(bus, name.c_str(), helperPath, name.c_str(), helper::method::killPID,
                                  nullptr, &reply, "ii", pid, helper::continueSignal);
  if (result < 0) return result;
  std::int32_t exitCode = 0;
  result = sd_bus_message_read(reply, "i", &exitCode);
  sd_bus_message_unref(reply);
  return result < 0 ? result : -exitCode;
}

}  // namespace

void continueWithoutLoop(const std::set<std::int32_t>& pids) {
  if (pids.empty()) return;
  sd_bus* opened = nullptr;
  const int result = sd_bus_open_system(&opened);
  const std::unique_ptr<sd_bus, BusCloser> bus(opened);
  if (result < 0) {
    programLog.error("stopped applications stay stopped: %{public}s", std::strerror(-result));
    return;
  }
  sd_bus_set_method_call_timeout(bus.get(), shortLimitMicroseconds);
  for (const auto pid : pids) {
    const int failure = continueProcess(bus.get(), pid);
    if (failure != 0) programLog.error("process %d stays stopped: error %d", pid, -failure);
  }
}

}  // namespace vorli::linuxhost
