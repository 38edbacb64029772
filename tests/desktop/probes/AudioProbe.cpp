#include "base/Logger.h"
#include "linux/sound/AudioOutputTap.h"
#include "polish/AudioActivityProbe.h"
#include "ui/loop/QtScheduler.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

// AudioProbe [SECONDS]: asks this machine's sound server what the program would ask it, listens for that many
// seconds, and prints the answers and how long the caller was held up.
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const vorli::ui::QtScheduler scheduler;
  vorli::Logger::setSink(
      [](const vorli::LogRecord& record) { std::printf("log=%s\n", record.message.c_str()); });

  vorli::linuxhost::AudioOutputTap tap(scheduler);
  std::printf("canListen=%d\n", tap.canListen());
  vorli::AudioActivityProbe probe(tap);

  double startedAt = scheduler.now();
  const bool audible = argc > 1
                           ? probe.isAudioPlaying(std::atof(argv[1]), vorli::AudioActivityProbe::threshold)
                           : probe.isAudioActive();
  std::printf("audible=%d\nseconds=%.3f\n", audible, scheduler.now() - startedAt);

  startedAt = scheduler.now();
  const bool active = probe.legacyAudioActive();
  std::printf("fallback=%d\nfallbackSeconds=%.3f\n", active, scheduler.now() - startedAt);
  return 0;
}
