#include "startup/CommandIdentifier.h"

namespace vorli {

namespace {

constexpr std::string_view commandEnding = "@reboot";

}  // namespace

std::string commandIdentifier(std::string_view programName) {
  std::string identifier(programName);
  return identifier += commandEnding;
}

std::string_view withoutCommandEnding(std::string_view identifier) {
  if (identifier.ends_with(commandEnding)) identifier.remove_suffix(commandEnding.size());
  return identifier;
}

}  // namespace vorli
