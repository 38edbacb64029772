#pragma once

#include "startup/StartupItem.h"

#include <optional>
#include <string>

namespace vorli {

/// One startup item before its application is looked up. Candidates with the same identifier are the same
/// item.
struct RawCandidate {
  std::string identifier;
  std::optional<std::string> displayNameHint = {};
  std::optional<std::string> programPath = {};  // program or application bundle
  std::optional<std::string> plistURL = {};     // as in StartupItem
  bool plistIsUserWritable = false;
  bool registersAtLogin = false;
  bool isEnabled = true;
  StartupItem::Source source = StartupItem::Source::autoInstalled;

  bool operator==(const RawCandidate&) const = default;
};

/// The application that was found for a candidate.
struct Resolved {
  std::string appURL;
  std::string bundleID;
  std::string displayName;

  bool operator==(const Resolved&) const = default;
};

/// Total use of the processes with one identifier.
struct ProcessStats {
  double cpu = 0.0;       // percent of one core
  double memoryMB = 0.0;  // mebibytes
  bool running = false;

  bool operator==(const ProcessStats&) const = default;
};

}  // namespace vorli
