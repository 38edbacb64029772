#include "base/ISOTimestamp.h"
#include "base/UTF8.h"
#include "diagnostics/CrashReportText.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vorli {
namespace {

struct Way {
  const char* name;
  int signal;               // that the parent sees
  const char* summary;      // of the oldest report
  std::size_t reports = 1;  // an exception leaves one and its abort another
  const char* frame = "";   // a function among the first three
};

const std::vector<Way> everyWay{
    {"null", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "writeToNull"},
    {"killed-segv", SIGSEGV, "Fatal signal SIGSEGV (11)"},
    {"killed-abrt", SIGABRT, "Fatal signal SIGABRT (6)"},
    {"killed-ill", SIGILL, "Fatal signal SIGILL (4)"},
    {"killed-bus", SIGBUS, "Fatal signal SIGBUS (7)"},
    {"killed-fpe", SIGFPE, "Fatal signal SIGFPE (8)"},
    {"killed-trap", SIGTRAP, "Fatal signal SIGTRAP (5)"},
    {"illegal", SIGILL, "Fatal signal SIGILL (4)"},
    {"bus", SIGBUS, "Fatal signal SIGBUS (7)", 1, "readBeyondTheFile"},
    {"divide", SIGFPE, "Fatal signal SIGFPE (8)", 1, "divideByZero"},
    {"trap", SIGTRAP, "Fatal signal SIGTRAP (5)"},
    {"abort", SIGABRT, "Fatal signal SIGABRT (6)"},
    {"assertion", SIGABRT, "Fatal signal SIGABRT (6)", 1, "assertionFailed"},
    {"exception", SIGABRT, "Uncaught exception: std::runtime_error, because", 2},
    {"thread-exception", SIGABRT, "Uncaught exception: vorli::(anonymous namespace)::OwnError, no reason", 2,
     "throwOnAThread"},
    {"number-exception", SIGABRT, "Uncaught exception: i, ", 2},
    {"object-exception", SIGABRT, "Uncaught exception: NSRangeException, index 5 beyond the end", 2,
     "writeToNull"},
    {"object-exception-without-calls", SIGABRT,
     "Uncaught exception: NSRangeException, index 5 beyond the end", 2, "throwObject"},
    {"exception-beside-objects", SIGABRT, "Uncaught exception: std::runtime_error, because", 2},
    {"overflow", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "overflowTheStack"},
    {"thread-overflow", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "overflowTheStack"},
    {"malloc-abort", SIGABRT, "Fatal signal SIGABRT (6)", 1, "damageTheTop"},
    {"malloc-fault", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "damageAFreeList"},
    {"log-write", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "FilesThatFault"},
    {"two-threads", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "writeToNull"},
    {"start", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "writeToNull"},
    {"exit", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "writeToNull"},
    {"exit-race", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "writeToNull"},
    {"memory", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "runOutOfMemory"},
    {"descriptors", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "runOutOfDescriptors"},
    {"damaged-stack", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "damageTheStack"},
    {"null-call", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "callNull"},
    {"hang", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "writeToNull"},
    {"second-fault", SIGSEGV, "Fatal signal SIGSEGV (11)", 1, "writeToNull"},
};

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A folder that is removed after the test.
struct TemporaryFolder {
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorli-crash-XXXXXX").string();
    path = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path path;
};

// `output` is the pipe to which the child writes "ready".
void killWhenReady(pid_t child, int output, int signal) {
  std::array<char, 6> word{};
  if (read(output, word.data(), word.size()) == static_cast<ssize_t>(word.size())) kill(child, signal);
}

/// The exit status that the parent gets for a program that crashes in this way.
int crash(const Way& way, const std::filesystem::path& folder) {
  std::array<int, 2> output{};
  EXPECT_EQ(pipe2(output.data(), O_CLOEXEC), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(output[1], STDOUT_FILENO);
    dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
    execl(CRASHING_PROGRAM, CRASHING_PROGRAM, way.name, folder.c_str(), nullptr);
    _exit(127);
  }
  close(output[1]);
  if (std::string_view(way.name).starts_with("killed-")) killWhenReady(child, output[0], way.signal);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  close(output[0]);
  return status;
}

std::vector<std::filesystem::path> reportsIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "data/CrashReports/pending")) {
    paths.push_back(entry.path());
  }
  std::ranges::sort(paths);
  return paths;
}

void expectComplete(const std::filesystem::path& path) {
  const auto report = readFile(path);
  static const std::regex layout(
      "Vorli crash report\n==================\nTimestamp:   (\\S+)\nApp version: v1\\.2\\.3 \\(build 7\\)\n"
      "System:      Exemplar 12, 6\\.1\\.0\nHardware:    Laptop 5\nCrash kind:  (NSException|Signal)\n\n"
      "Summary\n-------\n([^\n]+)\n\nStack trace\n-----------\n((?:[^\n]+\n)+)\n"
      "Recent activity \\(last (\\d+) log lines\\)\n-------------------------------------------------\n");
  static const std::regex frame(R"(\d+ +(\?\?\?|\S+ 0x[0-9a-f]+( \S+ \+ \d+)?))");
  EXPECT_TRUE(isUTF8(report));
  std::smatch match;
  ASSERT_TRUE(std::regex_search(report, match, layout, std::regex_constants::match_continuous)) << report;
  std::string name = match[1].str() + ".txt";
  std::ranges::replace(name, ':', '-');
  EXPECT_EQ(path.filename(), name);
  const std::string rest = match.suffix();
  const std::string kind = match[2], summary = match[3];
  EXPECT_EQ(kind, summary.starts_with("Uncaught exception: ") ? "NSException" : "Signal");
  EXPECT_EQ(std::to_string(std::ranges::count(rest, '\n') + 1), match[5].str());
  EXPECT_TRUE(rest.contains(" [FATAL] " + summary + "\n" + match[4].str())) << report;
  for (const auto line : stackFrames(report)) {
    EXPECT_TRUE(line.empty() || std::regex_match(line.begin(), line.end(), frame)) << line;
  }
}

void expectCrash(const Way& way, std::set<std::string>& signatures) {
  const TemporaryFolder folder;
  const int status = crash(way, folder.path);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == way.signal) << way.name << " " << status;
  const auto reports = reportsIn(folder.path);
  ASSERT_EQ(reports.size(), way.reports) << way.name;
  for (const auto& report : reports) expectComplete(report);
  const auto oldest = readFile(reports.front());
  EXPECT_TRUE(oldest.contains("\nSummary\n-------\n" + std::string(way.summary) + "\n\nStack trace\n"))
      << oldest;
  const auto frames = stackFrames(oldest);
  const auto first = std::span(frames).first(std::min<std::size_t>(frames.size(), 3));
  EXPECT_TRUE(std::ranges::any_of(first, [&](auto line) { return line.contains(way.frame); })) << oldest;
  signatures.insert(crashSignature(oldest));
}

class CrashCaptureTest : public testing::TestWithParam<Way> {};

TEST_P(CrashCaptureTest, leavesItsReportsAndTheRightSignalEveryTime) {
  constexpr int childrenPerWay = 10;
  const bool isSlow = std::string_view(GetParam().name) == "hang";
  std::set<std::string> signatures;
  for (int i = 0; i < (isSlow ? 1 : childrenPerWay); ++i) expectCrash(GetParam(), signatures);
  // A signal from outside can stop the program anywhere, either of two threads can be first, and a stack may
  // end at any instruction of a function that calls itself.
  const std::string_view name = GetParam().name;
  const bool isAnywhere = name.starts_with("killed-") || name == "two-threads" || name.ends_with("overflow");
  EXPECT_TRUE(isAnywhere || signatures.size() == 1) << "the frames differ from run to run";
}

INSTANTIATE_TEST_SUITE_P(Ways, CrashCaptureTest, testing::ValuesIn(everyWay), [](const auto& test) {
  std::string name = test.param.name;
  std::ranges::replace(name, '-', '_');
  return name;
});

TEST(CrashCaptureTimeTest, crashWhoseReportHangsIsOverAfterThreeSeconds) {
  const TemporaryFolder folder;
  const auto start = std::chrono::steady_clock::now();
  const int status = crash({"hang", SIGSEGV, ""}, folder.path);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV);
  EXPECT_GE(taken.count(), 2.5);
  EXPECT_LT(taken.count(), 30.0);
}

TEST(CrashCaptureDiskTest, crashEndsTheSameWhereNothingCanBeWritten) {
  const TemporaryFolder folder;
  std::ofstream(folder.path / "state") << "a file in the place of the folder";
  std::filesystem::create_directories(folder.path / "data/CrashReports");
  std::ofstream(folder.path / "data/CrashReports/pending") << "here too";
  const int status = crash({"null", SIGSEGV, ""}, folder.path);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV);
}

TEST(CrashCaptureDiskTest, fullDiskLeavesNoHalfReportAndNoHalfLine) {
  const TemporaryFolder folder;
  const int status = crash({"disk", SIGSEGV, ""}, folder.path);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV);
  EXPECT_TRUE(reportsIn(folder.path).empty());
  const auto log = readFile(folder.path / "state/Logs/diagnostics.log");
  EXPECT_TRUE(log.ends_with(" [INFO] Vorli launched, v1.2.3 (build 7)\n")) << log;
}

TEST(CrashCaptureDiskTest, logThatIsAPipeHoldsNothingUp) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder.path / "state/Logs");
  ASSERT_EQ(mkfifo((folder.path / "state/Logs/diagnostics.log").c_str(), 0600), 0);
  const int status = crash({"null", SIGSEGV, ""}, folder.path);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV);
  const auto reports = reportsIn(folder.path);
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_TRUE(
      readFile(reports.front())
          .ends_with(
              "Recent activity (last 0 log lines)\n-------------------------------------------------\n"));
}

TEST(CrashCaptureDiskTest, reportHasTheLastHundredLinesOfALongLog) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder.path / "state/Logs");
  std::ofstream log(folder.path / "state/Logs/diagnostics.log");
  for (int i = 0; i < 20'000; ++i) log << "line " << i << " \xC3\xA9\n";
  log.close();
  crash({"null", SIGSEGV, ""}, folder.path);
  const auto reports = reportsIn(folder.path);
  ASSERT_EQ(reports.size(), 1u);
  const auto report = readFile(reports.front());
  EXPECT_NE(report.find("Recent activity (last 100 log lines)\n"), std::string::npos);
  const auto rest = report.substr(report.rfind("-----\n") + 6);
  EXPECT_EQ(std::ranges::count(rest, '\n'), 99);
  EXPECT_NE(rest.find("\nline 19999 \xC3\xA9\n"), std::string::npos);
}

TEST(CrashCaptureDiskTest, logThatCrashesMakeTooLargeIsMovedAway) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder.path / "state/Logs");
  std::ofstream(folder.path / "state/Logs/diagnostics.log") << std::string(999'900, 'x') << '\n';
  crash({"null", SIGSEGV, ""}, folder.path);
  EXPECT_GT(std::filesystem::file_size(folder.path / "state/Logs/diagnostics.1.log"), 1'000'000u);
  EXPECT_FALSE(std::filesystem::exists(folder.path / "state/Logs/diagnostics.log"));
}

}  // namespace
}  // namespace vorli
