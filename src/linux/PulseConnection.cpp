#include "linux/PulseConnection.h"

#include <cmath>
#include <optional>

namespace vorli::linuxhost {

namespace {

constexpr double microsecondsPerSecond = 1e6;

void copyDefaultSinkName(pa_context*, const pa_server_info* info, void* name) {
  if (info && info->default_sink_name) *static_cast<std::string*>(name) = info->default_sink_name;
}

// Called once with the sink and once more, without it, at the end of the list or on an error.
void copySink(pa_context*, const pa_sink_info* info, int endOfList, void* sink) {
  if (endOfList != 0 || !info || !info->monitor_source_name) return;
  *static_cast<std::optional<PulseSink>*>(sink) = PulseSink{
      .monitorSource = info->monitor_source_name,
      .isRunning = info->state == PA_SINK_RUNNING,
      .isMuted = info->mute != 0,
      .sampleRate = info->sample_spec.rate,
  };
}

}  // namespace

PulseConnection::PulseConnection(const PulseLibrary& pulse, const Scheduler& clock)
    : pulse_(pulse),
      clock_(clock),
      loop_(pulse.pa_mainloop_new()),
      context_(loop_ ? pulse.pa_context_new(pulse.pa_mainloop_get_api(loop_), "Vorli") : nullptr) {}

PulseConnection::~PulseConnection() {
  if (context_) {
    pulse_.pa_context_disconnect(context_);
    pulse_.pa_context_unref(context_);
  }
  if (loop_) pulse_.pa_mainloop_free(loop_);
}

std::expected<void, int> PulseConnection::open(double deadline) {
  if (!context_) return std::unexpected(static_cast<int>(PA_ERR_INTERNAL));
  if (pulse_.pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
    return std::unexpected(lastError());
  const auto isReady = [this] { return pulse_.pa_context_get_state(context_) == PA_CONTEXT_READY; };
  if (!serveUntil(deadline, isReady)) return std::unexpected(lastError());
  return {};
}

std::expected<PulseSink, int> PulseConnection::defaultSink(double deadline) {
  std::string name;
  if (!await(pulse_.pa_context_get_server_info(context_, copyDefaultSinkName, &name), deadline))
    return std::unexpected(lastError());
  if (name.empty()) return std::unexpected(static_cast<int>(PA_ERR_NOENTITY));

  std::optional<PulseSink> sink;
  if (!await(pulse_.pa_context_get_sink_info_by_name(context_, name.c_str(), copySink, &sink), deadline))
    return std::unexpected(lastError());
  if (!sink) return std::unexpected(static_cast<int>(PA_ERR_NOENTITY));
  return *sink;
}

bool PulseConnection::serveUntil(double deadline, const std::function<bool()>& done) {
  while (!done()) {
    const double left = deadline - clock_.now();
    if (left <= 0.0 || !PA_CONTEXT_IS_GOOD(pulse_.pa_context_get_state(context_))) return false;
    const int timeoutMicroseconds = static_cast<int>(std::ceil(left * microsecondsPerSecond));
    if (pulse_.pa_mainloop_prepare(loop_, timeoutMicroseconds) < 0 || pulse_.pa_mainloop_poll(loop_) < 0 ||
        pulse_.pa_mainloop_dispatch(loop_) < 0)
      return false;
  }
  return true;
}

int PulseConnection::lastError() const {
  const int code = context_ ? pulse_.pa_context_errno(context_) : PA_ERR_INTERNAL;
  return code == PA_OK ? PA_ERR_TIMEOUT : code;
}

// An operation that is given up is cancelled, so that its callback finds no stale pointer.
bool PulseConnection::await(pa_operation* operation, double deadline) {
  if (!operation) return false;
  const auto isOver = [this, operation] {
    return pulse_.pa_operation_get_state(operation) != PA_OPERATION_RUNNING;
  };
  const bool served = serveUntil(deadline, isOver);
  const bool done = served && pulse_.pa_operation_get_state(operation) == PA_OPERATION_DONE;
  if (!served) pulse_.pa_operation_cancel(operation);
  pulse_.pa_operation_unref(operation);
  return done;
}

}  // namespace vorli::linuxhost
