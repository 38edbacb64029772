#include "linux/crash/FrameLines.h"
#include "linux/crash/FunctionNames.h"
#include "linux/crash/LoadedModule.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <gtest/gtest.h>
#include <memory>
#include <regex>
#include <string>
#include <vector>

namespace vorli::linuxhost {
namespace {

std::string described(const std::vector<posix::StackFrame>& frames) {
  rememberOwnProgram();
  posix::FixedText<16 * 1024> text;
  describeFrames(frames, text);
  return std::string(text.text());
}

void someFunction() {}

TEST(FrameLinesTest, ownFunctionHasItsNameAndItsPlaceInTheFile) {
  const auto begin = reinterpret_cast<std::uintptr_t>(&someFunction);
  const std::regex wanted(R"(0   vorli_\w+ 0x[0-9a-f]+ \S*someFunction\S* \+ 0)");
  EXPECT_TRUE(std::regex_match(described({{begin, false}}), wanted)) << described({{begin, false}});
}

TEST(FrameLinesTest, functionOfALibraryHasItsNameToo) {
  const auto begin = reinterpret_cast<std::uintptr_t>(&std::getenv);  // no sanitizer has its own
  const std::regex wanted(R"(0   libc\.so\.6 0x[0-9a-f]+ getenv \+ 1)");
  EXPECT_TRUE(std::regex_match(described({{begin + 1, true}}), wanted)) << described({{begin + 1, true}});
}

TEST(FrameLinesTest, addressWithoutCodeIsUnknown) {
  EXPECT_EQ(described({{0, false}, {7, true}}), "0   ???\n1   ???");
  EXPECT_EQ(described({}), "");
}

TEST(FrameLinesTest, moduleKnowsWhatItHolds) {
  EXPECT_FALSE(moduleAt(0));
  const auto own = moduleAt(reinterpret_cast<std::uintptr_t>(&someFunction));
  EXPECT_TRUE(own);
  EXPECT_TRUE(own.path.empty());
  EXPECT_NE(own.id, moduleAt(reinterpret_cast<std::uintptr_t>(&std::abort)).id);
}

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

File fileOf(const std::string& bytes) {
  File file(std::tmpfile(), std::fclose);
  std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  std::fflush(file.get());
  return file;
}

bool findsAnything(const std::string& bytes) {
  const auto file = fileOf(bytes);
  FunctionQuery query{.address = 0x1000};
  std::array<FunctionQuery*, 1> queries{&query};
  FunctionNames names(fileno(file.get()));
  names.find(queries);
  return query.isFound;
}

TEST(FunctionNamesTest, missingAndDamagedFilesHaveNoFunctions) {
  Elf64_Ehdr header{};
  std::memcpy(header.e_ident, ELFMAG, SELFMAG);
  header.e_ident[EI_CLASS] = ELFCLASS64;
  header.e_shentsize = sizeof(Elf64_Shdr);
  header.e_shnum = 3;
  header.e_shoff = sizeof header;
  const auto bytes = [](const auto& record) {
    return std::string(reinterpret_cast<const char*>(&record), sizeof record);
  };
  EXPECT_FALSE(findsAnything(""));
  EXPECT_FALSE(findsAnything("no program"));
  EXPECT_FALSE(findsAnything(bytes(header)));
  Elf64_Shdr section{};
  section.sh_type = SHT_SYMTAB;
  section.sh_link = 9;  // beyond the last
  EXPECT_FALSE(findsAnything(bytes(header) + bytes(section)));
  section.sh_link = 0;
  section.sh_offset = ~std::uint64_t{0};
  section.sh_size = ~std::uint64_t{0};
  EXPECT_FALSE(findsAnything(bytes(header) + bytes(section)));
  header.e_shoff = ~std::uint64_t{0};
  EXPECT_FALSE(findsAnything(bytes(header) + bytes(section)));
}

}  // namespace
}  // namespace vorli::linuxhost
