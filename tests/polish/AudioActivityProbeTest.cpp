#include "polish/AudioActivityProbe.h"
#include "tests/fakes/AudioOutputTap.h"
#include "tests/fakes/CapturedLog.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace vorli {
namespace {

using TapStep = ports::AudioTapFailure::Step;

struct AudioActivityProbeTest : testing::Test {
  fakes::CapturedLog log;
  fakes::AudioOutputTap tap;
  AudioActivityProbe probe{tap};
};

TEST_F(AudioActivityProbeTest, listensFor150MillisecondsWithAThresholdOf002) {
  tap.play({0.5F});
  EXPECT_TRUE(probe.isAudioActive());
  EXPECT_EQ(tap.windows, std::vector{0.15});
  EXPECT_EQ(log.lines(), (std::vector<fakes::CapturedLog::Line>{
                             {LogLevel::debug, "audio-detector",
                              "Audio probe: peak=0.500000, threshold=0.020000, audible=true"}}));
}

TEST_F(AudioActivityProbeTest, aPeakOfExactlyTheThresholdIsNotAudible) {
  tap.play({0.02F});
  EXPECT_FALSE(probe.isAudioActive());
  EXPECT_EQ(log.count("Audio probe: peak=0.020000, threshold=0.020000, audible=false"), 1);

  tap.play({std::nextafter(0.02F, 1.0F)});
  EXPECT_TRUE(probe.isAudioActive());
}

TEST_F(AudioActivityProbeTest, theLargestAbsoluteSampleOfAllListsCounts) {
  tap.play({0.001F, -0.3F, 0.1F});
  tap.play({0.01F});
  EXPECT_TRUE(probe.isAudioPlaying(0.15, 0.29F));
  EXPECT_FALSE(probe.isAudioPlaying(0.15, 0.3F));
}

TEST_F(AudioActivityProbeTest, everyBufferOfAListCounts) {
  const std::array quiet{0.0F}, loud{0.9F};
  tap.lists = {{{quiet.data(), sizeof quiet}, {loud.data(), sizeof loud}, {quiet.data(), sizeof quiet}}};
  EXPECT_TRUE(probe.isAudioActive());
}

TEST_F(AudioActivityProbeTest, noBuffersInTheWindowAreSilence) {
  tap.outputRunning = true;
  EXPECT_FALSE(probe.isAudioActive());
  EXPECT_EQ(log.count("Audio probe: peak=0.000000, threshold=0.020000, audible=false"), 1);
  EXPECT_EQ(tap.outputReads, 0);
}

TEST_F(AudioActivityProbeTest, aBufferWithoutDataIsPassedOver) {
  const std::array loud{0.9F};
  tap.lists = {{{nullptr, 4096}}};
  EXPECT_FALSE(probe.isAudioActive());
  tap.lists = {{{nullptr, 4096}, {loud.data(), sizeof loud}}};
  EXPECT_TRUE(probe.isAudioActive());
}

TEST_F(AudioActivityProbeTest, theLastBytesOfAnOddBufferAreIgnored) {
  const std::array samples{0.0F, 0.9F};
  for (const std::size_t bytes : {5, 6, 7}) {
    tap.lists = {{{samples.data(), bytes}}};
    EXPECT_FALSE(probe.isAudioActive()) << bytes;
  }
  tap.lists = {{{samples.data(), 8}}};
  EXPECT_TRUE(probe.isAudioActive());
}

TEST_F(AudioActivityProbeTest, aBufferMayStartAtAnyAddress) {
  const float loud = 0.9F;
  std::array<char, 5> bytes{};
  std::memcpy(bytes.data() + 1, &loud, sizeof loud);
  tap.lists = {{{bytes.data() + 1, 4}}};
  EXPECT_TRUE(probe.isAudioActive());
}

TEST_F(AudioActivityProbeTest, aSampleThatIsNotANumberIsNotAPeak) {
  tap.play({std::numeric_limits<float>::quiet_NaN(), 0.01F});
  EXPECT_FALSE(probe.isAudioActive());
}

TEST_F(AudioActivityProbeTest, eachProbeStartsFromZero) {
  tap.play({0.9F});
  EXPECT_TRUE(probe.isAudioActive());
  tap.silence();
  EXPECT_FALSE(probe.isAudioActive());
}

TEST_F(AudioActivityProbeTest, aSilentButRunningOutputIsActiveForTheFallbackAlone) {
  tap.play({0.0F, 0.0F});
  tap.outputRunning = true;
  EXPECT_FALSE(probe.isAudioPlaying(0.15, 0.02F));
  EXPECT_TRUE(probe.legacyAudioActive());
}

TEST_F(AudioActivityProbeTest, theFallbackIsFalseWithoutAReadableOutput) {
  tap.outputRunning = std::nullopt;
  EXPECT_FALSE(probe.legacyAudioActive());
  tap.outputRunning = false;
  EXPECT_FALSE(probe.legacyAudioActive());
  tap.outputRunning = true;
  EXPECT_TRUE(probe.legacyAudioActive());
}

TEST_F(AudioActivityProbeTest, aSystemThatCannotListenIsAskedAtOnceAndLogsNothing) {
  tap.listens = false;
  tap.play({0.9F});
  EXPECT_FALSE(probe.isAudioActive());
  tap.outputRunning = true;
  EXPECT_TRUE(probe.isAudioActive());
  EXPECT_TRUE(tap.windows.empty());
  EXPECT_TRUE(log.lines().empty());
}

struct AudioTapFailureTest : AudioActivityProbeTest,
                             testing::WithParamInterface<std::pair<TapStep, std::string>> {};

TEST_P(AudioTapFailureTest, isLoggedAndAnsweredByTheFallback) {
  const auto& [step, message] = GetParam();
  tap.failure = {step, -66};
  tap.play({0.9F});
  EXPECT_FALSE(probe.isAudioActive());
  EXPECT_EQ(log.lines(),
            (std::vector<fakes::CapturedLog::Line>{{LogLevel::error, "audio-detector", message}}));

  tap.outputRunning = true;
  EXPECT_TRUE(probe.isAudioActive());
}

INSTANTIATE_TEST_SUITE_P(
    EveryStep, AudioTapFailureTest,
    testing::Values(std::pair(TapStep::createTap,
                              "CreateProcessTap failed: -66. Falling back to legacy probe."),
                    std::pair(TapStep::readTapIdentifier, "Couldn't read tap UID"),
                    std::pair(TapStep::createDevice, "CreateAggregateDevice failed: -66"),
                    std::pair(TapStep::createInputProcedure, "CreateIOProcID failed: -66"),
                    std::pair(TapStep::start, "AudioDeviceStart failed: -66")));

}  // namespace
}  // namespace vorli
