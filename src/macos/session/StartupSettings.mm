#include "macos/session/StartupSettings.h"

#import <ServiceManagement/ServiceManagement.h>

namespace vorli::machost {

void StartupSettings::open() {
  [SMAppService openSystemSettingsLoginItems];
}

}  // namespace vorli::machost
