#include "linux/startup/ProcessUsage.h"

#include "base/Blanks.h"
#include "formats/KernelText.h"
#include "formats/KeyedLines.h"
#include "formats/ProcStat.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <dirent.h>
#include <memory>
#include <span>
#include <unistd.h>

namespace vorli::linuxhost {

namespace {

constexpr std::string_view serviceSuffix = ".service";
constexpr int deepestGroup = 6;       // slices within slices
constexpr double shortestLife = 1.0;  // seconds; a younger process has no meaningful share
constexpr double bytesPerMegabyte = 1024.0 * 1024.0;
constexpr double longestSpan = 30.0;     // seconds; a share of more than that says little about the present
constexpr double settlingSeconds = 1.0;  // a hundred of the kernel's ticks

std::vector<std::string> namesIn(const std::string& folder, bool& isListed) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
  isListed = entries != nullptr;
  std::vector<std::string> names;
  while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  return names;
}

std::optional<double> wholeAt(const std::string& path) {
  const auto text = readSmallFile(path);
  if (!text) return std::nullopt;
  const auto number = formats::parseWhole(withoutBlanks(*text));
  return number ? std::optional(static_cast<double>(*number)) : std::nullopt;
}

std::optional<double> keyedWhole(const std::string& path, std::string_view key) {
  const auto text = readSmallFile(path);
  if (!text) return std::nullopt;
  const auto value = formats::KeyedLines(*text).valueOf(key);
  const auto number = value ? formats::parseWhole(withoutBlanks(*value)) : std::nullopt;
  return number ? std::optional(static_cast<double>(*number)) : std::nullopt;
}

}  // namespace

ProcessUsage::ProcessUsage(std::string root)
    : root_(std::move(root)),
      ticksPerSecond_(static_cast<double>(sysconf(_SC_CLK_TCK))),
      pageKibibytes_(static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024.0) {}

const ProcessUsage::Look& ProcessUsage::Looks::before(double now) const {
  return now - last.at >= settlingSeconds ? last : earlier;
}

void ProcessUsage::Looks::add(Look look) {
  if (look.at - last.at < settlingSeconds) return;
  earlier = std::move(last);
  last = std::move(look);
}

double ProcessUsage::secondsSinceBoot() const {
  const auto text = readSmallFile(root_ + "/proc/uptime").value_or("");
  std::string_view rest = text;
  return formats::parseDecimal(formats::takeWord(rest)).value_or(0.0);
}

double ProcessUsage::percentSince(const Look& last, const Look& now, const std::string& key,
                                  const Reading& reading) {
  const auto before = last.readings.find(key);
  const bool isSame = before != last.readings.end() && before->second.started == reading.started &&
                      before->second.busySeconds <= reading.busySeconds;
  const double since = isSame ? last.at : reading.started;
  const double busy = isSame ? reading.busySeconds - before->second.busySeconds : reading.busySeconds;
  return 100.0 * busy / std::max(now.at - since, shortestLife);
}

double ProcessUsage::prepareReading() {
  const Look& last = processLooks_.last;
  const bool isRecent = !last.readings.empty() && secondsSinceBoot() - last.at <= longestSpan;
  if (isRecent) return 0.0;
  (void)processes();
  (void)services();
  return settlingSeconds;
}

std::optional<std::vector<ports::ProcessUse>> ProcessUsage::processes() {
  bool isListed = false;
  const auto names = namesIn(root_ + "/proc", isListed);
  if (!isListed) return std::nullopt;
  Look look{.at = secondsSinceBoot(), .readings = {}};
  std::vector<ports::ProcessUse> uses;
  for (const auto& name : names) {
    if (name.front() < '1' || name.front() > '9') continue;
    if (const auto use = readProcess(name, look)) uses.push_back(*use);
  }
  processLooks_.add(std::move(look));
  return uses;
}

std::optional<ports::ProcessUse> ProcessUsage::readProcess(const std::string& pid, Look& look) const {
  const auto number = formats::parseWhole(pid);
  const auto text = readSmallFile(root_ + "/proc/" + pid + "/stat");
  const auto stat = text ? formats::parseProcStat(*text) : std::nullopt;
  if (!number || *number > INT32_MAX || !stat) return std::nullopt;
  const Reading reading{static_cast<double>(stat->startTicks) / ticksPerSecond_,
                        static_cast<double>(stat->userTicks + stat->systemTicks) / ticksPerSecond_};
  ports::ProcessUse use;
  use.processIdentifier = static_cast<std::int32_t>(*number);
  use.cpuPercent = percentSince(processLooks_.before(look.at), look, pid, reading);
  use.residentKibibytes = static_cast<double>(stat->residentPages) * pageKibibytes_;
  look.readings.emplace(pid, reading);
  return use;
}

std::vector<ports::ServiceUse> ProcessUsage::services() {
  const auto user = std::to_string(getuid());
  Look look{.at = secondsSinceBoot(), .readings = {}};
  std::vector<ports::ServiceUse> services;
  const auto groups = root_ + "/sys/fs/cgroup";
  addServices(groups + "/system.slice", 0, look, services);
  const auto ofSystem = services.size();
  addServices(groups + "/user.slice/user-" + user + ".slice/user@" + user + ".service", 0, look, services);
  for (auto& use : std::span(services).subspan(ofSystem)) use.isUsers = true;
  serviceLooks_.add(std::move(look));
  return services;
}

void ProcessUsage::addServices(const std::string& folder, int depth, Look& look,
                               std::vector<ports::ServiceUse>& services) const {
  bool isListed = false;
  for (const auto& name : namesIn(folder, isListed)) {
    const auto inside = folder + "/" + name;
    if (name.ends_with(serviceSuffix)) {
      if (auto use = readService(inside, name, look)) services.push_back(std::move(*use));
    } else if (name.ends_with(".slice") && depth < deepestGroup) {
      addServices(inside, depth + 1, look, services);
    }
  }
}

// Leaves out memory that the kernel can reclaim at once, such as pages of files not in use.
std::optional<ports::ServiceUse> ProcessUsage::readService(const std::string& folder, const std::string& name,
                                                           Look& look) const {
  const auto processes = readSmallFile(folder + "/cgroup.events");
  const auto populated = processes ? formats::KeyedLines(*processes).valueOf("populated") : std::nullopt;
  if (!populated || withoutBlanks(*populated) != "1") return std::nullopt;
  const double held = wholeAt(folder + "/memory.current").value_or(0.0);
  const double idle = keyedWhole(folder + "/memory.stat", "inactive_file").value_or(0.0);
  const double busy = keyedWhole(folder + "/cpu.stat", "usage_usec").value_or(0.0) / 1e6;

  // The age of a group is unknown, so its first reading counts from the start of the computer.
  const Reading reading{0.0, busy};
  ports::ServiceUse use;
  use.name = name;
  use.cpuPercent = percentSince(serviceLooks_.before(look.at), look, folder, reading);
  use.memoryMB = std::max(held - idle, 0.0) / bytesPerMegabyte;
  look.readings.emplace(folder, reading);
  return use;
}

}  // namespace vorli::linuxhost
