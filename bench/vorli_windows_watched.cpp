// vorli_windows_watched OPENINGS: the whole program, which opens and closes its windows itself and prints
// each frame that it paints. Other lines, with moments in microseconds of the monotonic clock:
//   open NAME MOMENT      a window or a list is asked for
//   memory NAME KILOBYTES private and dirty
//   scrolled MICROSECONDS processor time of one frame of the list while it scrolls
//   end

#include "app/AppDelegate.h"
#include "app/Services.h"
#include "bench/PaintWatch.h"
#include "main/LinuxProgram.h"
#include "tests/fakes/Publish.h"

#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace vorli;

constexpr int settledMilliseconds = 5000, openMilliseconds = 1000, closedMilliseconds = 3000;
constexpr int scanMilliseconds = 10000, frameMilliseconds = 16;
constexpr int itemCount = 1000, scrollSteps = 200, scrollPoints = 60;

long long moment() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

double processorMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

void printMemory(const char* name) {
  std::ifstream file("/proc/self/smaps_rollup");
  const std::string wanted = "Private_Dirty:";
  for (std::string word; file >> word;) {
    if (word != wanted) continue;
    file >> word;
    std::printf("memory %s %s\n", name, word.c_str());
    std::fflush(stdout);
    return;
  }
}

QWidget* settingsWindow() {
  for (auto* widget : QApplication::topLevelWidgets())
    if (widget->isVisible() && widget->windowTitle() == QStringLiteral("Vorli Settings")) return widget;
  return nullptr;
}

std::vector<StartupItem> manyItems() {
  std::vector<StartupItem> items;
  for (int i = 0; i < itemCount; ++i) {
    StartupItem item;
    item.id = "org.example.item" + std::to_string(i);
    item.displayName = "Application " + std::to_string(i);
    item.description = "Keeps what it does up to date in the background, number " + std::to_string(i) + ".";
    item.plistURL = "/usr/share/applications/" + item.id + ".desktop";
    item.isEnabled = i % 4 != 0;
    item.isLeftover = i % 10 == 9;
    items.push_back(std::move(item));
  }
  return items;
}

/// Takes its steps one after the other, with a pause before each.
class Tour final : public QObject {
 public:
  Tour(Services& services, AppDelegate& delegate, int openings) : services_(services), delegate_(delegate) {
    after(settledMilliseconds, [] { printMemory("before"); });
    for (int i = 0; i < openings; ++i) addOpening(i);
    after(closedMilliseconds, [] { printMemory("closed"); });
    addList();
    after(closedMilliseconds, [] { printMemory("list-closed"); });
    after(0, [] {
      std::puts("end");
      std::fflush(stdout);
    });
    next();
  }

 private:
  void after(int milliseconds, std::function<void()> step) {
    steps_.emplace_back(milliseconds, std::move(step));
  }

  void next() {
    if (steps_.empty()) return;
    auto [milliseconds, step] = std::move(steps_.front());
    steps_.pop_front();
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, this, [this, step = std::move(step)] {
      step();
      next();
    });
  }

  static void tell(const char* name) { std::printf("open %s %lld\n", name, moment()); }
  static void close() {
    if (auto* window = settingsWindow()) window->close();
  }

  void addOpening(int index) {
    after(openMilliseconds, [this] {
      tell("settings");
      delegate_.showSettings(VorliSettingsTab::general);
    });
    if (index == 0) after(openMilliseconds, [] { printMemory("settings"); });
    after(openMilliseconds, close);
  }

  void addList() {
    after(openMilliseconds, [this] {
      tell("page");
      delegate_.showSettings(VorliSettingsTab::sneakyApps);
    });
    after(scanMilliseconds, [this] {
      tell("list");
      vorli::fakes::publish(services_.startupItems.service.items, manyItems());
    });
    after(openMilliseconds, [] { printMemory("list"); });
    for (int i = 0; i < scrollSteps; ++i) after(frameMilliseconds, scroll);
    after(openMilliseconds, [] { printMemory("list-scrolled"); });
    after(0, close);
  }

  static void scroll() {
    auto* window = settingsWindow();
    auto* area = window ? window->findChild<QScrollArea*>() : nullptr;
    if (!area) return;
    const double before = processorMicroseconds();
    area->verticalScrollBar()->setValue(area->verticalScrollBar()->value() + scrollPoints);
    window->repaint();
    std::printf("scrolled %.0f\n", processorMicroseconds() - before);
  }

  Services& services_;
  AppDelegate& delegate_;
  std::deque<std::pair<int, std::function<void()>>> steps_;
};

}  // namespace

int main(int argc, char** argv) {
  const int openings = argc > 1 ? std::atoi(argv[1]) : 5;
  std::unique_ptr<bench::PaintWatch> watch;
  std::unique_ptr<Tour> tour;
  return runLinuxProgram(argc, argv, SamplingBackEnds::ofThisMachine(),
                         [&](Services& services, AppDelegate& delegate) {
                           watch = std::make_unique<bench::PaintWatch>();
                           QTimer::singleShot(0, watch.get(), [&services, &delegate, &tour, openings] {
                             tour = std::make_unique<Tour>(services, delegate, openings);
                           });
                         });
}
