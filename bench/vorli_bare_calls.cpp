// vorli_bare_calls serve                         a service with one method; prints its address on the bus
// vorli_bare_calls call NAME OBJECT INTERFACE COUNT
//                                                calls NAME's Ping COUNT times, one call after the other;
//                                                prints microseconds as JSON
// vorli_bare_calls first NAME OBJECT INTERFACE   makes a single call, with none before it
//
// All of them use the bus that DBUS_SYSTEM_BUS_ADDRESS names.

#include "linux/bus/Library.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace bus = vorli::linuxhost::bus;

namespace {

constexpr int exitWrongCall = 64;
constexpr int warmUps = 50;

int serve() {
  const auto connection = sdbus::createSystemBusConnection();
  const auto object = bus::object(*connection, "/floor");
  bus::addMethod(*object, "test.Floor", "Ping", [] { return std::string("pong"); });
  bus::publish(*object);
  std::printf("%s\n", connection->getUniqueName().c_str());
  std::fflush(stdout);
  connection->enterEventLoop();
  return EXIT_SUCCESS;
}

int call(const std::string& name, const std::string& path, const std::string& interface, int unmeasured,
         int count) {
  const auto proxy =
      sdbus::createProxy(sdbus::createSystemBusConnection(), bus::ServiceName(name), sdbus::ObjectPath(path));
  std::vector<double> microseconds;
  for (int i = 0; i < unmeasured + count; ++i) {
    const auto start = std::chrono::steady_clock::now();
    std::string reply;
    proxy->callMethod("Ping").onInterface(interface).storeResultsTo(reply);
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
    if (i >= unmeasured) microseconds.push_back(took.count());
  }
  std::printf("[");
  for (std::size_t i = 0; i < microseconds.size(); ++i) std::printf("%s%.2f", i ? ", " : "", microseconds[i]);
  std::printf("]\n");
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view command = argc > 1 ? argv[1] : "";
  try {
    if (command == "serve" && argc == 2) return serve();
    if (command == "call" && argc == 6) return call(argv[2], argv[3], argv[4], warmUps, std::atoi(argv[5]));
    if (command == "first" && argc == 5) return call(argv[2], argv[3], argv[4], 0, 1);
  } catch (const sdbus::Error& error) {
    std::fprintf(stderr, "vorli_bare_calls: %s\n", error.what());
    return EXIT_FAILURE;
  }
  std::fprintf(stderr,
               "vorli_bare_calls: serve | call NAME OBJECT INTERFACE COUNT | first NAME OBJECT INTERFACE\n");
  return exitWrongCall;
}
