// vorli_startup_bench scan ROUNDS ROOT         the floor and a scan of the startup items below ROOT in turn
// vorli_startup_bench late SECONDS ROOT        how late the main thread's timer is, without and beside scans
// vorli_startup_bench passes KIND COUNT ROOT   KIND is floor or scan; for strace and callgrind
//
// The first two print JSON. bench/run drives it and prints the tables.

#include "bench/StartupFloor.h"
#include "bench/StartupMachine.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace vorli::bench;

constexpr int exitWrongCall = 64;
constexpr int warmUps = 2;  // to fill the caches of both sides and read the installed applications
constexpr double timerSeconds = 0.002;

double secondsOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

template <typename Pass>
double processorMicroseconds(Pass pass) {
  const double before = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
  pass();
  return (secondsOf(CLOCK_PROCESS_CPUTIME_ID) - before) * 1e6;
}

void print(const char* name, const std::vector<double>& values) {
  std::printf(", \"%s\": [", name);
  for (std::size_t i = 0; i < values.size(); ++i) std::printf("%s%.3f", i ? ", " : "", values[i]);
  std::printf("]");
}

int scan(int rounds, const std::string& root) {
  StartupMachine machine(root);
  const StartupFloor floor(machine.folders());
  std::size_t files = 0;
  StartupMachine::Count count;
  for (int i = 0; i < warmUps; ++i) {
    files = floor.pass();
    count = machine.scan();
  }
  std::vector<double> floorTimes, scanTimes;
  for (int round = 0; round < rounds; ++round) {
    floorTimes.push_back(processorMicroseconds([&] { floor.pass(); }));
    scanTimes.push_back(processorMicroseconds([&] { machine.scan(); }));
  }
  std::printf("{\"files\": %zu, \"shown\": %zu, \"hidden\": %zu", files, count.shown, count.hidden);
  print("floor_us", floorTimes);
  print("scan_us", scanTimes);
  std::printf("}\n");
  return EXIT_SUCCESS;
}

// How late each wake-up is, in microseconds.
std::vector<double> latenesses(double seconds) {
  std::vector<double> late;
  const double start = secondsOf(CLOCK_MONOTONIC);
  for (double due = start + timerSeconds; due < start + seconds; due += timerSeconds) {
    timespec until{};
    until.tv_sec = static_cast<time_t>(due);
    until.tv_nsec = static_cast<long>((due - static_cast<double>(until.tv_sec)) * 1e9);
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr);
    late.push_back((secondsOf(CLOCK_MONOTONIC) - due) * 1e6);
  }
  return late;
}

int late(double seconds, const std::string& root) {
  const auto quiet = latenesses(seconds);
  StartupMachine machine(root);
  std::atomic<bool> isOver = false;
  std::atomic<int> scans = 0;
  std::thread worker([&] {
    while (!isOver) {
      machine.scan();
      ++scans;
    }
  });
  const auto beside = latenesses(seconds);
  isOver = true;
  worker.join();
  std::printf("{\"scans\": %d", scans.load());
  print("quiet_us", quiet);
  print("beside_us", beside);
  std::printf("}\n");
  return EXIT_SUCCESS;
}

int passes(std::string_view kind, int count, const std::string& root) {
  if (kind != "floor" && kind != "scan") return exitWrongCall;
  StartupMachine machine(root);
  const StartupFloor floor(machine.folders());
  for (int i = 0; i < count; ++i) {
    if (kind == "floor") {
      floor.pass();
    } else {
      machine.scan();
    }
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view command = argc > 1 ? argv[1] : "";
  if (command == "scan" && argc == 4) return scan(std::atoi(argv[2]), argv[3]);
  if (command == "late" && argc == 4) return late(std::atof(argv[2]), argv[3]);
  if (command == "passes" && argc == 5) return passes(argv[2], std::atoi(argv[3]), argv[4]);
  std::fprintf(stderr,
               "vorli_startup_bench: scan ROUNDS ROOT | late SECONDS ROOT | passes floor|scan COUNT ROOT\n");
  return exitWrongCall;
}
