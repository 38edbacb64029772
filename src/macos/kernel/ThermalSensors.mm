#include "macos/kernel/ThermalSensors.h"

#import <Foundation/Foundation.h>

namespace vorli::machost {

ports::ThermalReading ThermalSensors::readThermal() {
  return {.systemState = static_cast<int>(NSProcessInfo.processInfo.thermalState), .zones = {}};
}

bool ThermalSensors::isLowPowerModeEnabled() {
  return NSProcessInfo.processInfo.isLowPowerModeEnabled;
}

}  // namespace vorli::machost
