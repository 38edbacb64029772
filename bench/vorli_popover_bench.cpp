// vorli_popover_bench ROUNDS: processor time of one frame of the popover, painted as the program paints it
// and in the plain way, in turn, as JSON. bench/run drives it.

#include "ambient/RingGradient.h"
#include "bench/DirectPopover.h"
#include "tests/fakes/ManualScheduler.h"
#include "ui/popover/PopoverPainter.h"

#include <QApplication>
#include <QPainter>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
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

// One frame after the other of a polish between two moments, or of the breath at rest.
std::vector<ui::PopoverPicture> frames(double from, double to, int count) {
  fakes::ManualScheduler clock;
  AuroraField aurora(clock);
  Animated<double> progress(clock, 0.91);
  const double start = clock.now();
  const bool polishes = to > from;
  if (polishes) {
    aurora.clearTriggered();
    withAnimation(Animation::timingCurve({0.55, 0.055, 0.675, 0.19}, 1.85), [&] { progress = 0.0; });
  }
  std::vector<ui::PopoverPicture> pictures;
  for (int i = 0; i < count; ++i) {
    clock.advanceTo(start + from + (to - from) * i / count);
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

void measure(const char* name, const std::vector<ui::PopoverPicture>& pictures, double ratio, bool haloOnly) {
  Window window(ratio);
  ui::PopoverPainter popover;
  std::vector<double> own, direct;
  const QRectF whole({0.0, 0.0}, windowSize);
  for (const auto& picture : pictures) {
    const QRectF dirty = haloOnly ? ui::PopoverPainter::haloOf(picture).translated(origin) : whole;
    own.push_back(window.measure([&](QPainter& painter) {
      popover.paint(painter, origin, picture, ui::PopoverPainter::Frame::shadow, own.empty() ? whole : dirty,
                    ratio);
    }));
    direct.push_back(window.measure([&](QPainter& painter) {
      painter.translate(origin);
      bench::paintPopoverDirectly(painter, picture);
    }));
  }
  // The first frame draws what is kept.
  print((std::string(name) + " first").c_str(), {own.front()});
  std::printf(",");
  own.erase(own.begin());
  direct.erase(direct.begin());
  print((std::string(name) + " own").c_str(), own);
  std::printf(",");
  print((std::string(name) + " direct").c_str(), direct);
}

}  // namespace

int main(int argc, char** argv) {
  qunsetenv("DISPLAY");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 60;
  std::printf("{");
  for (const double ratio : {1.0, 2.0}) {
    const std::string suffix = ratio > 1.0 ? " 2x" : " 1x";
    measure(("rest" + suffix).c_str(), frames(0.0, 0.0, rounds), ratio, true);
    std::printf(",");
    // All three lights and all sparks at once.
    measure(("polish" + suffix).c_str(), frames(0.9, 1.5, rounds), ratio, false);
    if (ratio < 2.0) std::printf(",");
  }
  std::printf("}\n");
  return EXIT_SUCCESS;
}
