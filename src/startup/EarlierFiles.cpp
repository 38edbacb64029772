#include "startup/EarlierFiles.h"

namespace vorli {

void makeRoom(ports::StartupFiles& files, const std::string& path) {
  constexpr int mostEarlierFiles = 100;
  for (int number = 1; number <= mostEarlierFiles; ++number) {
    const auto moved = files.moveWithoutReplacing(path, path + "." + std::to_string(number));
    if (moved != ports::MoveResult::targetExists) return;
  }
}

}  // namespace vorli
