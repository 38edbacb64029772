#include "formats/KernelRelease.h"

#include <gtest/gtest.h>

namespace vorli::formats {
namespace {

TEST(KernelReleaseTest, readsTheFirstTwoNumbers) {
  EXPECT_EQ(parseKernelRelease("6.1.0-18-amd64\n"), (KernelRelease{6, 1}));
  EXPECT_EQ(parseKernelRelease("7.0-rc1"), (KernelRelease{7, 0}));
  EXPECT_EQ(parseKernelRelease("6.10"), (KernelRelease{6, 10}));
}

TEST(KernelReleaseTest, releasesAreOrderedByTheirNumbers) {
  EXPECT_LT(*parseKernelRelease("5.19.2"), (KernelRelease{6, 2}));
  EXPECT_GT(*parseKernelRelease("6.10"), (KernelRelease{6, 2}));
}

TEST(KernelReleaseTest, isEmptyWithoutTwoNumbers) {
  for (const char* text : {"", ".", "6", "6.", ".1", "six.two", "6.x", "-6.1", " 6.1", "v6.1"}) {
    EXPECT_FALSE(parseKernelRelease(text)) << text;
  }
}

TEST(KernelReleaseTest, isEmptyWhenANumberDoesNotFit) {
  EXPECT_EQ(parseKernelRelease("18446744073709551615.1"), (KernelRelease{18446744073709551615U, 1}));
  EXPECT_FALSE(parseKernelRelease("18446744073709551616.1"));
  EXPECT_FALSE(parseKernelRelease("6.18446744073709551616"));
}

}  // namespace
}  // namespace vorli::formats
