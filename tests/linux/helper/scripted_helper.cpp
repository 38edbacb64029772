// Stands in for the root daemon on a private bus: scripted_helper FOLDER. Answers as FOLDER/helper says, and
// writes its process id and each request to FOLDER/helper.log.

#include "linux/bus/Library.h"
#include "tests/linux/helper/Conduct.h"

#include <array>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <poll.h>
#include <unistd.h>

namespace {

using vorli::scripted::Conduct;
namespace bus = vorli::linuxhost::bus;
using Clock = std::chrono::steady_clock;

constexpr const char* name = "com.kv.vorli.helper";

std::multimap<Clock::time_point, std::function<void()>> answersDue;

template <typename... Values>
void answerLater(int milliseconds, sdbus::Result<Values...>&& result, Values... values) {
  if (milliseconds < 0) return;  // never
  auto shared = std::make_shared<sdbus::Result<Values...>>(std::move(result));
  answersDue.emplace(Clock::now() + std::chrono::milliseconds(milliseconds),
                     [shared, values...] { shared->returnResults(values...); });
}

void giveDueAnswers() {
  while (!answersDue.empty() && answersDue.begin()->first <= Clock::now()) {
    const auto answer = answersDue.extract(answersDue.begin());
    answer.mapped()();
  }
}

int millisecondsToNextAnswer() {
  if (answersDue.empty()) return -1;
  const auto left = answersDue.begin()->first - Clock::now();
  return std::max(0, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count()));
}

void serve(sdbus::IConnection& connection) {
  for (;;) {
    while (bus::processNext(connection)) {
    }
    giveDueAnswers();
    const auto data = connection.getEventLoopPollData();
    pollfd socket{data.fd, data.events, 0};
    const int busTimeout = data.getPollTimeout();
    const int ownTimeout = millisecondsToNextAnswer();
    poll(&socket, 1,
         busTimeout < 0 || (ownTimeout >= 0 && ownTimeout < busTimeout) ? ownTimeout : busTimeout);
  }
}

using Text = sdbus::Result<std::string>;
using Reply = sdbus::Result<std::int32_t, std::string>;

}  // namespace

int main(int, char** arguments) {
  const std::string folder = arguments[1];
  const std::string log = folder + "/helper.log";
  const Conduct conduct(folder + "/helper");

  const auto text = [&](const std::string& key, const std::string& fallback) {
    return [&, key, fallback](Text&& result) {
      Conduct::note(log, key);
      answerLater(conduct.number(key + "_ms", 0), std::move(result), conduct.text(key, fallback));
    };
  };
  const auto reply = [&](Reply&& result, const std::string& key, const std::string& request) {
    Conduct::note(log, request);
    const int bytes = conduct.number(key + "_bytes", 0);
    answerLater(conduct.number(key + "_ms", 0), std::move(result), conduct.number(key + "_code", 0),
                bytes > 0 ? std::string(static_cast<std::size_t>(bytes), 'x') : conduct.text(key, "done"));
  };

  auto connection = sdbus::createSystemBusConnection();
  auto object = bus::object(*connection, "/com/kv/vorli/helper");
  const auto add = [&](const std::string& method, auto implementation) {
    bus::addMethod(*object, name, method, std::move(implementation));
  };
  add("Ping", text("ping", "alive"));
  if (conduct.number("version_is_a_number", 0) == 0) {
    add("Version", text("version", "1.2.3"));
  } else {
    add("Version", [] { return std::int32_t{123}; });
  }
  add("PurgeMemory", [&](Reply&& result) {
    reply(std::move(result), "purge", "purge");
    // Acts like a daemon that exits when idle: releases the name first, then answers the pending calls.
    if (conduct.number("release_on_purge", 0) != 0) connection->releaseName(bus::ServiceName(name));
  });
  add("FlushDNS", [&](Reply&& result) { reply(std::move(result), "flush", "flush"); });
  add("DumpBTM", [&](Reply&& result) { reply(std::move(result), "dump", "dump"); });
  add("KillPID", [&](Reply&& result, const std::int32_t& pid, const std::int32_t& signal) {
    reply(std::move(result), "kill", "kill " + std::to_string(pid) + " " + std::to_string(signal));
  });
  add("MoveLaunchAgentPlist", [&](Reply&& result, const std::string& from, const std::string& to) {
    reply(std::move(result), "move", "move " + from + " " + to);
  });
  bus::publish(*object);
  Conduct::note(log, "pid " + std::to_string(getpid()));
  connection->requestName(bus::ServiceName(name));
  try {
    serve(*connection);
  } catch (const sdbus::Error&) {
    return 0;  // the bus is gone
  }
}
