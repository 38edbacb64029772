#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"
#include "tests/macos/runtime/Sound.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

// Compiles the probe once more, as a class of another name, for a system that is too old for taps: each
// question about the system's version becomes a look into an empty dictionary, which finds nothing.
#define AudioOutputTap OlderAudioOutputTap
#define Listener OlderListener  // the compiler names functions of blocks after it
#define available(...) {}[@0]
#include "macos/sound/AudioOutputTap.mm"
#undef available
#undef Listener
#undef AudioOutputTap

namespace vorli::machost {
namespace {

TEST(OlderSystemTest, aSystemWithoutTapsCannotListen) {
  constexpr std::int32_t unsupportedOperation = 0x756e6f70;  // 'unop'
  OlderAudioOutputTap tap;
  EXPECT_FALSE(tap.canListen());
  const auto result = tap.listen(0.15, [](std::span<const ports::AudioBuffer>) { ADD_FAILURE(); });
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().step, ports::AudioTapFailure::Step::createTap);
  EXPECT_EQ(result.error().status, unsupportedOperation);
  EXPECT_TRUE(macfake::sound().calls.empty());
  EXPECT_TRUE(macfake::machine().sleeps.empty());
}

TEST(OlderSystemTest, knowsWhetherTheOutputRuns) {
  macfake::sound().isRunning = 1;
  EXPECT_EQ(OlderAudioOutputTap().isOutputRunning(), true);
}

}  // namespace
}  // namespace vorli::machost
