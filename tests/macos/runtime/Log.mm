#include "tests/macos/runtime/Log.h"

#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/State.h"

#include <cstring>
#include <map>
#include <mutex>
#include <os/log.h>

@interface VorliLog : NSObject <OS_os_log> {
 @public
  std::string name;
}
@end
@implementation VorliLog
@end

namespace vorli::macfake {

static State<Log> logState;
static std::mutex logLock;

Log& log() {
  return *logState;
}

namespace {

// The compiler lays each argument out as a byte for its kind and its privacy, one for its size, and its
// bytes.
constexpr int kindIsText = 2;
constexpr int isPublic = 2;
constexpr int kindIsPrecision = 1;

std::string textOf(const std::uint8_t* buffer, std::uint32_t size) {
  std::string all;
  int longest = -1;
  for (std::uint32_t place = 2; place + 2 <= size;) {
    const int kind = buffer[place] >> 4;
    const int privacy = buffer[place] & 0xf;
    const std::uint8_t length = buffer[place + 1];
    const std::uint8_t* const bytes = buffer + place + 2;
    place += 2U + length;
    if (kind == kindIsPrecision) {
      std::memcpy(&longest, bytes, sizeof longest);
    } else if (kind == kindIsText) {
      const char* text = nullptr;
      std::memcpy(&text, bytes, sizeof text);
      const std::size_t shown =
          longest < 0 ? std::strlen(text) : strnlen(text, static_cast<std::size_t>(longest));
      all += (privacy & isPublic) != 0 ? std::string(text, shown) : "<private>";
    } else {
      all += "<other>";
    }
  }
  return all;
}

}  // namespace
}  // namespace vorli::macfake

os_log_t os_log_create(const char* subsystem, const char* category) {
  static auto* const all = new std::map<std::string, VorliLog*>;
  const std::lock_guard guard(vorli::macfake::logLock);
  const std::string name = std::string(subsystem) + "/" + category;
  VorliLog* __strong& found = (*all)[name];
  if (!found) {
    found = vorli::macfake::shared([[VorliLog alloc] init]);
    found->name = name;
  }
  return found;
}

bool os_log_type_enabled(os_log_t, os_log_type_t) {
  return vorli::macfake::log().isEnabled;
}

void _os_log_impl(void*, os_log_t log, os_log_type_t type, const char*, uint8_t* buffer, uint32_t size) {
  const std::lock_guard guard(vorli::macfake::logLock);
  vorli::macfake::log().lines.push_back(static_cast<VorliLog*>(log)->name + " " + std::to_string(type) +
                                        ": " + vorli::macfake::textOf(buffer, size));
}
