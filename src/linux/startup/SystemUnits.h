#pragma once

#include "ports/SystemUnits.h"

#include <QDBusConnection>
#include <QObject>

namespace vorli::linuxhost {

/// The system's service manager on the system bus. It asks polkit, which asks for the password.
class SystemUnits final : public ports::SystemUnits {
 public:
  /// Connects when it is first needed, to `busAddress` or, when that is empty, to the system bus. A bus that
  /// does not answer for a second counts as missing.
  explicit SystemUnits(QString busAddress = {}) : busAddress_(std::move(busAddress)) {}
  ~SystemUnits() override;
  SystemUnits(const SystemUnits&) = delete;
  SystemUnits& operator=(const SystemUnits&) = delete;

  void mask(const std::string& unit, OnceReply<ports::UnitReply> reply) override;
  void unmask(const std::string& unit, OnceReply<ports::UnitReply> reply) override;

 private:
  QDBusConnection connection();
  void call(const QString& method, const QVariantList& arguments, OnceReply<ports::UnitReply> reply);

  const QString busAddress_;
  QObject receiver_;
};

}  // namespace vorli::linuxhost
