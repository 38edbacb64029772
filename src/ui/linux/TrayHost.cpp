#include "ui/linux/TrayHost.h"

namespace vorli::ui {

TrayKind preferredTray(StatusNotifierWatcher::Presence watcher, bool hasXEmbedTray) {
  using Presence = StatusNotifierWatcher::Presence;
  if (watcher == Presence::unknown) return TrayKind::undecided;
  if (watcher == Presence::present) return TrayKind::statusNotifier;
  return hasXEmbedTray ? TrayKind::xembed : TrayKind::none;
}

TrayHost::TrayHost(Scheduler& scheduler, StatusNotifierWatcher& watcher, ManagerSelections& selections,
                   std::function<void(TrayKind)> moved)
    : scheduler_(scheduler),
      watcher_(watcher),
      selections_(selections),
      moved_(std::move(moved)),
      subscription_(selections_.subscribe([this] { update(); })) {}

TrayHost::~TrayHost() {
  scheduler_.cancel(delayed_);
}

void TrayHost::update() {
  const auto wanted = [this] {
    return preferredTray(watcher_.presence(),
                         selections_.isManaged(ManagerSelections::Selection::systemTray));
  };
  const bool isFirst = kind_ == TrayKind::undecided;
  if (wanted() != TrayKind::xembed || isFirst || kind_ == TrayKind::xembed) {
    scheduler_.cancel(std::exchange(delayed_, 0));
    moveTo(wanted());
  } else if (delayed_ == 0) {
    moveTo(TrayKind::none);
    delayed_ = scheduler_.after(xembedDelaySeconds, [this, wanted] {
      delayed_ = 0;
      moveTo(wanted());
    });
  }
}

void TrayHost::moveTo(TrayKind kind) {
  if (kind == kind_) return;
  kind_ = kind;
  moved_(kind_);
}

}  // namespace vorli::ui
