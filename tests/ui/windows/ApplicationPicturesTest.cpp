#include "tests/fakes/ApplicationIcons.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/ManualScheduler.h"
#include "tests/ui/windows/PngBytes.h"
#include "ui/windows/ApplicationPictures.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {
namespace {

using PictureState = ApplicationPictures::State;

struct ApplicationPicturesTest : testing::Test {
  ApplicationPicturesTest() {
    changes = pictures->subscribe([this](const std::string& application) { arrived.push_back(application); });
  }

  fakes::ManualScheduler scheduler;
  fakes::ApplicationIcons icons;
  std::unique_ptr<ApplicationPictures> pictures =
      std::make_unique<ApplicationPictures>(icons, std::make_unique<fakes::BackgroundWork>(scheduler));
  std::vector<std::string> arrived;
  Subscription changes;
};

TEST_F(ApplicationPicturesTest, aPictureIsDrawnOffTheMainThreadAndOnlyOnce) {
  icons.images["/a"] = pngOf({64, 64}, Qt::red);
  EXPECT_EQ(pictures->of("/a", 40).state, PictureState::underWay);
  EXPECT_EQ(pictures->of("/a", 40).state, PictureState::underWay);
  EXPECT_TRUE(icons.asked.empty());
  scheduler.advance(0.1);
  EXPECT_EQ(arrived, std::vector<std::string>{"/a"});
  EXPECT_EQ(pictures->of("/a", 40).state, PictureState::known);
  EXPECT_EQ(pictures->of("/a", 40).image.size(), QSize(40, 40));
  scheduler.advance(1.0);
  EXPECT_EQ(icons.asked.size(), 1u);
}

TEST_F(ApplicationPicturesTest, anApplicationWithoutAnIconIsAskedForOnce) {
  pictures->of("/none", 40);
  scheduler.advance(0.1);
  EXPECT_EQ(pictures->of("/none", 40).state, PictureState::known);
  EXPECT_TRUE(pictures->of("/none", 40).image.isNull());
  EXPECT_EQ(icons.asked.size(), 1u);
}

TEST_F(ApplicationPicturesTest, eachScreenHasItsOwnSize) {
  icons.images["/a"] = pngOf({256, 256}, Qt::red);
  pictures->of("/a", 40);
  pictures->of("/a", 80);
  scheduler.advance(0.2);
  EXPECT_EQ(pictures->of("/a", 40).image.width(), 40);
  EXPECT_EQ(pictures->of("/a", 80).image.width(), 80);
}

TEST_F(ApplicationPicturesTest, theLatestRequestIsDrawnFirst) {
  for (const char* path : {"/first", "/second", "/third"}) pictures->of(path, 40);
  pictures->of("/second", 40);
  scheduler.advance(1.0);
  EXPECT_EQ(arrived, (std::vector<std::string>{"/first", "/second", "/third"}));
}

TEST_F(ApplicationPicturesTest, keepsAsManyPicturesAsAFewScreensShow) {
  icons.images["/0"] = pngOf({40, 40}, Qt::red);
  pictures->of("/0", 40);
  scheduler.advance(0.1);
  for (int i = 1; i <= 256; ++i) pictures->of("/" + std::to_string(i), 40);
  scheduler.advance(60.0);
  EXPECT_EQ(arrived.size(), 257u);
  EXPECT_EQ(pictures->of("/256", 40).state, PictureState::known);
  EXPECT_EQ(pictures->of("/0", 40).state, PictureState::underWay);
}

TEST_F(ApplicationPicturesTest, endsAfterTheCurrentWorkOfItsThread) {
  for (const char* path : {"/first", "/second"}) pictures->of(path, 40);
  pictures.reset();
  EXPECT_EQ(icons.asked.size(), 1u);
  scheduler.advance(1.0);
  EXPECT_EQ(icons.asked.size(), 1u);
  EXPECT_TRUE(arrived.empty());
}

TEST(PictureOfIcon, keepsTheProportionsInTheMiddleOfASquare) {
  const QImage wide = pictureOfIcon(pngOf({80, 40}, Qt::red), 40);
  ASSERT_EQ(wide.size(), QSize(40, 40));
  EXPECT_EQ(wide.pixelColor(20, 20), QColor(Qt::red));
  EXPECT_EQ(wide.pixelColor(20, 5).alpha(), 0);
  EXPECT_EQ(pictureOfIcon(pngOf({16, 16}, Qt::red), 40).pixelColor(20, 20), QColor(Qt::red));
}

TEST(PictureOfIcon, refusesFilesThatAreNotIcons) {
  const std::string good = pngOf({40, 40}, Qt::red);
  EXPECT_TRUE(pictureOfIcon("", 40).isNull());
  EXPECT_TRUE(pictureOfIcon("<svg xmlns='http://www.w3.org/2000/svg'/>", 40).isNull());
  EXPECT_TRUE(pictureOfIcon(good.substr(0, 30), 40).isNull());
  EXPECT_FALSE(pictureOfIcon(pngOf({1024, 1}, Qt::red), 40).isNull());
  EXPECT_TRUE(pictureOfIcon(pngOf({1025, 1}, Qt::red), 40).isNull());
}

// A header that promises a picture of many gigabytes must not make the program allocate it.
TEST(PictureOfIcon, refusesAHeaderThatPromisesTooMuch) {
  std::string bytes = pngOf({40, 40}, Qt::red);
  bytes.replace(16, 8, std::string("\0\1\0\0\0\1\0\0", 8));
  EXPECT_TRUE(pictureOfIcon(bytes, 40).isNull());
}

}  // namespace
}  // namespace vorli::ui
