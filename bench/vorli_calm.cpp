// vorli_calm SECONDS: runs the calm after a polish, with a decay of that length, on a real main loop with the
// dial following it. Prints by how many milliseconds the end is late.

#include "ambient/ClearState.h"
#include "ui/loop/QtScheduler.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int exitWrongCall = 64;
constexpr double rise = 0.9;

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const double decay = argc == 2 ? std::atof(argv[1]) : 0.0;
  if (decay <= 0.0) {
    std::fprintf(stderr, "vorli_calm: SECONDS\n");
    return exitWrongCall;
  }
  vorli::ui::QtScheduler scheduler;
  vorli::ClearState state(scheduler);
  const double startedAt = scheduler.now();
  const auto following = state.calmIntensity.subscribeToChanges(vorli::CalmPace::dial, [&](double calm) {
    const double passed = scheduler.now() - startedAt;
    if (calm > 0.0 || passed < rise) return;
    std::printf("%.1f\n", (passed - rise - decay) * 1000.0);
    QCoreApplication::quit();
  });
  state.runCeremony(rise, decay);
  return QCoreApplication::exec();
}
