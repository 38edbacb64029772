#include "ambient/WhiteSparkShower.h"

#include <cmath>

namespace vorli {
namespace {

constexpr double lit = 1000.0;
constexpr double sparkTolerance = 1e-5;

WhiteSparkShower::Spark sparkAt(std::size_t index, double elapsed) {
  return (*WhiteSparkShower{.startDate = lit}.sparks(lit + elapsed))[index];
}

TEST(WhiteSparkShowerTest, showsNothingUntilItIsLit) {
  EXPECT_FALSE(WhiteSparkShower{}.sparks(lit));
  const auto before = WhiteSparkShower{.startDate = lit}.sparks(lit - 0.4);
  for (const auto& spark : *before) {
    EXPECT_EQ(spark.opacity, 0.0);
    EXPECT_EQ(spark.x, 0.0);
    EXPECT_EQ(spark.y, 0.0);
    EXPECT_EQ(spark.scale, 0.35);
  }
}

TEST(WhiteSparkShowerTest, aSparkLightsUpFliesAndGoesOut) {
  struct Moment {
    double elapsed, opacity, travel, scale;
  };
  for (const auto& at :
       {Moment{0.0, 0.0, 0.0, 0.35}, Moment{0.09, 0.5, 0.12035, 0.42823}, Moment{0.18, 1.0, 0.23157, 0.50052},
        Moment{0.9, 1.0, 0.82322, 0.88510}, Moment{1.26, 1.0, 0.95070, 0.96796},
        Moment{1.53, 0.5, 0.99129, 0.99434}, Moment{1.8, 0.0, 1.0, 1.0}, Moment{3.0, 0.0, 1.0, 1.0}}) {
    const auto spark = sparkAt(0, at.elapsed);
    EXPECT_NEAR(spark.opacity, at.opacity, sparkTolerance) << at.elapsed;
    EXPECT_NEAR(spark.x, -58.0 * at.travel, 58.0 * sparkTolerance) << at.elapsed;
    EXPECT_NEAR(spark.y, -38.0 * at.travel, 38.0 * sparkTolerance) << at.elapsed;
    EXPECT_NEAR(spark.scale, at.scale, sparkTolerance) << at.elapsed;
  }
}

TEST(WhiteSparkShowerTest, eachSparkStartsAfterTheOneBefore) {
  for (std::size_t i = 0; i < 12; ++i) {
    const double start = 0.07 * static_cast<double>(i);
    EXPECT_EQ(sparkAt(i, start - 0.001).opacity, 0.0) << i;
    EXPECT_GT(sparkAt(i, start + 0.001).opacity, 0.0) << i;
  }
  EXPECT_NEAR(sparkAt(11, 0.9).opacity, 0.72222, sparkTolerance);
  EXPECT_NEAR(sparkAt(11, 0.9).scale, 0.46108, sparkTolerance);
  EXPECT_NEAR(sparkAt(11, 1.26).y, -74.0 * 0.54815, 1e-3);
}

TEST(WhiteSparkShowerTest, theLastSparkIsOutAfterTwoPointFiveSevenSeconds) {
  EXPECT_GT(sparkAt(11, 2.56).opacity, 0.0);
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(sparkAt(i, 2.5701).opacity, 0.0) << i;
}

TEST(WhiteSparkShowerTest, everySparkEndsAtItsOwnPlace) {
  const double places[12][2] = {{-58, -38}, {62, -28},  {38, 68},  {-70, 22}, {0, -68}, {-28, 64},
                                {72, 18},   {-64, -22}, {58, -48}, {-42, 50}, {22, 72}, {-12, -74}};
  for (std::size_t i = 0; i < 12; ++i) {
    const auto spark = sparkAt(i, 2.6);
    EXPECT_EQ(spark.x, places[i][0]);
    EXPECT_EQ(spark.y, places[i][1]);
  }
}

}  // namespace
}  // namespace vorli
