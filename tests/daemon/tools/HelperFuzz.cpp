// Sends the daemon messages that no honest client sends: vorli_helper_fuzz COUNT SEED [MEBIBYTES...]. Prints
// figures as `name value`. After COUNT messages it sends texts of these sizes, by default 1, 8 and 31 MiB.

#include "BusClient.h"
#include "Figures.h"

#include <random>
#include <string>
#include <vector>

namespace vorli::helpertest {
namespace {

constexpr int window = 200;  // messages between two looks at whether the daemon still answers

class Fuzzer {
 public:
  explicit Fuzzer(unsigned seed) : random_(seed) {}

  Message message(const Bus& bus) {
    static const std::vector<std::string> methods{
        "Ping",       "Version", "PurgeMemory", "FlushDNS", "KillPID", "DumpBTM", "MoveLaunchAgentPlist",
        "Introspect", "Get",     "GetAll",      "Nothing",  "ping"};
    static const std::vector<std::string> interfaces{service,
                                                     service,
                                                     service,
                                                     service,
                                                     "org.freedesktop.DBus.Introspectable",
                                                     "org.freedesktop.DBus.Properties",
                                                     "org.freedesktop.DBus.Peer",
                                                     "com.kv.vorli.other"};
    static const std::vector<std::string> paths{
        object, object, object, object, "/", "/com", "/com/kv/vorli/helper/x"};
    sd_bus_message* raw = nullptr;
    const auto& interface = pick(interfaces);
    sd_bus_message_new_method_call(bus.get(), &raw, service, pick(paths).c_str(),
                                   below(10) == 0 ? nullptr : interface.c_str(), pick(methods).c_str());
    Message result(raw);
    sd_bus_message_set_expect_reply(raw, below(2) == 0);
    if (below(3) == 0) {
      sd_bus_message_append(raw, "ii", integer(), integer());
    } else if (below(2) == 0) {
      sd_bus_message_append(raw, "ss", text().c_str(), text().c_str());
    } else {
      for (int i = below(5); i > 0; --i) append(raw, 3);
    }
    return result;
  }

 private:
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  const std::string& pick(const std::vector<std::string>& choices) {
    return choices[random_() % choices.size()];
  }
  std::int32_t integer() {
    static const std::vector<std::int32_t> edges{0, 1, -1, 2, 9, 15, 18, 19, INT32_MAX, INT32_MIN};
    return below(2) ? edges[random_() % edges.size()] : static_cast<std::int32_t>(random_());
  }
  // Returns a path made of pieces of real paths, so that many pass the first checks; never the whole path of
  // something that exists.
  std::string text() {
    static const std::vector<std::string> pieces{"/etc/xdg/autostart",
                                                 "/etc/systemd/system",
                                                 "/",
                                                 "/fuzz",
                                                 ".desktop",
                                                 ".service",
                                                 ".vorli-disabled",
                                                 ".vorli-removed",
                                                 "..",
                                                 "\n",
                                                 "\x1b[2J",
                                                 "%s%n",
                                                 "\xc3\xa4",
                                                 "a",
                                                 "\\",
                                                 "//",
                                                 "'",
                                                 "$(id)"};
    std::string result;
    for (int i = below(8); i > 0; --i) result += pick(pieces);
    if (below(500) == 0) result += std::string(static_cast<std::size_t>(below(1 << 20)), 'x');
    return result;
  }
  void append(sd_bus_message* message, int depth) {
    switch (below(depth > 0 ? 12 : 8)) {
      case 0:
        sd_bus_message_append(message, "y", below(256));
        break;
      case 1:
        sd_bus_message_append(message, "b", below(2));
        break;
      case 2:
        sd_bus_message_append(message, "i", integer());
        break;
      case 3:
        sd_bus_message_append(message, "t", static_cast<std::uint64_t>(random_()));
        break;
      case 4:
        sd_bus_message_append(message, "d", static_cast<double>(random_()));
        break;
      case 5:
        sd_bus_message_append(message, "o", "/a/b");
        break;
      case 6:
        sd_bus_message_append(message, "g", "a{sv}");
        break;
      case 7:
        sd_bus_message_append(message, "s", text().c_str());
        break;
      case 8:
        sd_bus_message_append(message, "v", "s", text().c_str());
        break;
      case 9:
        sd_bus_message_append(message, "as", 2, text().c_str(), "x");
        break;
      case 10:
        sd_bus_message_append(message, "a{sv}", 1, "k", "i", integer());
        break;
      default:
        sd_bus_message_open_container(message, SD_BUS_TYPE_STRUCT, "sis");
        sd_bus_message_append(message, "sis", text().c_str(), integer(), "x");
        sd_bus_message_close_container(message);
    }
  }

  std::mt19937 random_;
};

void run(int count, unsigned seed) {
  Fuzzer fuzzer(seed);
  double slowest = 0.0;
  int unanswered = 0, refusedByLibrary = 0;
  auto bus = connect();
  for (int sent = 0; sent < count; ++sent) {
    const auto message = fuzzer.message(bus);
    if (sd_bus_send(bus.get(), message.get(), nullptr) < 0) ++refusedByLibrary;
    if (sent % window != window - 1) continue;
    bus = connect();  // nobody reads the last answers
    const auto start = Clock::now();
    if (!call(bus, "Ping").isAnswer) ++unanswered;
    slowest = std::max(slowest, secondsSince(start));
  }
  tell("sent", count - refusedByLibrary);
  tell("unanswered", unanswered);
  tell("slowest_ping", slowest);
}

// The largest text that the bus carries costs the daemon that much memory for a moment.
void sendHuge(const std::vector<std::size_t>& sizes) {
  for (const auto mebibytes : sizes) {
    const auto bus = connect();
    auto message = request(bus, "MoveLaunchAgentPlist");
    const std::string huge = "/" + std::string(mebibytes << 20, 'a');
    sd_bus_message_append(message.get(), "ss", huge.c_str(), "/b");
    const auto start = Clock::now();
    const auto reply = send(bus, message);
    tell("huge_" + std::to_string(mebibytes) + "_code", reply.isAnswer ? reply.exitCode : -1);
    tell("huge_" + std::to_string(mebibytes) + "_time", secondsSince(start));
  }
}

}  // namespace
}  // namespace vorli::helpertest

int main(int argc, char** argv) {
  if (argc < 3) vorli::helpertest::giveUp("usage: vorli_helper_fuzz COUNT SEED [MEBIBYTES...]");
  std::vector<std::size_t> sizes;
  for (int i = 3; i < argc; ++i) sizes.push_back(static_cast<std::size_t>(std::atoi(argv[i])));
  if (sizes.empty()) sizes = {1, 8, 31};
  vorli::helpertest::run(std::atoi(argv[1]), static_cast<unsigned>(std::atoi(argv[2])));
  vorli::helpertest::sendHuge(sizes);
}
