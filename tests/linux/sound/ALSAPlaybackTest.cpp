#include "linux/sound/ALSAPlayback.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

namespace fs = std::filesystem;

struct ALSAPlaybackTest : testing::Test {
  ALSAPlaybackTest() {
    std::string name = (fs::temp_directory_path() / "vorli-asound.XXXXXX").string();
    root = mkdtemp(name.data());
  }
  ~ALSAPlaybackTest() override { fs::remove_all(root); }

  void write(const fs::path& path, const std::string& text) {
    fs::create_directories((root / path).parent_path());
    std::ofstream(root / path) << text;
  }
  std::optional<bool> answer() const { return linuxhost::isALSAPlaybackRunning(root.string()); }

  static constexpr auto running =
      "state: RUNNING\nowner_pid   : 812\ntrigger_time: 5.3\ntstamp      : 0.0\ndelay       : 941\n";

  fs::path root;
};

TEST_F(ALSAPlaybackTest, aMachineWithoutCardsHasNoAnswer) {
  EXPECT_EQ(answer(), std::nullopt);
  EXPECT_EQ(linuxhost::isALSAPlaybackRunning((root / "absent").string()), std::nullopt);
}

TEST_F(ALSAPlaybackTest, aClosedOrPreparedOutputDoesNotRun) {
  write("card0/pcm0p/sub0/status", "closed\n");
  EXPECT_EQ(answer(), false);
  write("card0/pcm0p/sub0/status", "state: PREPARED\nowner_pid   : 812\n");
  EXPECT_EQ(answer(), false);
}

TEST_F(ALSAPlaybackTest, anyRunningOutputOfAnyCardCounts) {
  write("card0/pcm0p/sub0/status", "closed\n");
  write("card1/pcm3p/sub0/status", "closed\n");
  write("card1/pcm3p/sub1/status", running);
  EXPECT_EQ(answer(), true);
}

TEST_F(ALSAPlaybackTest, aRunningMicrophoneDoesNotCount) {
  write("card0/pcm0c/sub0/status", running);
  EXPECT_EQ(answer(), std::nullopt);
  write("card0/pcm0p/sub0/status", "closed\n");
  EXPECT_EQ(answer(), false);
}

TEST_F(ALSAPlaybackTest, onlyCardsCount) {
  write("seq/pcm0p/sub0/status", running);
  write("card0/oss_mixer/sub0/status", running);
  EXPECT_EQ(answer(), std::nullopt);
}

}  // namespace
}  // namespace vorli
