#include "linux/session/SystemDescription.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/utsname.h>

namespace vorli::linuxhost {
namespace {

TEST(SystemDescriptionTest, prettyNameIsReadWithoutItsQuotes) {
  EXPECT_EQ(prettyName("NAME=x\nPRETTY_NAME=\"Exemplar Linux 12 (twelve)\"\nID=x\n"),
            "Exemplar Linux 12 (twelve)");
  EXPECT_EQ(prettyName("PRETTY_NAME=Plain"), "Plain");
  EXPECT_EQ(prettyName("PRETTY_NAME='Single quotes'"), "Single quotes");
  EXPECT_EQ(prettyName("PRETTY_NAME=\"With \\\"more\\\" quotes\""), "With \"more\" quotes");
  EXPECT_EQ(prettyName("NAME=x\n"), "");
  EXPECT_EQ(prettyName(""), "");
}

TEST(SystemDescriptionTest, foreignTextsAreShortAndReadable) {
  EXPECT_EQ(prettyName("PRETTY_NAME=" + std::string(10'000, 'x')).size(), 200u);
  EXPECT_EQ(prettyName("PRETTY_NAME=a\x01\xFF"), "a \xEF\xBF\xBD");
}

TEST(SystemDescriptionTest, namesThatTheMakerLeftOutAreEmpty) {
  EXPECT_EQ(productName("Laptop 5\n"), "Laptop 5");
  EXPECT_EQ(productName("Board 3\0"), "Board 3");
  for (const char* text :
       {"", "\n", "  ", "To Be Filled By O.E.M.\n", "System Product Name\n", "Default string\n"}) {
    EXPECT_EQ(productName(text), std::nullopt) << text;
  }
}

TEST(SystemDescriptionTest, firstProcessorIsNamed) {
  EXPECT_EQ(processorModel("processor\t: 0\nmodel\t\t: 5\nmodel name\t: One @ 2 GHz\nmodel name\t: Two\n"),
            "One @ 2 GHz");
  EXPECT_EQ(processorModel("processor: 0\n"), std::nullopt);
  EXPECT_EQ(processorModel("model name\n"), std::nullopt);
}

TEST(SystemDescriptionTest, firmwareComesBeforeTheProcessor) {
  std::string pattern = (std::filesystem::temp_directory_path() / "vorli-system-XXXXXX").string();
  const std::string root = mkdtemp(pattern.data());
  const auto write = [&root](const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
    std::ofstream(root + path) << text;
  };
  SystemDescription system(root);
  EXPECT_EQ(system.hardwareModel(), std::nullopt);
  EXPECT_EQ(system.systemVersion().name, "");
  write("/proc/cpuinfo", "model name: Processor\n");
  EXPECT_EQ(system.hardwareModel(), "Processor");
  write("/sys/class/dmi/id/product_name", "Default string\n");
  EXPECT_EQ(system.hardwareModel(), "Processor");
  write("/sys/firmware/devicetree/base/model", std::string("Board 3\0", 8));
  EXPECT_EQ(system.hardwareModel(), "Board 3");
  write("/sys/class/dmi/id/product_name", "Laptop 5\n");
  EXPECT_EQ(system.hardwareModel(), "Laptop 5");
  write("/usr/lib/os-release", "PRETTY_NAME=Lib");
  EXPECT_EQ(system.systemVersion().name, "Lib");
  write("/etc/os-release", "PRETTY_NAME=Etc");
  EXPECT_EQ(system.systemVersion().name, "Etc");
  std::filesystem::remove_all(root);
}

TEST(SystemDescriptionTest, releaseIsThatOfTheRunningKernel) {
  utsname kernel{};
  ASSERT_EQ(uname(&kernel), 0);
  EXPECT_EQ(SystemDescription().systemVersion().release, kernel.release);
}

}  // namespace
}  // namespace vorli::linuxhost
