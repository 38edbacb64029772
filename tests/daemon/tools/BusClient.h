#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <sys/syscall.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace vorli::helpertest {

constexpr char service[] = "com.kv.vorli.helper";
constexpr char object[] = "/com/kv/vorli/helper";
constexpr std::uint64_t patience = 30'000'000;  // microseconds
/// Limit for callers who are served among attackers. A busy machine takes most of a minute to work through
/// what the bus may keep for the daemon.
constexpr std::uint64_t patienceInACrowd = 120'000'000;

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Unreference {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, Unreference>;
using Message = std::unique_ptr<sd_bus_message, Unreference>;

[[noreturn]] inline void giveUp(const std::string& what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  std::exit(1);
}

/// A private connection. For a user other than root, the calling thread alone becomes that user for good.
inline Bus connect(uid_t user = 0) {
  if (user != 0 && ::syscall(SYS_setresuid, user, user, user) != 0) giveUp("cannot become another user");
  sd_bus* bus = nullptr;
  if (sd_bus_open_system(&bus) < 0) return nullptr;
  return Bus(bus);
}

struct Reply {
  bool isAnswer = false;
  std::int32_t exitCode = 0;
  std::string text;
};

inline Reply replyOf(sd_bus_message* message) {
  if (const auto* error = sd_bus_message_get_error(message)) return {false, 0, error->name};
  std::int32_t code = 0;
  const char* text = "";
  if (sd_bus_message_has_signature(message, "is")) {
    sd_bus_message_read(message, "is", &code, &text);
  } else if (sd_bus_message_read(message, "s", &text) < 0) {
    return {false, 0, "unreadable"};
  }
  return {true, code, text};
}

inline Message request(const Bus& bus, const char* method) {
  sd_bus_message* message = nullptr;
  sd_bus_message_new_method_call(bus.get(), &message, service, object, service, method);
  return Message(message);
}

inline Message moveRequest(const Bus& bus, const std::string& from, const std::string& to) {
  auto message = request(bus, "MoveLaunchAgentPlist");
  sd_bus_message_append(message.get(), "ss", from.c_str(), to.c_str());
  return message;
}

inline Reply send(const Bus& bus, const Message& message, std::uint64_t limit = patience) {
  sd_bus_error error = SD_BUS_ERROR_NULL;
  sd_bus_message* answer = nullptr;
  const int result = sd_bus_call(bus.get(), message.get(), limit, &error, &answer);
  Reply reply{false, 0, error.name ? error.name : "unsent"};
  if (result >= 0) reply = replyOf(answer);
  sd_bus_message_unref(answer);
  sd_bus_error_free(&error);
  return reply;
}

inline Reply call(const Bus& bus, const char* method, std::uint64_t limit = patience) {
  return send(bus, request(bus, method), limit);
}

}  // namespace vorli::helpertest
