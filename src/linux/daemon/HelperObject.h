#pragma once

#include "daemon/RequestDesk.h"

#include <functional>
#include <helper_contract/HelperAdaptor.h>
#include <variant>

namespace vorli::linuxhost {

/// The object that callers see on the bus. It copies the arguments, passes them to the request desk and never
/// blocks. No exception may leave a handler: the bus library would end the process.
class HelperObject final : public sdbus::AdaptorInterfaces<com::kv::vorli::helper_adaptor> {
 public:
  static constexpr char path[] = "/com/kv/vorli/helper";

  /// `called` runs at each call, before it is handled.
  HelperObject(sdbus::IConnection& connection, daemon::RequestDesk& desk, std::function<void()> called);
  ~HelperObject();

 private:
  using Result = sdbus::Result<std::int32_t, std::string>;
  using Arguments = decltype(daemon::Request::arguments);

  std::string Ping() override;
  std::string Version() override;
  void PurgeMemory(Result&& result) override;
  void FlushDNS(Result&& result) override;
  void KillPID(Result&& result, std::int32_t pid, std::int32_t signal) override;
  void DumpBTM(Result&& result) override;
  void MoveLaunchAgentPlist(Result&& result, std::string from, std::string to) override;

  void submit(daemon::Method method, Arguments arguments, Result&& result);

  daemon::RequestDesk& desk_;
  std::function<void()> called_;
};

}  // namespace vorli::linuxhost
