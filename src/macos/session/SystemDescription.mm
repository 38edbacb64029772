#include "macos/session/SystemDescription.h"

#import <Foundation/Foundation.h>
#include <cstddef>
#include <string>
#include <sys/sysctl.h>

namespace vorli::machost {

ports::SystemVersion SystemDescription::systemVersion() {
  const NSOperatingSystemVersion version = NSProcessInfo.processInfo.operatingSystemVersion;
  return {.name = {},
          .release = std::to_string(version.majorVersion) + "." + std::to_string(version.minorVersion) + "." +
                     std::to_string(version.patchVersion)};
}

std::optional<std::string> SystemDescription::hardwareModel() {
  std::size_t size = 0;
  if (sysctlbyname("hw.model", nullptr, &size, nullptr, 0) != 0 || size < 1) return std::nullopt;
  std::string model(size, '\0');
  if (sysctlbyname("hw.model", model.data(), &size, nullptr, 0) != 0) return std::nullopt;
  model.resize(model.find('\0') == std::string::npos ? size : model.find('\0'));
  if (model.empty()) return std::nullopt;
  return model;
}

}  // namespace vorli::machost
