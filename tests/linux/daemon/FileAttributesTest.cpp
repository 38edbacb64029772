#include "linux/daemon/FileAttributes.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/mman.h>

namespace vorli::linuxhost {
namespace {

posix::FileDescriptor nameless() {
  return posix::FileDescriptor(::memfd_create("attributes", MFD_CLOEXEC));
}

TEST(FileAttributesTest, aFileWithoutAttributesHasNothingToKeep) {
  EXPECT_TRUE(copyAttributes(nameless(), nameless()).has_value());
}

TEST(FileAttributesTest, unreadableAttributesAreNotTakenForNone) {
  const posix::FileDescriptor closed;
  EXPECT_EQ(copyAttributes(closed, nameless()).error().code, EBADF);
  EXPECT_EQ(copyAttributes(nameless(), closed).error().code, EBADF);
}

}  // namespace
}  // namespace vorli::linuxhost
