#include "linux/crash/FrameLines.h"

#include "linux/crash/FunctionNames.h"
#include "linux/crash/LoadedModule.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

using posix::FixedText;
using posix::StackFrame;
using posix::TextBuffer;

constexpr std::size_t mostFrames = 64;

// Enough of a file to include its build ID.
constexpr std::size_t comparedBytes = 1024;

int ownProgram = -1;
FixedText<64> ownProgramName;

struct Line {
  LoadedModule module;
  FunctionQuery function;
  bool isNamed = false;
  std::array<char, 128> name;
  std::size_t nameBytes = 0;
};

struct Lines {
  std::array<Line, mostFrames> lines;
  std::size_t count = 0;
};

// Too large for a signal handler's stack. One crash is described at a time.
Lines described;

std::string_view baseName(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

void addPrintable(std::string_view name, TextBuffer& text) {
  for (const char c : name) text.add(c > ' ' && c < 0x7F ? std::string_view(&c, 1) : "?");
}

// False when the file on disk is not the loaded one but a replacement, which has other functions.
bool isLoadedFile(int file, const LoadedModule& module) {
  std::array<char, comparedBytes> front;
  return pread(file, front.data(), front.size(), 0) == static_cast<ssize_t>(front.size()) &&
         std::memcmp(front.data(), reinterpret_cast<const void*>(module.begin), front.size()) == 0;
}

void nameFunctions(int file, std::span<FunctionQuery* const> queries, std::span<Line* const> lines) {
  FunctionNames names(file);
  names.find(queries);
  for (Line* line : lines) {
    if (!line->function.isFound) continue;
    TextBuffer name(line->name);
    names.addName(line->function, name);
    line->nameBytes = name.text().size();
    line->isNamed = line->nameBytes > 0;
  }
}

// Names all frames of one module together, so that its file is read only once.
void nameFunctionsOf(const LoadedModule& module) {
  std::array<FunctionQuery*, mostFrames> queries;
  std::array<Line*, mostFrames> lines;
  std::size_t count = 0;
  for (auto& line : std::span(described.lines).first(described.count)) {
    if (line.module.id != module.id) continue;
    queries[count] = &line.function;
    lines[count++] = &line;
  }
  const bool isOwn = module.path.empty();
  // NOLINTNEXTLINE(bugprone-suspicious-stringview-data-usage): the text ends with a NUL
  const int file = isOwn ? ownProgram : open(module.path.data(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return;
  if (isLoadedFile(file, module))
    nameFunctions(file, std::span(queries).first(count), std::span(lines).first(count));
  if (!isOwn) close(file);
}

void locate(std::span<const StackFrame> frames) {
  described.count = std::min(frames.size(), mostFrames);
  for (std::size_t i = 0; i < described.count; ++i) {
    Line& line = described.lines[i];
    line.module = moduleAt(frames[i].address);
    line.isNamed = false;
    line.function = {.address = frames[i].address - line.module.bias - (frames[i].isReturnAddress ? 1 : 0)};
  }
}

void nameAllFunctions() {
  for (std::size_t i = 0; i < described.count; ++i) {
    const auto& module = described.lines[i].module;
    const auto earlier = std::span(described.lines).first(i);
    const bool isDone = std::any_of(earlier.begin(), earlier.end(),
                                    [&](const Line& line) { return line.module.id == module.id; });
    if (module && !isDone) nameFunctionsOf(module);
  }
}

void addLine(const Line& line, const StackFrame& frame, TextBuffer& text) {
  if (!line.module) {
    text.add("???");
    return;
  }
  const auto path = line.module.path;
  addPrintable(path.empty() ? ownProgramName.text() : baseName(path), text);
  const std::uint64_t address = frame.address - line.module.bias;
  text.add(" 0x").addHex(address);
  if (!line.isNamed) return;
  text.add(" ");
  addPrintable({line.name.data(), line.nameBytes}, text);
  text.add(" + ").addDecimal(address - line.function.begin);
}

}  // namespace

void rememberOwnProgram() {
  if (ownProgram < 0) ownProgram = open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
  std::array<char, 4096> path;
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  ownProgramName.clear();
  if (length > 0) ownProgramName.add(baseName({path.data(), static_cast<std::size_t>(length)}));
}

void describeFrames(std::span<const StackFrame> frames, TextBuffer& text) {
  locate(frames);
  nameAllFunctions();
  for (std::size_t i = 0; i < described.count; ++i) {
    if (i > 0) text.add("\n");
    FixedText<8> number;
    number.addDecimal(i);
    while (number.text().size() < 4) number.add(" ");
    text.add(number.text());
    addLine(described.lines[i], frames[i], text);
  }
}

}  // namespace vorli::linuxhost
