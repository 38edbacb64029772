// vorli_bench tick ROUNDS               the floor, enumerate() and refresh() in turn, as JSON
// vorli_bench session ROUNDS            refresh() with this session's applications and with none, as JSON
// vorli_bench passes KIND COUNT         KIND is floor, enumerate or refresh; for strace and callgrind
//
// bench/run drives it and prints the tables.

#include "bench/Floor.h"
#include "bench/HeapCount.h"
#include "bench/Machine.h"
#include "linux/applications/Workspace.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/fakes/Workspace.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string_view>
#include <vector>

namespace {

using namespace vorli::bench;

constexpr int exitWrongCall = 64;
constexpr int warmUps = 2;  // to fill the caches of both sides

// Processor time of all threads, in microseconds. The load of other programs does not count.
double processorMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

struct Series {
  const char* name;
  std::function<void()> pass;
  std::vector<double> microseconds;
  std::vector<double> allocations;
};

void run(Series& series) {
  const auto allocationsBefore = heapAllocations();
  const double before = processorMicroseconds();
  series.pass();
  series.microseconds.push_back(processorMicroseconds() - before);
  series.allocations.push_back(static_cast<double>(heapAllocations() - allocationsBefore));
}

void print(const char* name, const char* what, const std::vector<double>& values) {
  std::printf(", \"%s_%s\": [", name, what);
  for (std::size_t i = 0; i < values.size(); ++i) std::printf("%s%.3f", i ? ", " : "", values[i]);
  std::printf("]");
}

int tick(int rounds) {
  Floor floor;
  Machine machine;
  std::size_t processes = 0;
  std::array<Series, 3> all{Series{"floor", [&] { processes = floor.pass(); }, {}, {}},
                            Series{"enumerate", [&] { machine.enumerate(); }, {}, {}},
                            Series{"refresh", [&] { machine.refresh(); }, {}, {}}};
  for (int i = 0; i < warmUps; ++i) {
    for (auto& series : all) series.pass();
  }
  for (auto& series : all) {
    series.microseconds.reserve(static_cast<std::size_t>(rounds));
    series.allocations.reserve(static_cast<std::size_t>(rounds));
  }
  // Runs the series in every order in turn: a series that follows another one finds the kernel's caches warm,
  // and its own caches too if the series before was of the same kind.
  std::array<std::size_t, 3> order{0, 1, 2};
  for (int round = 0; round < rounds; ++round) {
    for (const std::size_t i : order) run(all[i]);
    std::ranges::next_permutation(order);
  }
  std::printf("{\"processes\": %zu", processes);
  for (const auto& series : all) {
    print(series.name, "us", series.microseconds);
    print(series.name, "allocations", series.allocations);
  }
  std::printf("}\n");
  return EXIT_SUCCESS;
}

// Does not wait for the session bus, so icons there are not known.
int session(int& argc, char** argv, int rounds) {
  const QCoreApplication application(argc, argv);
  vorli::fakes::ManualScheduler scheduler;
  vorli::linuxhost::Workspace workspace(scheduler);
  scheduler.advance(2.0);  // the first look for icons in the X11 tray is delayed
  vorli::fakes::Workspace empty;
  Machine bare(&empty), full(&workspace);
  std::array<Series, 2> both{Series{"none", [&] { bare.refresh(); }, {}, {}},
                             Series{"session", [&] { full.refresh(); }, {}, {}}};
  for (int i = 0; i < warmUps; ++i) {
    for (auto& series : both) series.pass();
  }
  for (int round = 0; round < rounds; ++round) {
    for (auto& series : both) run(series);
    std::ranges::reverse(both);
  }
  std::printf("{\"applications\": %zu", workspace.runningApplications().size());
  for (const auto& series : both) print(series.name, "us", series.microseconds);
  std::printf("}\n");
  return EXIT_SUCCESS;
}

int passes(std::string_view kind, int count) {
  if (kind == "floor") {
    Floor floor;
    for (int i = 0; i < count; ++i) floor.pass();
    return EXIT_SUCCESS;
  }
  if (kind != "enumerate" && kind != "refresh") return exitWrongCall;
  Machine machine;
  for (int i = 0; i < count; ++i) kind == "refresh" ? machine.refresh() : machine.enumerate();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view command = argc > 1 ? argv[1] : "";
  if (command == "tick" && argc == 3) return tick(std::atoi(argv[2]));
  if (command == "session" && argc == 3) return session(argc, argv, std::atoi(argv[2]));
  if (command == "passes" && argc == 4) return passes(argv[2], std::atoi(argv[3]));
  std::fprintf(stderr, "vorli_bench: tick ROUNDS | session ROUNDS | passes floor|enumerate|refresh COUNT\n");
  return exitWrongCall;
}
