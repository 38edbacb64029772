#pragma once

// Follows the frameworks of tools/macos, without the Mach-O section that holds the format there.

#include <os/object.h>
#include <stdint.h>

OS_OBJECT_DECL(os_log);
typedef uint8_t os_log_type_t;

enum : os_log_type_t {
  OS_LOG_TYPE_DEFAULT = 0x00,
  OS_LOG_TYPE_INFO = 0x01,
  OS_LOG_TYPE_DEBUG = 0x02,
  OS_LOG_TYPE_ERROR = 0x10,
  OS_LOG_TYPE_FAULT = 0x11,
};

extern "C" {
os_log_t os_log_create(const char* subsystem, const char* category);
bool os_log_type_enabled(os_log_t log, os_log_type_t type);
void _os_log_impl(void* dso, os_log_t log, os_log_type_t type, const char* format, uint8_t* buffer,
                  uint32_t size);
}

#define os_log_with_type(log, type, text, ...)                                       \
  __extension__({                                                                    \
    os_log_t own_log = (log);                                                        \
    os_log_type_t own_type = (type);                                                 \
    if (os_log_type_enabled(own_log, own_type)) {                                    \
      uint8_t own_buffer[__builtin_os_log_format_buffer_size(text, ##__VA_ARGS__)];  \
      __builtin_os_log_format(own_buffer, text, ##__VA_ARGS__);                      \
      _os_log_impl(nullptr, own_log, own_type, text, own_buffer, sizeof own_buffer); \
    }                                                                                \
  })
