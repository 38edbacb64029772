// The edge glow and the celebration over a real desktop, driven by lines on standard input.
//
//   enable, disable        the edge glow
//   progress P             a tick that ends with this ring
//   calm C
//   celebrate R G B        a flash that begins with this colour
//   still, moving          whether the desktop wants less movement
//   panel                  shows a window of the program's own that the glow does not lie over
//   frames                 tells how many frames the edge glow has been asked for: "frames N"
//   quit

#include "ambient/CelebrationGlowController.h"
#include "ambient/EdgeGlowController.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/MemoryCounters.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ProcessTable.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/Workspace.h"
#include "ui/QtScheduler.h"
#include "ui/linux/GlowOverlay.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QWidget>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>

namespace {

using namespace vorli;

struct Probe {
  ui::QtScheduler scheduler;
  ui::ManagerSelections selections;
  fakes::CalendarClock calendar{scheduler};
  fakes::MemoryCounters memory;
  fakes::CPUCounters cpu;
  fakes::ThermalSensors thermal;
  fakes::PowerSources power;
  fakes::ProcessTable processes;
  fakes::BackgroundWork background{scheduler};
  fakes::Workspace workspace;
  fakes::KeyValueStore store;
  fakes::ApplicationBundle bundle;
  fakes::MotionPreference motion;
  AppSettings settings{store};
  IdleAppTracker idleTracker{scheduler, calendar, store, workspace};
  SystemMonitor monitor{
      {scheduler, calendar, memory, cpu, thermal, power, processes, workspace, bundle, background},
      settings,
      idleTracker};
  ClearState clearState{scheduler};
  QWidget panel{nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint};
  ui::GlowOverlay edgeOverlay{scheduler, selections, [this] { return panelWindow(); }};
  ui::GlowOverlay flashOverlay{scheduler, selections, [this] { return panelWindow(); }};
  EdgeGlowController edgeGlow{{scheduler, edgeOverlay, workspace, motion, monitor, clearState}};
  CelebrationGlowController celebration{scheduler, flashOverlay};

  std::uint32_t panelWindow() { return panel.isVisible() ? static_cast<std::uint32_t>(panel.winId()) : 0; }

  void publish(double progress) {
    monitor.memory = monitor.memory.get();
    monitor.ringProgress = progress;
  }

  void showPanel() {
    panel.setStyleSheet(QStringLiteral("background: #204060"));
    panel.setGeometry(1500, 0, 270, 300);
    panel.show();
  }

  void obey(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    words >> command;
    double number = 0.0;
    Colour colour;
    if (command == "enable") edgeGlow.enable();
    if (command == "disable") edgeGlow.disable();
    if (command == "progress" && words >> number) publish(number);
    if (command == "calm" && words >> number) clearState.calmIntensity = number;
    if (command == "celebrate" && words >> colour.red >> colour.green >> colour.blue)
      celebration.celebrate(colour);
    if (command == "still") motion.setReduced(true);
    if (command == "moving") motion.setReduced(false);
    if (command == "panel") showPanel();
    if (command == "frames") std::cout << "frames " << edgeOverlay.frameCount() << std::endl;
    if (command == "quit") QApplication::quit();
  }
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  Probe probe;
  std::string pending;
  QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
    char bytes[512];
    const auto count = read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0) {
      input.setEnabled(false);
      QApplication::quit();
      return;
    }
    pending.append(bytes, static_cast<std::size_t>(count));
    for (auto end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
      probe.obey(pending.substr(0, end));
      pending.erase(0, end + 1);
    }
  });
  std::cout << "ready" << std::endl;
  return QApplication::exec();
}
