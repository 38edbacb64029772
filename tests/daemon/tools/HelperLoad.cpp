// Calls the daemon in ways that a script is too slow for: vorli_helper_load COMMAND ARGUMENT...
// Prints figures as `name value`; times are seconds.

#include "BusClient.h"
#include "Figures.h"

#include <atomic>
#include <csignal>
#include <deque>
#include <fcntl.h>
#include <functional>
#include <map>
#include <poll.h>
#include <random>
#include <string>
#include <sys/mman.h>
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

/// Waits without checking anything in between, because the gaps are what is tested.
void pauseFor(int microseconds) {
  const timespec span{microseconds / 1'000'000, microseconds % 1'000'000 * 1000L};
  ::ppoll(nullptr, 0, &span, nullptr);
}

void requireAnswer(const Reply& reply) {
  if (!reply.isAnswer) giveUp("no answer: " + reply.text);
}

// ping N: one client makes one call after the other.
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

// bus N: the same with calls to the bus itself, the floor of every call.
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

// many CLIENTS N: that many clients call at once, each over its own connection.
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
        if (!bus || !call(bus, "Ping", patienceInACrowd).isAnswer) ++errors;
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
          // The first request is malformed, and the client disconnects at once.
          sd_bus_send(bus.get(), request(bus, "KillPID").get(), nullptr);
          sd_bus_send(bus.get(), request(bus, "PurgeMemory").get(), nullptr);
        }
      }
    });
  for (auto& thread : threads) thread.join();
  tell("connections", clients * rounds);
  tell("errors", errors);
}

/// Blocks the signal, so that it interrupts no call; `isToldToEnd` checks for it between calls.
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

// hammer N GAP: calls with random pauses of up to GAP microseconds, so that they reach the daemon in every
// state of its exit. Asked to end, it prints the figures so far.
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

// starve CONNECTIONS PINGS: that many connections send eight requests and PINGS pings each, and close without
// reading an answer. Each is replaced by a new one until the program is asked to end.
void starve(const Arguments& arguments) {
  const int connections = number(arguments, 0), pings = number(arguments, 1);
  blockTermination();
  int made = 0, refused = 0;
  std::deque<Bus> open;
  while (!isToldToEnd()) {
    auto bus = connect();
    if (!bus) {
      ++refused;
      pauseFor(1000);
      continue;
    }
    ++made;
    for (int i = 0; i < 8 + pings; ++i) {
      const auto message = request(bus, i < 8 ? "KillPID" : "Ping");
      if (i < 8) sd_bus_message_append(message.get(), "ii", ::getpid(), 19);
      sd_bus_call_async(
          bus.get(), nullptr, message.get(), [](sd_bus_message*, void*, sd_bus_error*) { return 0; }, nullptr,
          patience);
    }
    sd_bus_flush(bus.get());
    open.push_back(std::move(bus));
    if (open.size() >= static_cast<std::size_t>(connections)) open.pop_front();
  }
  tell("made", made);
  tell("refused", refused);
}

// flood KIND: sends as fast as it can and waits for no answer, until it is asked to end. KIND: own (a signal
// to itself that is granted), wrong (one that is not), dump, long (texts of 2,000 bytes that are no paths),
// or unread (pings whose answers are never read; with pauses, because the bus allows 128 at once).
void flood(const Arguments& arguments) {
  static const std::map<std::string, const char*> methods{
      {"own", "KillPID"}, {"wrong", "KillPID"}, {"dump", "DumpBTM"}, {"unread", "Ping"}};
  const auto& kind = arguments.at(0);
  const std::string text(2000, 'x');
  const auto bus = connect();
  blockTermination();
  double sent = 0;
  while (!isToldToEnd()) {
    auto message = kind == "long" ? moveRequest(bus, text, text) : request(bus, methods.at(kind));
    if (kind == "own") sd_bus_message_append(message.get(), "ii", ::getpid(), 19);
    if (kind == "wrong") sd_bus_message_append(message.get(), "ii", 0, 0);
    std::uint64_t serial = 0;  // a message without a serial gets no answer
    if (sd_bus_send(bus.get(), message.get(), kind == "unread" ? &serial : nullptr) < 0)
      giveUp("cannot send");
    if (++sent; static_cast<long>(sent) % 64 != 0) continue;
    sd_bus_flush(bus.get());
    if (kind == "unread") pauseFor(4000);
  }
  tell("sent", sent);
}

// victim CALLS GAP KIND: a caller with pauses of GAP milliseconds, on one connection (kept) or on a new one
// for each call (new). Every sixth call is a flush, the others continue this very process.
void victim(const Arguments& arguments) {
  const int calls = number(arguments, 0), gap = number(arguments, 1);
  const bool isKept = arguments.at(2) == "kept";
  auto bus = connect();
  std::vector<double> times;
  int done = 0;
  std::map<std::string, int> wrong;
  for (int i = 0; i < calls; ++i) {
    pauseFor(gap * 1000);
    const auto start = Clock::now();
    if (!isKept) bus = connect();
    const bool flushes = i % 6 == 0;
    const auto message = request(bus, flushes ? "FlushDNS" : "KillPID");
    if (!flushes) sd_bus_message_append(message.get(), "ii", ::getpid(), 19);
    const auto reply = send(bus, message, patienceInACrowd);
    times.push_back(secondsSince(start));
    if (reply.isAnswer && reply.exitCode == 0)
      ++done;
    else
      ++wrong[std::to_string(reply.exitCode) + " " + reply.text];
  }
  for (const auto& [text, count] : wrong) std::fprintf(stderr, "%d: %s\n", count, text.c_str());
  tell("done", done);
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
    if (pid > 0) ::kill(pid, SIGKILL);  // 0 would be this process group
    const auto start = Clock::now();
    while (reply.exitCode == -1 && secondsSince(start) < 5.0)
      if (sd_bus_process(bus.get(), nullptr) == 0) sd_bus_wait(bus.get(), 1'000'000);
    if (reply.exitCode == -1) ++unanswered;
    if (reply.isAnswer) {
      // The answer came before the kill: a call before the bus notices the end must get an answer too.
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

// cold N: each call finds no daemon, because the one before has ended.
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

/// Values that the children of this process can write too. They begin as zeros.
template <typename T>
class Shared {
 public:
  explicit Shared(int count = 1) : bytes_(sizeof(T) * static_cast<std::size_t>(count)) {
    void* const place = ::mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (place == MAP_FAILED) giveUp("no memory");
    values_ = static_cast<T*>(place);
  }
  ~Shared() { ::munmap(values_, bytes_); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  T& operator[](int index) const { return values_[index]; }
  T* operator->() const { return values_; }
  T* begin() const { return values_; }
  T* end() const { return values_ + bytes_ / sizeof(T); }

 private:
  const std::size_t bytes_;
  T* values_ = nullptr;
};

/// Runs `work` for each of that many users, from 5001 on, in a process of that user: the daemon refuses a
/// caller whose process belongs to another user.
void asUsers(int users, const std::function<void(int)>& work) {
  std::vector<pid_t> children;
  for (int user = 0; user < users; ++user) {
    const auto child = ::fork();
    if (child < 0) giveUp("cannot fork");
    if (child == 0) {
      const auto id = static_cast<uid_t>(5001 + user);
      if (::setresuid(id, id, id) != 0) giveUp("cannot become another user");
      work(user);
      ::_exit(0);
    }
    children.push_back(child);
  }
  for (const auto child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) giveUp("a child failed");
  }
}

// purges USERS EACH: that many users request EACH purges, all at once.
void purges(const Arguments& arguments) {
  struct Counts {
    std::atomic<int> done, busy, refused, other;
  };
  const int users = number(arguments, 0), each = number(arguments, 1);
  const Shared<Counts> counts;
  const Shared<double> refusal(users * each);
  asUsers(users, [&](int user) {
    std::vector<std::thread> threads;
    for (int i = 0; i < each; ++i)
      threads.emplace_back([&, i] {
        const auto bus = connect();
        const auto start = Clock::now();
        const auto reply = call(bus, "PurgeMemory");
        if (reply.isAnswer && reply.exitCode == 202) refusal[user * each + i] = secondsSince(start);
        // Polkit may be too busy to answer so many in time.
        ++(!reply.isAnswer         ? counts->other
           : reply.exitCode == 0   ? counts->done
           : reply.exitCode == 202 ? counts->busy
           : reply.exitCode == 200 ? counts->refused
                                   : counts->other);
      });
    for (auto& thread : threads) thread.join();
  });
  tell("done", counts->done);
  tell("busy", counts->busy);
  tell("refused", counts->refused);
  tell("other", counts->other);
  tell("refusal_max", quantile({refusal.begin(), refusal.end()}, 1.0));
}

// toggle USERS ROUNDS FILE...: that many users move the files away and back. Counts the codes.
void toggle(const Arguments& arguments) {
  struct Counts {
    std::atomic<int> moved, refused, cutOff;
  };
  const int users = number(arguments, 0), rounds = number(arguments, 1);
  const Arguments files(arguments.begin() + 2, arguments.end());
  const Shared<Counts> counts;
  asUsers(users, [&](int user) {
    std::mt19937 random(static_cast<unsigned>(user));
    const auto bus = connect();
    for (int round = 0; round < rounds; ++round) {
      const auto& plain = files[random() % files.size()];
      const auto away = plain + (random() % 2 ? ".vorli-disabled" : ".vorli-removed");
      const bool goes = random() % 2;
      const auto message = goes ? moveRequest(bus, plain, away) : moveRequest(bus, away, plain);
      const auto reply = send(bus, message, patienceInACrowd);
      ++(!reply.isAnswer ? counts->cutOff : reply.exitCode == 0 ? counts->moved : counts->refused);
    }
  });
  tell("moved", counts->moved);
  tell("refused", counts->refused);
  tell("cut_off", counts->cutOff);
}

// pairs N: requests moves of random paths, made of the pieces of allowed ones. The paths do not exist.
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

/// Microseconds until a running daemon refuses a move to user 4001.
int refusalTime(const std::string& from, const std::string& to) {
  requireAnswer(call(connect(), "Ping"));
  double seconds = 0;
  std::thread([&] {
    const auto bus = connect(4001);
    const auto start = Clock::now();
    requireAnswer(send(bus, moveRequest(bus, from, to)));
    seconds = secondsSince(start);
  }).join();
  return static_cast<int>(seconds * 1e6);
}

// vanish ROUNDS PROGRAM FROM TO: user 4001 requests a move and then ends, becomes PROGRAM, or leaves the
// connection to a child. This happens at a random moment of the daemon's work, which takes longer on a slow
// machine.
void vanish(const Arguments& arguments) {
  std::random_device seed;
  std::mt19937 random(seed());
  std::uniform_int_distribution<int> stay(0, 2 * refusalTime(arguments.at(2), arguments.at(3)));
  int sent = 0;
  for (int round = number(arguments, 0); round > 0; --round) {
    const int pause = stay(random);
    const auto child = ::fork();
    if (child == 0) {
      const auto bus = connect(4001);
      if (!bus) ::_exit(1);
      sd_bus_send(bus.get(), moveRequest(bus, arguments.at(2), arguments.at(3)).get(), nullptr);
      sd_bus_flush(bus.get());
      pauseFor(pause);
      if (round % 3 == 1) {
        ::fcntl(sd_bus_get_fd(bus.get()), F_SETFD, 0);  // the program keeps the connection
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

// call METHOD [ARGUMENT...]: one call as the current user; two numbers for KillPID, two texts for the move.
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
      {"ping", ping},     {"bus", busFloor},  {"many", many},     {"churn", churn},   {"hammer", hammer},
      {"killed", killed}, {"cold", cold},     {"purges", purges}, {"toggle", toggle}, {"pairs", pairs},
      {"vanish", vanish}, {"call", callOnce}, {"starve", starve}, {"flood", flood},   {"victim", victim},
  };
  const auto command = argc > 1 ? commands.find(argv[1]) : commands.end();
  if (command == commands.end()) giveUp("usage: vorli_helper_load COMMAND ARGUMENT...");
  command->second({argv + 2, argv + argc});
}
