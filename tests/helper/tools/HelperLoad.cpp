// Calls the daemon in ways that a script is too slow for: vorli_helper_load COMMAND ARGUMENT...
// Prints figures as `name value`; times are seconds.

#include "BusClient.h"
#include "Figures.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <map>
#include <poll.h>
#include <random>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace vorli::helpertest {
namespace {

using Arguments = std::vector<std::string>;

int number(const Arguments& arguments, std::size_t index) {
  if (index >= arguments.size()) giveUp("an argument is missing");
  return std::stoi(arguments[index]);
}

/// Waits without a look at the clock in between: the gaps are what is tested.
void pauseFor(int microseconds) {
  const timespec span{microseconds / 1'000'000, microseconds % 1'000'000 * 1000L};
  ::ppoll(nullptr, 0, &span, nullptr);
}

void requireAnswer(const Reply& reply) {
  if (!reply.isAnswer) giveUp("no answer: " + reply.text);
}

// ping N: one client, one call after the other.
void ping(const Arguments& arguments) {
  const auto bus = connect();
  requireAnswer(call(bus, "Ping"));
  std::vector<double> times;
  for (int i = number(arguments, 0); i > 0; --i) {
    const auto start = Clock::now();
    requireAnswer(call(bus, "Ping"));
    times.push_back(secondsSince(start));
  }
  tellLatencies(times);
}

// bus N: the same to the bus itself, the floor of every call.
void busFloor(const Arguments& arguments) {
  const auto bus = connect();
  std::vector<double> times;
  for (int i = number(arguments, 0); i > 0; --i) {
    const auto start = Clock::now();
    sd_bus_call_method(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                       "GetId", nullptr, nullptr, "");
    times.push_back(secondsSince(start));
  }
  tellLatencies(times);
}

// many CLIENTS N: that many clients at once, each with its own connection.
void many(const Arguments& arguments) {
  const int clients = number(arguments, 0), calls = number(arguments, 1);
  std::atomic<int> errors{0};
  std::vector<double> worst(static_cast<std::size_t>(clients));
  std::vector<std::thread> threads;
  const auto start = Clock::now();
  for (int client = 0; client < clients; ++client)
    threads.emplace_back([&, client] {
      const auto bus = connect();
      std::vector<double> times;
      for (int i = 0; i < calls; ++i) {
        const auto sent = Clock::now();
        if (!bus || !call(bus, "Ping").isAnswer) ++errors;
        times.push_back(secondsSince(sent));
      }
      worst[static_cast<std::size_t>(client)] = quantile(times, 0.99);
    });
  for (auto& thread : threads) thread.join();
  tell("rate", clients * calls / secondsSince(start));
  tell("worst_p99", quantile(worst, 1.0));
  tell("errors", errors);
}

// churn CLIENTS ROUNDS: clients that connect, call and go, every other one without waiting for its answer.
void churn(const Arguments& arguments) {
  const int clients = number(arguments, 0), rounds = number(arguments, 1);
  std::atomic<int> errors{0};
  std::vector<std::thread> threads;
  for (int client = 0; client < clients; ++client)
    threads.emplace_back([&, client] {
      for (int round = 0; round < rounds; ++round) {
        const auto bus = connect();
        if (!bus) {
          ++errors;
        } else if ((client + round) % 2 == 0) {
          if (!call(bus, "Ping").isAnswer) ++errors;
        } else {
          sd_bus_send(bus.get(), request(bus, "KillPID").get(), nullptr);  // malformed, and gone at once
          sd_bus_send(bus.get(), request(bus, "PurgeMemory").get(), nullptr);
        }
      }
    });
  for (auto& thread : threads) thread.join();
  tell("connections", clients * rounds);
  tell("errors", errors);
}

/// A signal that is blocked interrupts no call; whether it has come is asked for between them.
void blockTermination() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
}

bool isToldToEnd() {
  sigset_t pending;
  return sigpending(&pending) == 0 && sigismember(&pending, SIGTERM) == 1;
}

// hammer N GAP: calls with random pauses of up to GAP microseconds, so that they meet the daemon in every
// state of leaving. Told to end, it ends with the figures so far.
void hammer(const Arguments& arguments) {
  const int calls = number(arguments, 0);
  std::mt19937 random(20);
  std::uniform_int_distribution<int> gap(0, number(arguments, 1));
  const auto bus = connect();
  std::map<std::string, int> lost;
  std::vector<double> times;
  blockTermination();
  for (int i = 0; i < calls && !isToldToEnd(); ++i) {
    pauseFor(gap(random));
    const auto start = Clock::now();
    const auto reply = i % 2 == 0 ? call(bus, "Ping", 10'000'000) : call(bus, "DumpBTM", 10'000'000);
    times.push_back(secondsSince(start));
    if (!reply.isAnswer) ++lost[reply.text];
  }
  int total = 0;
  for (const auto& [text, count] : lost) {
    std::fprintf(stderr, "lost %d: %s\n", count, text.c_str());
    total += count;
  }
  tell("lost", total);
  tellLatencies(times);
}

pid_t helperPid(const Bus& bus) {
  sd_bus_message* answer = nullptr;
  std::uint32_t pid = 0;
  if (sd_bus_call_method(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", nullptr, &answer, "s", service) >= 0)
    sd_bus_message_read(answer, "u", &pid);
  sd_bus_message_unref(answer);
  return static_cast<pid_t>(pid);
}

int takeReply(sd_bus_message* message, void* data, sd_bus_error*) {
  *static_cast<Reply*>(data) = replyOf(message);
  return 0;
}

// killed ROUNDS MAXIMUM: kills the daemon at a random moment of up to MAXIMUM microseconds after a call of
// each method.
void killed(const Arguments& arguments) {
  std::mt19937 random(21);
  std::uniform_int_distribution<int> moment(0, number(arguments, 1));
  const char* methods[] = {"Ping",    "Version", "PurgeMemory",         "FlushDNS",
                           "KillPID", "DumpBTM", "MoveLaunchAgentPlist"};
  const auto bus = connect();
  std::vector<double> told, back;
  int unanswered = 0;
  for (int round = number(arguments, 0); round > 0; --round) {
    if (!call(bus, "Ping").isAnswer) ++unanswered;
    const auto pid = helperPid(bus);
    auto message = request(bus, methods[round % 7]);
    if (round % 7 == 4) sd_bus_message_append(message.get(), "ii", 999999, 19);
    if (round % 7 == 6)
      sd_bus_message_append(message.get(), "ss", "/etc/systemd/user/none.service",
                            "/etc/systemd/user/none.service.vorli-disabled");
    Reply reply{false, -1, ""};
    sd_bus_call_async(bus.get(), nullptr, message.get(), takeReply, &reply, patience);
    sd_bus_flush(bus.get());
    pauseFor(moment(random));
    if (pid > 0) ::kill(pid, SIGKILL);  // 0 would be this very group
    const auto start = Clock::now();
    while (reply.exitCode == -1 && secondsSince(start) < 5.0)
      if (sd_bus_process(bus.get(), nullptr) == 0) sd_bus_wait(bus.get(), 1'000'000);
    if (reply.exitCode == -1) ++unanswered;
    if (reply.isAnswer) {
      // Answered before the kill: then a call into the gap until the bus notices must get its word.
      reply = call(bus, "Ping");
    }
    if (!reply.isAnswer) told.push_back(secondsSince(start));
    const auto next = Clock::now();
    if (!call(bus, "Ping").isAnswer) ++unanswered;
    back.push_back(secondsSince(next));
  }
  tell("cut_off", static_cast<double>(told.size()));
  tell("told_p99", quantile(told, 0.99));
  tell("told_max", quantile(told, 1.0));
  tell("back_p99", quantile(back, 0.99));
  tell("back_max", quantile(back, 1.0));
  tell("unanswered", unanswered);
}

// cold N: each call meets no daemon; the one before has gone.
void cold(const Arguments& arguments) {
  const auto bus = connect();
  std::vector<double> times;
  for (int i = number(arguments, 0); i > 0; --i) {
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (helperPid(bus) != 0 && Clock::now() < deadline) pauseFor(500);
    if (helperPid(bus) != 0) giveUp("it does not leave");
    pauseFor(20'000);  // a service manager needs a moment to notice
    const auto start = Clock::now();
    requireAnswer(call(bus, "Ping"));
    times.push_back(secondsSince(start));
  }
  tellLatencies(times);
}

// purges USERS EACH: all at once, EACH of every one of that many users, from 5001 on.
void purges(const Arguments& arguments) {
  const int users = number(arguments, 0), each = number(arguments, 1);
  std::atomic<int> done{0}, busy{0}, refused{0}, other{0};
  std::vector<double> refusal(static_cast<std::size_t>(users * each));
  std::vector<std::thread> threads;
  for (int i = 0; i < users * each; ++i)
    threads.emplace_back([&, i] {
      const auto bus = connect(static_cast<uid_t>(5001 + i % users));
      const auto start = Clock::now();
      const auto reply = call(bus, "PurgeMemory");
      if (reply.isAnswer && reply.exitCode == 202) refusal[static_cast<std::size_t>(i)] = secondsSince(start);
      // Polkit may be too busy with so many to answer in time.
      ++(!reply.isAnswer         ? other
         : reply.exitCode == 0   ? done
         : reply.exitCode == 202 ? busy
         : reply.exitCode == 200 ? refused
                                 : other);
    });
  for (auto& thread : threads) thread.join();
  tell("done", done);
  tell("busy", busy);
  tell("refused", refused);
  tell("other", other);
  tell("refusal_max", quantile(refusal, 1.0));
}

// toggle USERS ROUNDS FILE...: users from 5001 on move the files away and back; codes are counted.
void toggle(const Arguments& arguments) {
  const int users = number(arguments, 0), rounds = number(arguments, 1);
  const Arguments files(arguments.begin() + 2, arguments.end());
  std::atomic<int> moved{0}, refused{0}, cutOff{0};
  std::vector<std::thread> threads;
  for (int user = 0; user < users; ++user)
    threads.emplace_back([&, user] {
      std::mt19937 random(static_cast<unsigned>(user));
      const auto bus = connect(static_cast<uid_t>(5001 + user));
      for (int round = 0; round < rounds; ++round) {
        const auto& plain = files[random() % files.size()];
        const auto away = plain + (random() % 2 ? ".vorli-disabled" : ".vorli-removed");
        const bool goes = random() % 2;
        const auto reply = send(bus, goes ? moveRequest(bus, plain, away) : moveRequest(bus, away, plain));
        ++(!reply.isAnswer ? cutOff : reply.exitCode == 0 ? moved : refused);
      }
    });
  for (auto& thread : threads) thread.join();
  tell("moved", moved);
  tell("refused", refused);
  tell("cut_off", cutOff);
}

// pairs N: random paths to move, made of the pieces of allowed ones. What they name does not exist.
void pairs(const Arguments& arguments) {
  static const std::vector<std::string> pieces{"/etc/xdg/autostart/",
                                               "/etc/systemd/system/",
                                               "/etc/systemd/user/",
                                               "/etc/",
                                               "/usr/lib/systemd/system/",
                                               "/",
                                               "..",
                                               "/../",
                                               "none",
                                               "none.desktop",
                                               "none.service",
                                               ".desktop",
                                               ".service",
                                               ".vorli-disabled",
                                               ".vorli-removed",
                                               ".",
                                               "\n",
                                               "%n",
                                               "passwd"};
  std::mt19937 random(8);
  const auto path = [&](const std::string& start) {
    auto text = start;
    for (auto i = random() % 5; i > 0; --i) text += pieces[random() % pieces.size()];
    return text;
  };
  int moved = 0, cutOff = 0;
  const auto bus = connect();
  for (int i = number(arguments, 0); i > 0; --i) {
    const auto from = path("");
    const auto reply = send(bus, moveRequest(bus, from, path(random() % 2 ? from : "")));
    if (!reply.isAnswer) ++cutOff;
    if (reply.isAnswer && reply.exitCode == 0) ++moved;
  }
  tell("moved", moved);
  tell("cut_off", cutOff);
}

// vanish ROUNDS PROGRAM FROM TO: user 4001 asks for a move and is gone at once, or has become PROGRAM, or has
// left the connection to a child.
void vanish(const Arguments& arguments) {
  int sent = 0;
  for (int round = number(arguments, 0); round > 0; --round) {
    const auto child = ::fork();
    if (child == 0) {
      const auto bus = connect(4001);
      if (!bus) ::_exit(1);
      sd_bus_send(bus.get(), moveRequest(bus, arguments.at(2), arguments.at(3)).get(), nullptr);
      sd_bus_flush(bus.get());
      if (round % 3 == 1) {
        ::fcntl(sd_bus_get_fd(bus.get()), F_SETFD, 0);  // the connection goes on with the program
        ::execl(arguments.at(1).c_str(), arguments.at(1).c_str(), "0.02", nullptr);
      }
      if (round % 3 == 2 && ::fork() == 0) pauseFor(20'000);
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) ++sent;
  }
  tell("sent", sent);
}

// call METHOD [ARGUMENT...]: one call as whoever runs this; two numbers for KillPID, two texts for the move.
void callOnce(const Arguments& arguments) {
  const auto bus = connect();
  if (!bus) giveUp("no bus");
  const auto& method = arguments.at(0);
  const auto message = request(bus, method.c_str());
  if (method == "KillPID") {
    sd_bus_message_append(message.get(), "ii", number(arguments, 1), number(arguments, 2));
  } else if (arguments.size() == 3) {
    sd_bus_message_append(message.get(), "ss", arguments[1].c_str(), arguments[2].c_str());
  }
  const auto start = Clock::now();
  const auto reply = send(bus, message);
  std::printf("%s %d %.6f %s\n", reply.isAnswer ? "answer" : "error", reply.exitCode, secondsSince(start),
              reply.text.c_str());
}

}  // namespace
}  // namespace vorli::helpertest

int main(int argc, char** argv) {
  using namespace vorli::helpertest;
  const std::map<std::string, std::function<void(const Arguments&)>> commands{
      {"ping", ping},     {"bus", busFloor},  {"many", many},     {"churn", churn},
      {"hammer", hammer}, {"killed", killed}, {"cold", cold},     {"purges", purges},
      {"toggle", toggle}, {"pairs", pairs},   {"vanish", vanish}, {"call", callOnce},
  };
  const auto command = argc > 1 ? commands.find(argv[1]) : commands.end();
  if (command == commands.end()) giveUp("usage: vorli_helper_load COMMAND ARGUMENT...");
  command->second({argv + 2, argv + argc});
}
