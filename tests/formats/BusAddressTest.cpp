#include "formats/BusAddress.h"

#include <gtest/gtest.h>
#include <string>

namespace vorli::formats {
namespace {

BusAddress pathAddress(const std::string& path) {
  return {path, false};
}

BusAddress abstractAddress(const std::string& name) {
  return {name, true};
}

TEST(BusAddressTest, aPathOrANameOutsideOfTheFileSystemIsALocalSocket) {
  EXPECT_EQ(parseBusAddress("unix:path=/run/user/7/bus"), pathAddress("/run/user/7/bus"));
  EXPECT_EQ(parseBusAddress("unix:path=/run/user/7/bus,guid=1234"), pathAddress("/run/user/7/bus"));
  EXPECT_EQ(parseBusAddress("unix:guid=1234,path=/run/user/7/bus"), pathAddress("/run/user/7/bus"));
  EXPECT_EQ(parseBusAddress("unix:abstract=/tmp/dbus-x,guid=1"), abstractAddress("/tmp/dbus-x"));
  EXPECT_EQ(parseBusAddress("unix:abstract=a,path=/b"), pathAddress("/b"));
  EXPECT_EQ(parseBusAddress("unix:abstract="), abstractAddress(""));
}

TEST(BusAddressTest, onlyTheFirstOfSeveralAddressesIsRead) {
  EXPECT_EQ(parseBusAddress("unix:path=/a;unix:path=/b"), pathAddress("/a"));
  EXPECT_EQ(parseBusAddress("tcp:host=localhost;unix:path=/b"), std::nullopt);
  EXPECT_EQ(parseBusAddress("unix:guid=1;path=/b"), std::nullopt);
}

TEST(BusAddressTest, aByteIsWrittenAsAPercentSignAndTwoHexDigits) {
  EXPECT_EQ(parseBusAddress("unix:path=/a%20bus"), pathAddress("/a bus"));
  EXPECT_EQ(parseBusAddress("unix:path=%2Fa%2c%3b%3D%25"), pathAddress("/a,;=%"));
  EXPECT_EQ(parseBusAddress("unix:abstract=%00%ff"), abstractAddress(std::string("\0\xff", 2)));
  EXPECT_EQ(parseBusAddress("unix:path=%2f41"), pathAddress("/41"));
  for (const char* malformed : {"unix:path=/a%", "unix:path=/a%2", "unix:path=/a%,guid=1", "unix:path=%zz",
                                "unix:path=%2g", "unix:path=%+1", "unix:path=%-1", "unix:path=% 1"})
    EXPECT_EQ(parseBusAddress(malformed), std::nullopt) << malformed;
}

TEST(BusAddressTest, anythingElseIsNoLocalSocket) {
  for (const char* other :
       {"", "unix", "unix:", "unix:path", "unix:path=", "unix:path=,abstract=a", "unix:pathology=/a",
        "unix:,", "unix:guid=1", "unix:tmpdir=/tmp", "unix:runtime=yes", "path=/a", "UNIX:path=/a",
        " unix:path=/a", "autolaunch:", "tcp:host=localhost,port=1", "unixexec:path=/a"})
    EXPECT_EQ(parseBusAddress(other), std::nullopt) << other;
}

}  // namespace
}  // namespace vorli::formats
