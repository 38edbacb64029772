#include "linux/daemon/HelperObject.h"

#include "contract/ExitCode.h"
#include "contract/HelperProtocol.h"
#include "linux/bus/Library.h"

#include <exception>
#include <utility>

namespace vorli::linuxhost {

namespace {

void send(const sdbus::Result<std::int32_t, std::string>& result, const HelperReply& reply) noexcept {
  try {
    result.returnResults(reply.exitCode, reply.output);
  } catch (const std::exception&) {
    return;  // the caller is gone, or its queue is full: nobody waits for the answer
  }
}

}  // namespace

HelperObject::HelperObject(sdbus::IConnection& connection, daemon::RequestDesk& desk,
                           std::function<void()> called)
    : AdaptorInterfaces(connection, sdbus::ObjectPath(path)), desk_(desk), called_(std::move(called)) {
  registerAdaptor();
}

HelperObject::~HelperObject() {
  unregisterAdaptor();
}

std::string HelperObject::Ping() {
  called_();
  return "pong";
}

std::string HelperObject::Version() {
  called_();
  return std::string(helper::version);
}

void HelperObject::PurgeMemory(Result&& result) {
  submit(daemon::Method::purgeMemory, {}, std::move(result));
}

void HelperObject::FlushDNS(Result&& result) {
  submit(daemon::Method::flushDNS, {}, std::move(result));
}

void HelperObject::KillPID(Result&& result, std::int32_t pid, std::int32_t signal) {
  submit(daemon::Method::killPID, daemon::KillArguments{pid, signal}, std::move(result));
}

void HelperObject::DumpBTM(Result&& result) {
  submit(daemon::Method::dumpBTM, {}, std::move(result));
}

void HelperObject::MoveLaunchAgentPlist(Result&& result, std::string from, std::string to) {
  submit(daemon::Method::moveLaunchAgentPlist, daemon::MoveArguments{std::move(from), std::move(to)},
         std::move(result));
}

void HelperObject::submit(daemon::Method method, Arguments arguments, Result&& result) {
  auto held = std::make_shared<Result>(std::move(result));
  try {
    called_();
    daemon::Request request{method, bus::currentSender(getObject()), std::move(arguments)};
    desk_.submit(std::move(request),
                 OnceReply<HelperReply>([held](HelperReply reply) { send(*held, reply); }));
  } catch (const std::exception&) {
    send(*held, {helper::exit_code::internalError, "Internal error"});
  }
}

}  // namespace vorli::linuxhost
