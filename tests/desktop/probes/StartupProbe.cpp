// StartupProbe list | pause ID | resume ID
//
// Pauses or resumes a startup item of this session as a press in the list does, and prints the list after
// that: on each line an identifier, a tab, and "on" or "off". Fails if no item has the identifier.

#include "linux/startup/StartupBackEnds.h"
#include "posix/CalendarClock.h"
#include "startup/StartupItems.h"
#include "tests/fakes/ApplicationBundle.h"
#include "tests/fakes/HelperService.h"
#include "tests/fakes/HelperTransport.h"
#include "tests/fakes/KeyValueStore.h"
#include "tests/fakes/Workspace.h"
#include "ui/loop/QtScheduler.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace vorli {
namespace {

class Probe {
 public:
  Probe(std::string verb, std::string id) : verb_(std::move(verb)), id_(std::move(id)) {}

  void start() { items_.service.refresh(); }

 private:
  void scanned() {
    if (verb_ == "list") return finish(EXIT_SUCCESS);
    const auto to = verb_ == "pause" ? Enablement::paused : Enablement::enabled;
    verb_ = "list";
    const auto& all = items_.service.items.get();
    const auto item = std::ranges::find(all, id_, &StartupItem::id);
    if (item == all.end()) return finish(EXIT_FAILURE);
    items_.service.setEnabled(to, StartupItem(*item), StartupItemService::CreateUndo::no);
  }

  void finish(int exitCode) {
    for (const auto& item : items_.service.items.get())
      std::printf("%s\t%s\n", item.id.c_str(), item.isEnabled ? "on" : "off");
    QCoreApplication::exit(exitCode);
  }

  std::string verb_;
  const std::string id_;
  ui::QtScheduler scheduler_;
  posix::CalendarClock calendar_;
  fakes::KeyValueStore defaults_;
  fakes::Workspace workspace_;
  fakes::ApplicationBundle bundle_;
  fakes::HelperService service_{scheduler_};
  fakes::HelperTransport transport_{scheduler_};
  HelperManager helper_{scheduler_, service_, transport_, bundle_};
  linuxhost::StartupBackEnds backEnds_{scheduler_, std::getenv("HOME")};
  StartupItems items_{{scheduler_, calendar_, defaults_, workspace_, helper_}, backEnds_.ports()};
  // Posted, because an action in the middle of the scan's last step would start the next one inside it.
  const Subscription end_ = items_.service.isScanning.subscribeToChanges([this](bool isScanning) {
    if (!isScanning) scheduler_.post([this] { scanned(); });
  });
};

}  // namespace
}  // namespace vorli

int main(int count, char** arguments) {
  QCoreApplication application(count, arguments);
  vorli::Probe probe(count > 1 ? arguments[1] : "list", count > 2 ? arguments[2] : "");
  probe.start();
  return QCoreApplication::exec();
}
