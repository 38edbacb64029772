#pragma once

#include <pulse/pulseaudio.h>

/// Every function of the sound library that the program calls.
#define VORLI_PULSE_FUNCTIONS(F)      \
  F(pa_mainloop_new)                  \
  F(pa_mainloop_free)                 \
  F(pa_mainloop_get_api)              \
  F(pa_mainloop_prepare)              \
  F(pa_mainloop_poll)                 \
  F(pa_mainloop_dispatch)             \
  F(pa_context_new)                   \
  F(pa_context_unref)                 \
  F(pa_context_connect)               \
  F(pa_context_disconnect)            \
  F(pa_context_errno)                 \
  F(pa_context_get_state)             \
  F(pa_context_get_server_info)       \
  F(pa_context_get_sink_info_by_name) \
  F(pa_cvolume_max)                   \
  F(pa_operation_cancel)              \
  F(pa_operation_get_state)           \
  F(pa_operation_unref)               \
  F(pa_proplist_gets)                 \
  F(pa_sw_volume_to_linear)           \
  F(pa_usec_to_bytes)                 \
  F(pa_stream_new)                    \
  F(pa_stream_unref)                  \
  F(pa_stream_connect_record)         \
  F(pa_stream_disconnect)             \
  F(pa_stream_drop)                   \
  F(pa_stream_get_state)              \
  F(pa_stream_peek)                   \
  F(pa_stream_readable_size)          \
  F(pa_stream_set_read_callback)

namespace vorli::linuxhost {

/// The sound library, loaded on first use: the program also runs on a machine without it, and a program that
/// never polishes does not pay for it. The members have the names of the library's functions.
struct PulseLibrary {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a declared name cannot be in parentheses
#define VORLI_PULSE_MEMBER(function) decltype(&::function) function = nullptr;
  VORLI_PULSE_FUNCTIONS(VORLI_PULSE_MEMBER)
#undef VORLI_PULSE_MEMBER

  /// Loads the library, which then stays loaded. Null when it or one of its functions is missing. Main
  /// thread; the first call takes 10 ms.
  static const PulseLibrary* load();
};

}  // namespace vorli::linuxhost
