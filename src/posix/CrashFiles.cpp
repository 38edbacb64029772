#include "posix/CrashFiles.h"

#include "posix/FileContent.h"
#include "posix/FileModes.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace vorli::posix {

// NOLINTBEGIN(bugprone-suspicious-stringview-data-usage): every path here ends with a NUL

namespace {

// Copies the path and a terminating null; false when it does not fit.
template <std::size_t capacity>
bool keepPath(std::string_view given, FixedText<capacity>& text) {
  text.clear();
  text.add(given).add(std::string_view("\0", 1));
  return text.text().size() == given.size() + 1;
}

// Creates every parent folder of the path.
void makeFoldersOf(const char* path) {
  FixedText<PATH_MAX> folder;
  for (const char* at = path; *at; ++at) {
    if (*at == '/' && at != path) {
      FixedText<PATH_MAX> ended;
      ended.add(folder.text()).add(std::string_view("\0", 1));
      mkdir(ended.text().data(), folderMode);
    }
    folder.add({at, 1});
  }
}

// False when the disk does not take everything.
bool copyRange(int from, int to, off_t begin, off_t end) {
  std::array<char, 4096> chunk;
  while (begin < end) {
    const auto wanted = std::min<off_t>(end - begin, static_cast<off_t>(chunk.size()));
    const ssize_t got = pread(from, chunk.data(), static_cast<std::size_t>(wanted), begin);
    if (got <= 0) break;  // another thread has moved or cleared the log
    if (!writeAll(to, {chunk.data(), static_cast<std::size_t>(got)})) return false;
    begin += got;
  }
  return true;
}

}  // namespace

bool CrashFiles::prepare(const ports::CrashCapturePlan& plan) {
  for (int& descriptor : reserve_) {
    if (descriptor < 0) descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
  }
  maxLogBytes_ = plan.maxLogBytes;
  recentLines_ = plan.recentLines;
  return keepPath(plan.logFile, logFile_) && keepPath(plan.previousLogFile, previousLogFile_) &&
         keepPath(plan.pendingFolder + "/", pendingFolder_) && keepPath(plan.reportSuffix, suffix_);
}

// Another thread may take a released descriptor, so more are reserved than there are files.
int CrashFiles::openFile(const char* path, int flags) {
  int file = open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, fileMode);
  for (int& descriptor : reserve_) {
    if (file >= 0 || (errno != EMFILE && errno != ENFILE)) break;
    if (descriptor < 0) continue;
    close(std::exchange(descriptor, -1));
    file = open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, fileMode);
  }
  struct stat status {};
  if (file < 0 || (fstat(file, &status) == 0 && S_ISREG(status.st_mode))) return file;
  close(file);  // a pipe or a device might block
  return -1;
}

void CrashFiles::appendToLog(std::initializer_list<std::string_view> pieces) {
  makeFoldersOf(logFile_.text().data());
  const int log = openFile(logFile_.text().data(), O_WRONLY | O_APPEND | O_CREAT);
  if (log < 0) return;
  std::array<iovec, 8> vectors;
  int count = 0;
  std::size_t bytes = 0;
  for (const auto piece : pieces) {
    vectors.at(static_cast<std::size_t>(count++)) = {const_cast<char*>(piece.data()), piece.size()};
    bytes += piece.size();
  }
  // Uses one write, so that another thread's line cannot split this one.
  const ssize_t written = writev(log, vectors.data(), count);
  if (written > 0 && static_cast<std::size_t>(written) < bytes) takeBack(log, written);
  rotate(log);
  close(log);
}

void CrashFiles::rotate(int log) {
  struct stat status {};
  if (fstat(log, &status) != 0 || static_cast<std::uint64_t>(status.st_size) <= maxLogBytes_) return;
  [[maybe_unused]] const int moved = std::rename(logFile_.text().data(), previousLogFile_.text().data());
}

void CrashFiles::writeReport(const Report& report) {
  makeFoldersOf(pendingFolder_.text().data());
  const auto folder = pendingFolder_.text().substr(0, pendingFolder_.text().size() - 1);
  Path hidden, final;
  hidden.add(folder).add(".");
  final.add(folder);
  for (char c : report.timestamp) {
    if (c == ':') c = '-';
    hidden.add({&c, 1});
    final.add({&c, 1});
  }
  hidden.add(suffix_.text());
  final.add(suffix_.text());
  if (hidden.isFull()) return;

  const int file = openFile(hidden.text().data(), O_WRONLY | O_CREAT | O_TRUNC);
  if (file < 0) return;
  const int log = openFile(logFile_.text().data(), O_RDONLY);
  const bool isWhole = writeLines(file, report, log);
  close(log);
  close(file);
  if (!isWhole || std::rename(hidden.text().data(), final.text().data()) != 0) unlink(hidden.text().data());
}

bool CrashFiles::writeLines(int file, const Report& report, int log) {
  const auto lines = log < 0 ? RecentLines() : RecentLines::find(log, recentLines_);
  FixedText<24> count;
  count.addDecimal(lines.count);
  return writeAll(file, report.beforeCount) && writeAll(file, count.text()) &&
         writeAll(file, report.afterCount) && copyRange(log, file, lines.begin, lines.end);
}

// NOLINTEND(bugprone-suspicious-stringview-data-usage)

}  // namespace vorli::posix
