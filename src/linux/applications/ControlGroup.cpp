#include "linux/applications/ControlGroup.h"

#include "formats/ProcStat.h"
#include "linux/kernel/SmallFile.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace vorli::linuxhost {

std::int32_t oldestMember(const std::string& folder, const std::string& root) {
  const auto members = readSmallFile(folder + "/cgroup.procs");
  if (!members) return 0;
  std::string_view rest = *members;
  std::int32_t oldest = 0;
  std::uint64_t oldestStart = UINT64_MAX;
  while (!rest.empty()) {
    std::int32_t member = 0;
    std::from_chars(rest.data(), rest.data() + rest.size(), member);
    const auto stat = readSmallFile(root + "/proc/" + std::to_string(member) + "/stat");
    const auto start = stat ? formats::parseProcStat(*stat).value_or(formats::ProcStat{}).startTicks : 0;
    if (start != 0 && start < oldestStart) {
      oldest = member;
      oldestStart = start;
    }
    rest.remove_prefix(std::min(rest.find('\n'), rest.size() - 1) + 1);
  }
  return oldest;
}

}  // namespace vorli::linuxhost
