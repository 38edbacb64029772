#include "formats/ProcessEvidence.h"

#include <algorithm>
#include <charconv>

namespace vorli::formats {

namespace {

std::optional<std::string_view> valueOf(std::string_view text, std::string_view key, char separator) {
  while (!text.empty()) {
    const auto end = text.find(separator);
    const auto line = text.substr(0, end);
    if (line.size() > key.size() && line.starts_with(key) && line[key.size()] == '=') {
      return line.substr(key.size() + 1);
    }
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return std::nullopt;
}

std::optional<int> hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return std::nullopt;
}

std::string unescapedUnit(std::string_view name) {
  std::string text;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name.substr(i).starts_with("\\x") && i + 3 < name.size()) {
      const auto high = hexDigit(name[i + 2]), low = hexDigit(name[i + 3]);
      if (high && low) {
        text += static_cast<char>(*high * 16 + *low);
        i += 3;
        continue;
      }
    }
    text += name[i];
  }
  return text;
}

// Returns the path in the unified hierarchy, or in systemd's own hierarchy on a hybrid system.
std::string_view controlGroupPath(std::string_view cgroup) {
  std::string_view path;
  while (!cgroup.empty()) {
    const auto end = cgroup.find('\n');
    const auto line = cgroup.substr(0, end);
    if (line.starts_with("0::")) return line.substr(3);
    if (const auto named = line.find(":name=systemd:"); named != std::string_view::npos) {
      path = line.substr(named + 14);
    }
    cgroup.remove_prefix(end == std::string_view::npos ? cgroup.size() : end + 1);
  }
  return path;
}

// "app-gnome-org.example.Viewer-1234.scope" names the id "gnome-org.example.Viewer" and, without its first
// part, which may be the launcher, "org.example.Viewer".
CgroupEvidence evidenceFromUnit(std::string_view unit) {
  CgroupEvidence evidence;
  std::string_view name = unit.substr(4);
  if (name.ends_with(".scope")) {
    name.remove_suffix(6);
    const auto random = name.rfind('-');
    if (random == std::string_view::npos) return evidence;
    name = name.substr(0, random);
  } else {
    name.remove_suffix(8);
    if (const auto at = name.rfind('@'); at != std::string_view::npos) {
      evidence.isAutostart = name.substr(at + 1) == "autostart";
      name = name.substr(0, at);
    }
  }
  if (name.starts_with("flatpak-")) {
    evidence.kind = CgroupEvidence::Kind::flatpak;
    evidence.ids = {unescapedUnit(name.substr(8))};
    return evidence;
  }
  evidence.kind = CgroupEvidence::Kind::systemdUnit;
  evidence.ids = {unescapedUnit(name)};
  if (const auto dash = name.find('-'); dash != std::string_view::npos) {
    evidence.ids.push_back(unescapedUnit(name.substr(dash + 1)));
  }
  return evidence;
}

// "snap.PACKAGE.APP-UUID.scope" or "snap.PACKAGE.APP.service".
CgroupEvidence evidenceFromSnap(std::string_view unit) {
  CgroupEvidence evidence;
  const auto package = unit.substr(5, unit.find('.', 5) - 5);
  if (unit.size() <= 6 + package.size()) return evidence;
  auto app = unit.substr(6 + package.size());
  app = app.substr(0, app.find('.'));
  // A random part is a dash and a UUID of 36 characters.
  if (app.size() > 37 && app[app.size() - 37] == '-') app.remove_suffix(37);
  evidence.kind = CgroupEvidence::Kind::snap;
  // A second instance of a package, "PACKAGE_INSTANCE", has its entries under "PACKAGE+INSTANCE".
  std::string owner(package);
  std::ranges::replace(owner, '_', '+');
  evidence.ids = {owner + "_" + std::string(app)};
  return evidence;
}

}  // namespace

std::string flatpakIDFromInfo(std::string_view info) {
  const auto group = info.find("[Application]");
  if (group == std::string_view::npos) return {};
  auto section = info.substr(group + 13);
  section = section.substr(0, section.find("\n["));
  return std::string(valueOf(section, "name", '\n').value_or(""));
}

CgroupEvidence evidenceFromCgroup(std::string_view cgroup) {
  const auto path = controlGroupPath(cgroup);
  const auto unit = path.substr(path.rfind('/') + 1);
  const bool isUnit = unit.ends_with(".scope") || unit.ends_with(".service");
  if (isUnit && unit.starts_with("snap.")) return evidenceFromSnap(unit);
  const bool isAppSlice = path.find("/app.slice/") != std::string_view::npos ||
                          path.find("/background.slice/") != std::string_view::npos;
  if (!isUnit || !unit.starts_with("app-")) return {};
  const auto evidence = evidenceFromUnit(unit);
  return isAppSlice || evidence.kind == CgroupEvidence::Kind::flatpak ? evidence : CgroupEvidence{};
}

std::string launchedDesktopFile(std::string_view environment, int pid) {
  const auto file = valueOf(environment, "GIO_LAUNCHED_DESKTOP_FILE", '\0');
  const auto launched = valueOf(environment, "GIO_LAUNCHED_DESKTOP_FILE_PID", '\0');
  if (!file || !launched) return {};
  int launchedPID = 0;
  const auto [end, failed] =
      std::from_chars(launched->data(), launched->data() + launched->size(), launchedPID);
  if (failed != std::errc() || end != launched->data() + launched->size() || launchedPID != pid) return {};
  return std::string(*file);
}

std::vector<std::string> commandLineWords(std::string_view commandLine) {
  std::vector<std::string> words;
  while (!commandLine.empty()) {
    const auto end = commandLine.find('\0');
    words.emplace_back(commandLine.substr(0, end));
    commandLine.remove_prefix(end == std::string_view::npos ? commandLine.size() : end + 1);
  }
  return words;
}

}  // namespace vorli::formats
