#include "ui/popover/SparkPainter.h"

#include "ambient/Palette.h"
#include "ui/light/LitPaper.h"
#include "ui/light/OpacityStops.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace vorli::ui {
namespace {

constexpr double discRadius = WhiteSparkShower{}.sparkSize / 2.0, shadowReach = 5.2, glowRadius = 12.0;
constexpr int samplesPerPixel = 4;

// Wide and saturated: a narrow grey glow makes the disc look like a hole in the paper.
constexpr Colour glow{0.05, 0.60, 0.52};
constexpr std::array glowStops{OpacityStop{0.0, 0.60}, OpacityStop{0.3, 0.30}, OpacityStop{0.6, 0.09},
                               OpacityStop{1.0, 0.0}};
// Gradient of a disc that is blurred by the shadow's radius.
constexpr std::array shadowStops{OpacityStop{0.0, WhiteSparkShower::shadowOpacity}, OpacityStop{0.3, 0.62},
                                 OpacityStop{0.6, 0.2}, OpacityStop{1.0, 0.0}};

// Samples one spark along its radius, in device pixels. The edge of the disc is one pixel soft.
std::vector<Premultiplied> lightOf(double pointPixels, double opacity, const PopoverPalette& palette,
                                   Appearance appearance) {
  const bool onPaper = appearance == Appearance::light;
  const double reach = (onPaper ? glowRadius : shadowReach) * pointPixels;
  std::vector<Premultiplied> samples(static_cast<std::size_t>(std::ceil(reach * samplesPerPixel)));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double radius = (static_cast<double>(i) + 0.5) / samplesPerPixel;
    const double points = radius / pointPixels;
    Premultiplied light;
    if (onPaper) light = Premultiplied::of(glow, opacityAt(glowStops, points / glowRadius) * opacity);
    const double shadow = opacityAt(shadowStops, points / shadowReach) * opacity * palette.sparkShadowShare;
    light = Premultiplied::of(palette::white, shadow).over(light);
    const double covered = std::clamp(discRadius * pointPixels - radius + 0.5, 0.0, 1.0);
    samples[i] = Premultiplied::of(palette::white, covered * opacity).over(light);
  }
  return samples;
}

}  // namespace

void paintSparks(QImage& image, const QRect& clip, QPointF centre, double pixelRatio,
                 const WhiteSparkShower::Sparks& sparks, double opacity, Appearance appearance) {
  const auto& palette = PopoverPalette::of(appearance);
  for (const auto& spark : sparks) {
    if (spark.opacity * opacity <= 0.0) continue;
    const auto light = lightOf(spark.scale * pixelRatio, spark.opacity * opacity, palette, appearance);
    paintRoundLight(image, clip, centre + QPointF(spark.x, spark.y) * pixelRatio, light, samplesPerPixel);
  }
}

}  // namespace vorli::ui
