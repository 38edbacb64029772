#include "tests/macos/runtime/Dispatch.h"
#include "tests/macos/runtime/Objects.h"
#include "tests/macos/runtime/State.h"

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <optional>

extern "C" {
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* token);
}

namespace vorli {
namespace {

/// Gives each test a new system, and fails those after which an object is left.
class Housekeeping final : public testing::EmptyTestEventListener {
 private:
  void OnTestStart(const testing::TestInfo&) override {
    startAgain();
    before_ = objc::living();
    pool_ = objc_autoreleasePoolPush();
  }

  void OnTestEnd(const testing::TestInfo&) override {
    macfake::joinThreads();
    startAgain();
    objc_autoreleasePoolPop(pool_);
    const auto after = objc::living();
    for (const auto& [type, count] : after) {
      const auto had = before_.find(type);
      const long left = count - (had == before_.end() ? 0 : had->second);
      if (left > 0) ADD_FAILURE() << left << " of " << type << " left behind";
    }
  }

  void startAgain() {
    @autoreleasepool {
      for (const auto& reset : macfake::resets()) reset();
    }
  }

  std::map<std::string, long> before_;
  void* pool_ = nullptr;
};

}  // namespace
}  // namespace vorli

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new vorli::Housekeeping);
  return RUN_ALL_TESTS();
}
