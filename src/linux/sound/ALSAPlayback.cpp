#include "linux/sound/ALSAPlayback.h"

#include "linux/kernel/SmallFile.h"

#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace vorli::linuxhost {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> entries(const fs::path& folder, std::string_view prefix, std::string_view suffix = {}) {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    const std::string name = at->path().filename().string();
    if (name.starts_with(prefix) && name.ends_with(suffix)) found.push_back(at->path());
  }
  return found;
}

// The file holds "closed", or lines of which the first is the state.
bool isRunning(const fs::path& status) {
  return readSmallFile(status.string()).value_or("").starts_with("state: RUNNING\n");
}

}  // namespace

std::optional<bool> isALSAPlaybackRunning(const std::string& root) {
  std::optional<bool> answer;
  for (const auto& card : entries(root, "card")) {
    for (const auto& device : entries(card, "pcm", "p")) {  // "pcm0p" plays, "pcm0c" records
      for (const auto& substream : entries(device, "sub")) {
        if (isRunning(substream / "status")) return true;
        answer = false;
      }
    }
  }
  return answer;
}

}  // namespace vorli::linuxhost
