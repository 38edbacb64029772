#include "base/Logger.h"
#include "linux/AudioOutputTap.h"
#include "polish/AudioActivityProbe.h"
#include "ui/QtScheduler.h"

#include <QCoreApplication>
#include <cstdio>

// Asks this machine's sound server what the program would ask it, and prints the answers with the time that
// the caller was held up.
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const vorli::ui::QtScheduler scheduler;
  vorli::Logger::setSink(
      [](const vorli::LogRecord& record) { std::printf("log=%s\n", record.message.c_str()); });

  vorli::linuxhost::AudioOutputTap tap(scheduler);
  std::printf("canListen=%d\n", tap.canListen());
  vorli::AudioActivityProbe probe(tap);

  double startedAt = scheduler.now();
  const bool audible = probe.isAudioActive();
  std::printf("audible=%d\nseconds=%.3f\n", audible, scheduler.now() - startedAt);

  startedAt = scheduler.now();
  const bool active = probe.legacyAudioActive();
  std::printf("fallback=%d\nfallbackSeconds=%.3f\n", active, scheduler.now() - startedAt);
  return 0;
}
