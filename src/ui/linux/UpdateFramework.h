#pragma once

#include "base/Scheduler.h"
#include "ports/UpdateFramework.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorli::ui {

/// Updates through the system's package manager. The program asks only for what the package manager already
/// knows, and shows the user where to install; it downloads and installs nothing.
class UpdateFramework final : public ports::UpdateFramework {
 public:
  using SourceReply = OnceReply<std::optional<std::string>>;

  /// Presents the result of the user's own check.
  struct Desktop {
    /// Shows the system's updates; returns false when the desktop has no program for that.
    std::function<bool()> openUpdates;
    std::function<void(const std::string&)> say;
  };

  /// `program` is the absolute path of the running program. `connect` makes the connection to the system bus,
  /// once, when the first question is due. The connection is closed again if there is no source.
  UpdateFramework(std::function<QDBusConnection()> connect, Scheduler& scheduler, QString program,
                  Desktop desktop);
  ~UpdateFramework() override;
  UpdateFramework(const UpdateFramework&) = delete;
  UpdateFramework& operator=(const UpdateFramework&) = delete;

  /// Replies with the package that owns the program. Asks a few seconds later, because the question starts
  /// the package manager's service, and the start of the program should not wait for either.
  void findSource(SourceReply reply) override;
  std::unique_ptr<ports::Updater> startUpdater(ports::UpdaterDelegate& delegate) override;

 private:
  void searchOwner(const std::shared_ptr<SourceReply>& reply);

  const std::function<QDBusConnection()> connect_;
  std::optional<QDBusConnection> bus_;  // empty until the first question, and without a source
  Scheduler& scheduler_;
  const QString program_;
  const Desktop desktop_;
  QString package_;
  Scheduler::TimerId search_ = 0;
  QObject context_;  // last: its destruction cancels pending queries
};

}  // namespace vorli::ui
