#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace vorli::linuxhost {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread, so that ending the session ends the
/// program by the same road as its menu. One instance in a process. The signals are handled and not blocked:
/// a blocked one would stay blocked in every program that we start. One that was ignored before stays so.
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
