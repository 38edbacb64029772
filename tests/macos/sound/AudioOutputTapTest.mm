#include "macos/sound/AudioOutputTap.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"
#include "tests/macos/runtime/Sound.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::sound;
using Calls = std::vector<std::string>;
using Step = ports::AudioTapFailure::Step;

struct AudioOutputTapTest : testing::Test {
  std::expected<void, ports::AudioTapFailure> listen() {
    return tap.listen(0.15, [this](std::span<const ports::AudioBuffer> buffers) {
      calls.push_back(buffers.size());
      for (const auto& each : buffers) {
        const auto* const samples = static_cast<const float*>(each.data);
        heard.insert(heard.end(), samples, samples + each.byteSize / sizeof(float));
      }
    });
  }
  std::string text(const char* key) {
    const id value = sound().device[macfake::string(key)];
    if ([value isKindOfClass:NSString.class]) return static_cast<NSString*>(value).UTF8String;
    return std::to_string(static_cast<NSNumber*>(value).intValue);
  }

  AudioOutputTap tap;
  std::vector<std::size_t> calls;
  std::vector<float> heard;
};

TEST_F(AudioOutputTapTest, aWholeProbeMakesAndDestroysEverythingInOrder) {
  sound().buffers = {{0.0F, 0.5F}, {-0.25F}};
  EXPECT_TRUE(tap.canListen());
  ASSERT_TRUE(listen());
  EXPECT_EQ(sound().calls, (Calls{"stereo mix of 0, Vorli audio probe, private, mute 0", "create tap",
                                  "read tap", "create device", "create procedure", "start", "stop",
                                  "destroy procedure", "destroy device", "destroy tap"}));
  EXPECT_EQ(sound().open, Calls{});
  EXPECT_EQ(macfake::machine().sleeps, std::vector<double>{0.15});
  EXPECT_EQ(heard, (std::vector<float>{0.0F, 0.5F, -0.25F}));
}

TEST_F(AudioOutputTapTest, theDeviceIsPrivateAndStartsWithItsTap) {
  ASSERT_TRUE(listen());
  EXPECT_EQ(text("name"), "Vorli Audio Probe");
  EXPECT_TRUE(text("uid").starts_with("com.kv.vorli.audio-probe."));
  EXPECT_GT(text("uid").size(), 30U);
  EXPECT_EQ(text("private"), "1");
  EXPECT_EQ(text("stacked"), "0");
  EXPECT_EQ(text("tapautostart"), "1");
  NSArray* const taps = sound().device[@"taps"];
  ASSERT_EQ(taps.count, 1U);
  NSDictionary* const first = taps[0];
  EXPECT_STREQ(static_cast<NSString*>(first[@"uid"]).UTF8String, "TAP-UID");
  EXPECT_EQ(static_cast<NSNumber*>(first[@"drift"]).intValue, 0);
}

TEST_F(AudioOutputTapTest, aListWithManyBuffersIsPassedOnInPieces) {
  sound().buffers.assign(19, {1.0F});
  ASSERT_TRUE(listen());
  EXPECT_EQ(calls, (std::vector<std::size_t>{8, 8, 3}));
  EXPECT_EQ(heard.size(), 19U);
}

TEST_F(AudioOutputTapTest, aGapHasNoData) {
  sound().buffers = {{}};
  ASSERT_TRUE(listen());
  EXPECT_EQ(calls, std::vector<std::size_t>{1});
  EXPECT_EQ(heard.size(), 0U);
}

TEST_F(AudioOutputTapTest, eachFailedStepIsNamedWithItsStatusAndLeavesNothing) {
  const std::pair<const char*, Step> steps[] = {{"create tap", Step::createTap},
                                                {"read tap", Step::readTapIdentifier},
                                                {"create device", Step::createDevice},
                                                {"create procedure", Step::createInputProcedure},
                                                {"start", Step::start}};
  for (const auto& [call, step] : steps) {
    sound().failing = call;
    sound().error = 560947818;
    const auto result = listen();
    ASSERT_FALSE(result) << call;
    EXPECT_EQ(result.error().step, step) << call;
    EXPECT_EQ(result.error().status, 560947818) << call;
    EXPECT_EQ(sound().open, Calls{}) << call;
    EXPECT_EQ(sound().procedure, nil) << call;
  }
  EXPECT_EQ(macfake::machine().sleeps, std::vector<double>{});
}

TEST_F(AudioOutputTapTest, aStepThatSucceedsWithoutAnObjectHasFailed) {
  const std::pair<const char*, Step> steps[] = {{"create tap", Step::createTap},
                                                {"create device", Step::createDevice},
                                                {"create procedure", Step::createInputProcedure}};
  sound().createsNothing = true;
  for (const auto& [call, step] : steps) {
    sound().failing = call;
    const auto result = listen();
    ASSERT_FALSE(result) << call;
    EXPECT_EQ(result.error().step, step) << call;
    EXPECT_EQ(result.error().status, 0) << call;
    EXPECT_EQ(sound().open, Calls{}) << call;
  }
}

TEST_F(AudioOutputTapTest, soundThatStillComesAfterTheWindowIsNotPassedOn) {
  sound().buffers = {{0.5F}};
  sound().failing = "start";  // nothing is played before the procedure is destroyed
  sound().error = -1;
  EXPECT_FALSE(listen());
  EXPECT_EQ(calls, std::vector<std::size_t>{});
}

TEST_F(AudioOutputTapTest, whetherTheOutputRunsIsAskedOfTheDefaultDevice) {
  EXPECT_EQ(tap.isOutputRunning(), false);
  sound().isRunning = 1;
  EXPECT_EQ(tap.isOutputRunning(), true);
  EXPECT_EQ(sound().calls, (Calls{"read output", "read running", "read output", "read running"}));
}

TEST_F(AudioOutputTapTest, withoutADeviceOrAnAnswerItIsUnknown) {
  sound().hasDefaultDevice = false;
  EXPECT_FALSE(tap.isOutputRunning());
  sound().hasDefaultDevice = true;
  sound().error = -1;
  for (const char* call : {"read output", "read running"}) {
    sound().failing = call;
    EXPECT_FALSE(tap.isOutputRunning()) << call;
  }
}

}  // namespace
}  // namespace vorli::machost
