#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorli::formats {

/// The local socket of a message bus.
struct BusAddress {
  std::string socket;       // path, or name in the abstract namespace without its leading NUL
  bool isAbstract = false;  // outside of the file system

  bool operator==(const BusAddress&) const = default;
};

/// Parses an address such as "unix:path=/run/user/7/bus,guid=1234". Only the first of several addresses,
/// which are separated by semicolons, is read. Empty when it is not that of a local socket, or when the path
/// is empty. The path takes precedence over an abstract name.
std::optional<BusAddress> parseBusAddress(std::string_view text);

}  // namespace vorli::formats
