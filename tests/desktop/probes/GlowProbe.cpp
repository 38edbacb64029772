// The edge glow and the celebration over a real desktop, driven by lines on standard input.
//
//   enable, disable        the edge glow
//   progress P             a tick that ends with this ring
//   calm C
//   celebrate R G B        a flash that begins with this colour
//   still, moving          whether the desktop wants less movement
//   panel                  shows a window of the program's own that the glow does not lie over
//   frames                 prints "frames N", the number of frames that the edge glow was asked for so far
//   quit

#include "ambient/CelebrationGlowController.h"
#include "ambient/EdgeGlowController.h"
#include "tests/desktop/probes/InputLines.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/CPUCounters.h"
#include "tests/fakes/CalendarClock.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/MemoryCounters.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/fakes/PowerSources.h"
#include "tests/fakes/ProcessTable.h"
#include "tests/fakes/Publish.h"
#include "tests/fakes/ThermalSensors.h"
#include "tests/fakes/Workspace.h"
#include "ui/linux/GlowOverlay.h"
#include "ui/loop/QtScheduler.h"

#include <QApplication>
#include <QWidget>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

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
    fakes::publish(monitor.memory, monitor.memory.get());
    fakes::publish(monitor.ringProgress, progress);
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
    if (command == "calm" && words >> number) fakes::publish(clearState.calmIntensity, number);
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
  const vorli::InputLines input([&probe](const QByteArray& line) { probe.obey(line.toStdString()); },
                                QApplication::quit);
  std::cout << "ready" << std::endl;
  return QApplication::exec();
}
