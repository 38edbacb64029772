#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace vorli::linuxhost {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that the end of the session quits the
/// program in the same way as its menu. A process has only one instance. The signals are handled, not
/// blocked: a blocked signal would stay blocked in every program that this one starts. A signal that was
/// ignored before stays ignored.
class TerminationSignals {
 public:
  explicit TerminationSignals(std::function<void()> terminate);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::linuxhost
