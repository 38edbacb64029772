// Prints what the workspace sees, one JSON object a line, and takes commands on standard input:
// "list", "front", "windows", "at PATH", "quit PID", "end".

#include "linux/Workspace.h"
#include "ui/QtScheduler.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <cstdio>
#include <unistd.h>

namespace vorli {
namespace {

QString text(const std::optional<SharedText>& value) {
  return value ? QString::fromStdString(std::string(value->view())) : QString();
}

QJsonObject describe(const ports::RunningApplication& application) {
  static constexpr const char* policies[] = {"regular", "accessory", "prohibited"};
  return {{"pid", application.processIdentifier},
          {"id", text(application.bundleIdentifier)},
          {"name", text(application.localizedName)},
          {"policy", policies[static_cast<int>(application.activationPolicy)]},
          {"launched", application.launchDate ? application.launchDate->secondsSince1970 : 0.0}};
}

void print(const QJsonObject& line) {
  std::puts(QJsonDocument(line).toJson(QJsonDocument::Compact).constData());
  std::fflush(stdout);
}

void answer(linuxhost::Workspace& workspace, const QByteArray& command) {
  if (command == "list") {
    QJsonArray list;
    for (const auto& application : workspace.runningApplications()) list << describe(application);
    print({{"list", list}});
  } else if (command == "front") {
    const auto front = workspace.frontmostApplication();
    print({{"front", front ? QJsonValue(describe(*front)) : QJsonValue()}});
  } else if (command == "windows") {
    QJsonArray owners;
    for (const auto pid : workspace.onScreenWindowOwnerPIDs().value_or(std::vector<std::int32_t>()))
      owners << pid;
    print({{"windows", owners}, {"visible", workspace.canSeeWindows()}});
  } else if (command.startsWith("at ")) {
    const auto application = workspace.applicationAt(command.mid(3).toStdString());
    print({{"at", application ? QJsonValue(text(application->bundleIdentifier)) : QJsonValue()}});
  } else if (command.startsWith("quit ")) {
    print({{"asked", workspace.terminate(command.mid(5).toInt())}});
  } else if (command == "end") {
    QCoreApplication::quit();
  }
}

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  using namespace vorli;
  const QCoreApplication application(argc, argv);
  ui::QtScheduler scheduler;
  linuxhost::Workspace workspace(scheduler);

  std::vector<Subscription> subscriptions;
  for (const auto& [event, name] : {std::pair(ports::ApplicationEvent::activated, "activated"),
                                    std::pair(ports::ApplicationEvent::launched, "launched"),
                                    std::pair(ports::ApplicationEvent::terminated, "terminated")}) {
    subscriptions.push_back(workspace.subscribe(event, [name](const auto& running) {
      print({{"event", name}, {"application", describe(running)}});
    }));
  }
  subscriptions.push_back(workspace.subscribeToSpaceChanges([] { print({{"event", "space"}}); }));

  QByteArray pending;
  QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, [&] {
    char piece[256];
    const auto got = read(STDIN_FILENO, piece, sizeof piece);
    if (got <= 0) return QCoreApplication::quit();
    pending.append(piece, static_cast<int>(got));
    for (auto end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
      answer(workspace, pending.left(end));
      pending.remove(0, end + 1);
    }
  });
  print({{"ready", true}});
  return QCoreApplication::exec();
}
