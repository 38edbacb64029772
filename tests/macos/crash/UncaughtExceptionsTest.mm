#include "macos/crash/UncaughtExceptions.h"
#include "tests/macos/runtime/Foundation.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <typeinfo>
#include <vector>

namespace vorli::machost {
namespace {

struct ReportedException {
  std::string name;
  std::string reason;
  std::vector<std::uintptr_t> calls;

  bool operator==(const ReportedException&) const = default;
};

std::vector<ReportedException> reportedExceptions;

class UncaughtExceptionsTest : public testing::Test {
 protected:
  UncaughtExceptionsTest() {
    reportedExceptions.clear();
    installExceptionHandler([](const posix::SystemException& exception) {
      reportedExceptions.push_back({std::string(exception.name),
                                    std::string(exception.reason),
                                    {exception.calls.begin(), exception.calls.end()}});
    });
  }
};

TEST_F(UncaughtExceptionsTest, theHandlerGetsTheNameTheReasonAndTheCalls) {
  const auto handler = macfake::uncaughtExceptionHandler();
  ASSERT_TRUE(handler);
  handler([NSException exceptionWithName:@"NSRangeException" reason:@"index 5" calls:@[ @4096, @64 ]]);
  EXPECT_EQ(reportedExceptions,
            (std::vector<ReportedException>{{"NSRangeException", "index 5", {4096, 64}}}));
}

TEST_F(UncaughtExceptionsTest, anExceptionWithoutAReasonOrCallsIsReported) {
  macfake::uncaughtExceptionHandler()([NSException exceptionWithName:@"Odd" reason:nil calls:nil]);
  EXPECT_EQ(reportedExceptions, (std::vector<ReportedException>{{"Odd", "", {}}}));
}

TEST_F(UncaughtExceptionsTest, onlyATypeWithTheNameOfAClassIsTheSystems) {
  EXPECT_TRUE(isSystemException("NSException"));
  EXPECT_FALSE(isSystemException(typeid(std::string).name()));
  EXPECT_FALSE(isSystemException(typeid(int).name()));
  EXPECT_FALSE(isSystemException(typeid(ReportedException).name()));
}

}  // namespace
}  // namespace vorli::machost
