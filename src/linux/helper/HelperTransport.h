#pragma once

#include "base/Scheduler.h"
#include "linux/helper/HelperNameWatch.h"
#include "linux/helper/SystemBus.h"
#include "ports/HelperTransport.h"

#include <memory>

namespace vorli::linuxhost {

class HelperEndpoint;

/// Connects to the daemon over the system bus. All connections share the program's one connection to the bus;
/// the main thread only queues requests.
class HelperTransport final : public ports::HelperTransport {
 public:
  HelperTransport(Scheduler& scheduler, SystemBus& bus, std::shared_ptr<HelperNameWatch> watch);

  /// `serviceName` must be that of the contract.
  std::unique_ptr<ports::HelperConnection> connect(std::string_view serviceName) override;

 private:
  Scheduler& scheduler_;
  SystemBus& bus_;
  std::shared_ptr<HelperNameWatch> watch_;
  std::shared_ptr<HelperEndpoint> endpoint_;
};

}  // namespace vorli::linuxhost
