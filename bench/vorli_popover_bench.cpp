// vorli_popover_bench ROUNDS: processor time of one frame of the popover, as JSON. Frames are painted in turn
// as the program paints them and in the plain way, at rest and where a polish has most to paint. Each round
// begins with a painter whose caches are empty. bench/run drives it.

#include "ambient/RingGradient.h"
#include "bench/DirectPopover.h"
#include "tests/fakes/ManualScheduler.h"
#include "ui/popover/ChangedPart.h"
#include "ui/popover/PopoverPainter.h"

#include <QApplication>
#include <QPainter>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace vorli;

constexpr QPointF origin{24.0, 16.0};
constexpr QSizeF windowSize{318.0, 360.0};

double processorMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

constexpr double secondsPerFrame = 1.0 / 60.0;
// The busiest time of a polish, when all three lights and all sparks are shown.
constexpr double busiestFrom = 0.9, busiestTo = 1.5;

// The popover's frames from the start of a polish until after its busiest time, or of the breath at rest.
std::vector<ui::PopoverPicture> frames(bool polishes, int count) {
  fakes::ManualScheduler clock;
  AuroraField aurora(clock);
  Animated<double> progress(clock, 0.91);
  const double start = clock.now();
  if (polishes) {
    aurora.clearTriggered();
    withAnimation(Animation::timingCurve({0.55, 0.055, 0.675, 0.19}, 1.85), [&] { progress = 0.0; });
  }
  std::vector<ui::PopoverPicture> pictures;
  for (int i = 0; i < count; ++i) {
    clock.advanceTo(start + i * secondsPerFrame);
    ui::PopoverPicture picture;
    picture.ring.progress = progress.shown();
    picture.ring.stateColour = ringGradientColour(picture.ring.progress);
    picture.ring.labelOpacity = polishes ? 0.0 : 1.0;
    picture.haloBreath = static_cast<double>(i) / count;
    picture.aurora = aurora.picture(clock.now(), picture.ring.stateColour, 0.0);
    picture.words.sentence.text = QStringLiteral("Polishing your Mac…");
    pictures.push_back(std::move(picture));
  }
  return pictures;
}

struct Window {
  explicit Window(double pixelRatio)
      : ratio(pixelRatio), image((windowSize * pixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied) {
    image.fill(Qt::transparent);
  }

  double measure(const std::function<void(QPainter&)>& paint) {
    const double before = processorMicroseconds();
    QPainter painter(&image);
    painter.scale(ratio, ratio);
    paint(painter);
    painter.end();
    return processorMicroseconds() - before;
  }

  double ratio;
  QImage image;
};

void print(const char* name, const std::vector<double>& values) {
  std::printf("\"%s\":[", name);
  for (std::size_t i = 0; i < values.size(); ++i) std::printf("%s%.1f", i ? "," : "", values[i]);
  std::printf("]");
}

struct Series {
  std::vector<double> first, own, direct;

  // Paints all pictures once with empty caches. The first frame fills the caches; the frames from `begin` on
  // are counted.
  void run(const std::vector<ui::PopoverPicture>& pictures, double ratio, std::size_t begin) {
    Window window(ratio);
    ui::PopoverPainter popover;
    const QRectF whole({0.0, 0.0}, windowSize);
    for (std::size_t i = 0; i < pictures.size(); ++i) {
      const auto changed = i == 0 ? std::nullopt : ui::changedPart(pictures[i - 1], pictures[i]);
      const QRectF dirty = changed ? changed->translated(origin) : whole;
      const double ownTime = window.measure([&](QPainter& painter) {
        popover.paint(painter, origin, pictures[i], ui::PopoverPainter::Frame::shadow, dirty, ratio);
      });
      const double directTime = window.measure([&](QPainter& painter) {
        painter.translate(origin);
        bench::paintPopoverDirectly(painter, pictures[i]);
      });
      if (i == 0) first.push_back(ownTime);
      if (i == 0 || i < begin) continue;
      own.push_back(ownTime);
      direct.push_back(directTime);
    }
  }

  void print(const std::string& name) const {
    ::print((name + " first").c_str(), first);
    std::printf(",");
    ::print((name + " own").c_str(), own);
    std::printf(",");
    ::print((name + " direct").c_str(), direct);
  }
};

}  // namespace

int main(int argc, char** argv) {
  qunsetenv("DISPLAY");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
  const auto polish = frames(true, static_cast<int>(busiestTo / secondsPerFrame));
  const auto rest = frames(false, static_cast<int>(polish.size()));
  std::printf("{");
  for (const double ratio : {1.0, 2.0}) {
    Series atRest, polishing;
    for (int round = 0; round < rounds; ++round) {
      atRest.run(rest, ratio, 1);
      polishing.run(polish, ratio, static_cast<std::size_t>(busiestFrom / secondsPerFrame));
    }
    const std::string suffix = ratio > 1.0 ? " 2x" : " 1x";
    atRest.print("rest" + suffix);
    std::printf(",");
    polishing.print("polish" + suffix);
    if (ratio < 2.0) std::printf(",");
  }
  std::printf("}\n");
  return EXIT_SUCCESS;
}
