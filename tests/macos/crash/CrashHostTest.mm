#include "macos/crash/CrashHost.h"
#include "macos/crash/LoadedImages.h"
#include "tests/macos/runtime/Images.h"
#include "tests/macos/runtime/Log.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <mach-o/nlist.h>
#include <string>
#include <sys/ucontext.h>
#include <vector>

namespace vorli::machost {
namespace {

using Calls = std::vector<std::string>;

constexpr std::uint8_t inSection = N_SECT;
constexpr std::uint8_t ofDebugger = 0x2e;  // in a section as well
constexpr std::uint8_t undefined = 0;

/// A program as it is in memory: its header, and the part of its file that has the symbols. Its code, of
/// which there is none, begins at 0x100000000 in the file and has 0x1000 bytes. It is part of this program's
/// file, so the loader knows its name.
struct ProgramImage {
  mach_header_64 header{MH_MAGIC_64, 0, 0, 2, 3, 0, 0, 0};
  segment_command_64 code = segment(SEG_TEXT, 0x100000000, 0x1000);
  segment_command_64 link = segment(SEG_LINKEDIT, 0, 0x1000);
  symtab_command table{LC_SYMTAB, sizeof(symtab_command), 0, 0, 0, 0};
  std::array<nlist_64, 5> symbols{};
  std::array<char, 256> names{};
  std::uint32_t namesSize = 0;

  static segment_command_64 segment(const char* name, std::uint64_t address, std::uint64_t size) {
    segment_command_64 command{};
    command.cmd = LC_SEGMENT_64;
    command.cmdsize = sizeof command;
    std::strcpy(command.segname, name);
    command.vmaddr = address;
    command.vmsize = size;
    return command;
  }

  void name(std::size_t index, const char* text, std::uint8_t type, std::uint64_t value) {
    symbols[index] = {{namesSize}, type, 1, 0, value};
    std::strcpy(&names[namesSize], text);
    namesSize += static_cast<std::uint32_t>(std::strlen(text)) + 1;
  }

  /// Puts the program into memory so that its code is `slide` bytes from its place in the file.
  void load(std::uintptr_t slide) {
    constexpr std::uint32_t inFile = 0x8000;
    link.vmaddr = reinterpret_cast<std::uintptr_t>(symbols.data()) - slide;
    link.fileoff = inFile;
    table.symoff = inFile;
    table.nsyms = static_cast<std::uint32_t>(symbols.size());
    table.stroff = inFile + static_cast<std::uint32_t>(offsetof(ProgramImage, names)) -
                   static_cast<std::uint32_t>(offsetof(ProgramImage, symbols));
    table.strsize = namesSize;
    macfake::addImage(header, slide);
  }
};

ProgramImage crashed;
ProgramImage newer;

constexpr std::uintptr_t slide = 0x5000;
constexpr std::uintptr_t codeBegin = 0x100005000;

struct CrashHostTest : testing::Test {
  CrashHostTest() {
    crashed = ProgramImage();
    crashed.name(0, "_second", inSection, 0x100000200);
    crashed.name(1, "_first", inSection, 0x100000100);
    crashed.name(2, "_noFunction", ofDebugger, 0x100000210);
    crashed.name(3, "_elsewhere", undefined, 0x100000220);
    crashed.name(4, "_odd name\n", inSection, 0x100000300);
    crashed.load(slide);
  }

  std::string describe(const std::vector<posix::StackFrame>& frames) const {
    posix::FixedText<4096> text;
    host.describe(frames, text);
    return std::string(text.text());
  }
  static std::string nameAt(std::uintptr_t address) {
    return std::string(functionAt(imageAt(address), address).name);
  }

  const posix::CrashHost host = crashHost();
};

TEST_F(CrashHostTest, anImageHasTheAddressesOfItsCode) {
  EXPECT_FALSE(imageAt(codeBegin - 1).header);
  EXPECT_EQ(imageAt(codeBegin).header, &crashed.header);
  EXPECT_EQ(imageAt(codeBegin + 0xFFF).header, &crashed.header);
  EXPECT_FALSE(imageAt(codeBegin + 0x1000).header);
  EXPECT_EQ(imageAt(codeBegin).slide, slide);
  EXPECT_EQ(host.moduleOf(codeBegin), &crashed.header);
  EXPECT_EQ(host.moduleOf(codeBegin - 1), nullptr);
}

TEST_F(CrashHostTest, theNewestOfTwoImagesAtOneAddressCounts) {
  newer = ProgramImage();
  newer.load(slide);
  EXPECT_EQ(imageAt(codeBegin).header, &newer.header);
}

TEST_F(CrashHostTest, anImageOfAnotherKindIsIgnored) {
  newer = ProgramImage();
  newer.header.magic = 0xfeedface;
  newer.load(0x90000000);
  EXPECT_FALSE(imageAt(0x190000000).header);
}

TEST_F(CrashHostTest, theNearestFunctionBeforeAnAddressContainsIt) {
  EXPECT_EQ(nameAt(codeBegin + 0xFF), "");
  EXPECT_EQ(nameAt(codeBegin + 0x100), "_first");
  EXPECT_EQ(nameAt(codeBegin + 0x1FF), "_first");
  EXPECT_EQ(nameAt(codeBegin + 0x200), "_second");
  EXPECT_EQ(nameAt(codeBegin + 0x2FF), "_second");
  EXPECT_EQ(functionAt(imageAt(codeBegin), codeBegin + 0x2FF).offset, 0xFFU);
}

TEST_F(CrashHostTest, aDamagedTableHasNoNames) {
  crashed.table.strsize = 3;
  EXPECT_EQ(nameAt(codeBegin + 0x100), "");
  crashed.table.cmd = 0;
  EXPECT_EQ(nameAt(codeBegin + 0x100), "");
}

// The return address of a last call is in the next function.
TEST_F(CrashHostTest, framesHaveAddressesOfTheFileAndTheFunctionsThatCalled) {
  EXPECT_EQ(
      describe({{codeBegin + 0x200, false}, {codeBegin + 0x200, true}, {codeBegin + 0x10, true}, {7, true}}),
      "0   vorli_macos_tests 0x100000200 _second + 0\n"
      "1   vorli_macos_tests 0x100000200 _first + 256\n"
      "2   vorli_macos_tests 0x100000010\n"
      "3   ???");
}

TEST_F(CrashHostTest, aFrameIsOneLineOfPlainText) {
  EXPECT_EQ(describe({{codeBegin + 0x300, false}}), "0   vorli_macos_tests 0x100000300 _odd?name? + 0");
}

TEST_F(CrashHostTest, aLongNameIsCut) {
  crashed.symbols[4].n_un.n_strx = 0;
  crashed.names.fill('x');
  crashed.table.strsize = 200;
  EXPECT_EQ(describe({{codeBegin + 0x300, false}}),
            "0   vorli_macos_tests 0x100000300 " + std::string(120, 'x') + " + 0");
}

TEST_F(CrashHostTest, aCallToNowhereIsLeftByItsReturnAddress) {
  std::uintptr_t stack[]{codeBegin + 0x123, 0};
  vorli_machine_context registers{{4711, reinterpret_cast<std::uintptr_t>(stack)}};
  ucontext_t context{&registers};
  EXPECT_EQ(host.interruptedAt(&context), 4711U);
  EXPECT_EQ(host.stepOutOfBadCall(&context), codeBegin + 0x123);
  EXPECT_EQ(registers.__ss.__rip, codeBegin + 0x123);
  EXPECT_EQ(registers.__ss.__rsp, reinterpret_cast<std::uintptr_t>(stack + 1));
}

TEST_F(CrashHostTest, aStackWithoutAReturnAddressIsLeftAlone) {
  std::uintptr_t stack[]{12, 0};
  vorli_machine_context registers{{4711, reinterpret_cast<std::uintptr_t>(stack)}};
  ucontext_t context{&registers};
  EXPECT_EQ(host.stepOutOfBadCall(&context), 0U);
  EXPECT_EQ(registers.__ss.__rip, 4711U);
}

TEST_F(CrashHostTest, theSystemsLogGetsTheWholeLine) {
  host.writeSystemLog("FATAL: Fatal signal SIGSEGV (11)");
  EXPECT_EQ(macfake::log().lines, Calls{"com.kv.vorli/diagnostics 0: FATAL: Fatal signal SIGSEGV (11)"});
}

}  // namespace
}  // namespace vorli::machost
