// Stands in for the root daemon on a private bus: scripted_helper FOLDER. Answers as FOLDER/helper tells, and
// notes its process number and each request in FOLDER/helper.log.

#include "tests/helper_client/Conduct.h"

#include <array>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <unistd.h>

namespace {

using vorli::scripted::Conduct;
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
    while (connection.processPendingRequest()) {
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
  auto object = sdbus::createObject(*connection, "/com/kv/vorli/helper");
  object->registerMethod("Ping").onInterface(name).implementedAs(text("ping", "alive"));
  const auto version = text("version", "1.2.3");
  object->registerMethod(name, "Version", "", "s", [&](sdbus::MethodCall call) {
    if (conduct.number("version_is_a_number", 0) == 0) return version(Text(std::move(call)));
    auto answer = call.createReply();
    answer << std::int32_t{123};
    answer.send();
  });
  object->registerMethod("PurgeMemory").onInterface(name).implementedAs([&](Reply&& result) {
    reply(std::move(result), "purge", "purge");
    // As a daemon does that goes idle just now: the name first, then what it still owes.
    if (conduct.number("release_on_purge", 0) != 0) connection->releaseName(name);
  });
  object->registerMethod("FlushDNS").onInterface(name).implementedAs([&](Reply&& result) {
    reply(std::move(result), "flush", "flush");
  });
  object->registerMethod("DumpBTM").onInterface(name).implementedAs(
      [&](Reply&& result) { reply(std::move(result), "dump", "dump"); });
  object->registerMethod("KillPID").onInterface(name).implementedAs(
      [&](Reply&& result, const std::int32_t& pid, const std::int32_t& signal) {
        reply(std::move(result), "kill", "kill " + std::to_string(pid) + " " + std::to_string(signal));
      });
  object->registerMethod("MoveLaunchAgentPlist")
      .onInterface(name)
      .implementedAs([&](Reply&& result, const std::string& from, const std::string& to) {
        reply(std::move(result), "move", "move " + from + " " + to);
      });
  object->finishRegistration();
  Conduct::note(log, "pid " + std::to_string(getpid()));
  connection->requestName(name);
  try {
    serve(*connection);
  } catch (const sdbus::Error&) {
    return 0;  // the bus is gone
  }
}
