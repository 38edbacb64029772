// Prints what the workspace sees and what the core concludes from it, one JSON object on each line. Commands
// on standard input:
//   list, front, windows, at PATH      print the workspace's answers
//   look                               runs one tick of the monitor over the session's own processes
//   quit PID, quit-name NAME, sweep    ask applications to quit
//   restart-panel, restart-files       do the same as those rows of the menu
//   end

#include "base/Logger.h"
#include "base/OnceReply.h"
#include "insights/CulpritFormatter.h"
#include "insights/CulpritSentence.h"
#include "insights/IdleAppTracker.h"
#include "linux/applications/Workspace.h"
#include "linux/kernel/CPUCounters.h"
#include "linux/kernel/MemoryCounters.h"
#include "linux/kernel/PowerSources.h"
#include "linux/kernel/ProcessTable.h"
#include "linux/kernel/ThermalSensors.h"
#include "linux/session/ApplicationBundle.h"
#include "linux/session/DesktopShell.h"
#include "linux/session/KeyValueStore.h"
#include "polish/AppQuitter.h"
#include "posix/BackgroundWork.h"
#include "posix/CalendarClock.h"
#include "sampling/SystemMonitor.h"
#include "settings/AppSettings.h"
#include "tests/desktop/probes/InputLines.h"
#include "tests/desktop/probes/SessionProcesses.h"
#include "ui/loop/QtScheduler.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace vorli {
namespace {

QString text(std::string_view value) {
  return QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size()));
}

QJsonValue optionalText(const std::optional<SharedText>& value) {
  return value ? QJsonValue(text(value->view())) : QJsonValue();
}

QJsonObject describe(const ports::RunningApplication& application) {
  static constexpr const char* policies[] = {"regular", "accessory", "prohibited"};
  return {{"pid", application.processIdentifier},
          {"id", optionalText(application.bundleIdentifier)},
          {"name", optionalText(application.localizedName)},
          {"policy", policies[static_cast<int>(application.activationPolicy)]},
          {"launched", application.launchDate ? application.launchDate->secondsSince1970 : 0.0}};
}

void print(const QJsonObject& line) {
  std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
  std::fflush(stdout);
}

class Probe {
 public:
  Probe() {
    Logger::setSink([](const LogRecord& record) { print({{"log", text(record.message)}}); });
    for (const auto& [event, name] : {std::pair(ports::ApplicationEvent::activated, "activated"),
                                      std::pair(ports::ApplicationEvent::launched, "launched"),
                                      std::pair(ports::ApplicationEvent::terminated, "terminated")}) {
      subscriptions_.push_back(workspace_.subscribe(event, [name](const auto& running) {
        print({{"event", name}, {"application", describe(running)}});
      }));
    }
    subscriptions_.push_back(workspace_.subscribeToSpaceChanges([] { print({{"event", "space"}}); }));
  }
  ~Probe() { Logger::setSink(nullptr); }

  void answer(const QByteArray& command) {
    const auto gap = command.indexOf(' ');
    const auto word = gap < 0 ? command : command.left(gap);
    const auto argument = gap < 0 ? QByteArray() : command.mid(gap + 1);
    if (word == "list") {
      QJsonArray list;
      for (const auto& application : workspace_.runningApplications()) list << describe(application);
      print({{"list", list}});
    } else if (word == "front") {
      const auto front = workspace_.frontmostApplication();
      print({{"front", front ? QJsonValue(describe(*front)) : QJsonValue()}});
    } else if (word == "windows") {
      QJsonArray owners;
      for (const auto pid : workspace_.onScreenWindowOwnerPIDs().value_or(std::vector<std::int32_t>()))
        owners << pid;
      print({{"windows", owners}, {"visible", workspace_.seesEveryWindow()}});
    } else if (word == "at") {
      const auto application = workspace_.applicationAt(argument.toStdString());
      print({{"at", application ? optionalText(application->bundleIdentifier) : QJsonValue()}});
    } else if (word == "look") {
      look();
    } else if (word == "quit") {
      print({{"asked", workspace_.terminate(argument.toInt()) == ports::QuitAnswer::asked}});
    } else if (word == "quit-name") {
      const auto answer = quitByName(workspace_, bundle_, argument.toStdString());
      print({{"asked", answer == ports::QuitAnswer::asked}});
    } else if (word == "sweep") {
      quitHiddenApps(workspace_, bundle_);
      print({{"swept", true}});
    } else if (word == "restart-panel") {
      shell_.restartDock();
    } else if (word == "restart-files") {
      shell_.restartFinder(OnceReply<std::string>([](const std::string& name) {
        print({{"closed-by-hand", text(name)}});
      }));
    } else if (word == "end") {
      QCoreApplication::quit();
    }
  }

 private:
  void look() {
    monitor_.refresh();
    QJsonArray orphans, idle;
    for (const auto& orphan : monitor_.orphanHelpers.get()) {
      orphans << QJsonObject{{"pid", orphan.pid},
                             {"name", text(orphan.name)},
                             {"parent", text(orphan.parentAppName.view())},
                             {"id", optionalText(orphan.parentBundleID)}};
    }
    for (const auto& app : monitor_.idleApps.get()) {
      idle << QJsonObject{{"id", text(app.bundleIdentifier.view())}, {"idleFor", app.idleFor}};
    }
    print({{"look", true}, {"culprits", culprits()}, {"orphans", orphans}, {"idle", idle}});
  }

  QJsonValue culprits() {
    const auto data = formatter_.culpritData(monitor_.topMemoryHogs, RingState::warming);
    if (!data) return {};
    const CulpritSentence sentence(*data);
    QString whole;
    for (const auto& segment : sentence.segments()) whole += text(segment.text);
    return whole;
  }

  ui::QtScheduler scheduler_;
  posix::CalendarClock calendar_;
  linuxhost::ApplicationBundle bundle_;
  linuxhost::KeyValueStore defaults_{scheduler_, linuxhost::KeyValueStore::defaultFile()};
  linuxhost::MemoryCounters memory_;
  linuxhost::CPUCounters cpu_;
  linuxhost::ThermalSensors thermal_;
  linuxhost::PowerSources power_;
  linuxhost::ProcessTable allProcesses_{calendar_};
  desktop_tests::SessionProcesses processes_{allProcesses_};
  posix::BackgroundWork background_{scheduler_};
  linuxhost::Workspace workspace_{scheduler_};
  linuxhost::DesktopShell shell_{scheduler_, workspace_};
  AppSettings settings_{defaults_};
  IdleAppTracker idleTracker_{scheduler_, calendar_, defaults_, workspace_};
  SystemMonitor monitor_{
      {scheduler_, calendar_, memory_, cpu_, thermal_, power_, processes_, workspace_, bundle_, background_},
      settings_,
      idleTracker_};
  CulpritFormatter formatter_{workspace_, ApplicationPaths(bundle_.homeDirectory())};
  std::vector<Subscription> subscriptions_;
};

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  vorli::Probe probe;
  const vorli::InputLines input([&probe](const QByteArray& line) { probe.answer(line); },
                                QCoreApplication::quit);
  vorli::print({{"ready", true}});
  return QCoreApplication::exec();
}
