#include "macos/daemon/ClientRequirement.h"

#include "base/Logger.h"
#include "macos/Text.h"

#include <Security/Security.h>
#include <algorithm>

namespace vorli::machost {

namespace {

std::optional<std::string> ownTeam() {
  SecCodeRef code = nullptr;
  if (SecCodeCopySelf(kSecCSDefaultFlags, &code) != errSecSuccess) return std::nullopt;
  CFDictionaryRef information = nullptr;
  const auto status = SecCodeCopySigningInformation(code, kSecCSSigningInformation, &information);
  CFRelease(code);
  if (status != errSecSuccess) return std::nullopt;
  NSDictionary* const facts = CFBridgingRelease(information);
  return textIn(facts[(__bridge NSString*)kSecCodeInfoTeamIdentifier]);
}

// True for a team that can be put into the requirement's text.
bool isPlain(const std::string& team) {
  return !team.empty() && std::ranges::all_of(team, [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
  });
}

}  // namespace

std::optional<std::string> clientRequirement() {
  const auto team = ownTeam();
  if (!team || !isPlain(*team)) return std::nullopt;
  return "anchor apple generic and identifier \"" + std::string(logSubsystem) +
         "\" and certificate leaf[subject.OU] = \"" + *team + "\"";
}

}  // namespace vorli::machost
