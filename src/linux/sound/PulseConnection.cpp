#include "linux/sound/PulseConnection.h"

#include <cmath>
#include <optional>
#include <string_view>

namespace vorli::linuxhost {

namespace {

constexpr double microsecondsPerSecond = 1e6;

struct ServerAnswer {
  std::string defaultSink;
  bool isPipeWire = false;
};

void copyServer(pa_context*, const pa_server_info* info, void* answer) {
  if (!info) return;
  auto& server = *static_cast<ServerAnswer*>(answer);
  if (info->default_sink_name) server.defaultSink = info->default_sink_name;
  server.isPipeWire = info->server_name && std::string_view(info->server_name).contains("PipeWire");
}

struct SinkQuestion {
  const PulseLibrary& pulse;
  bool isPipeWire;
  std::optional<PulseSink> answer;
};

// A volume that the hardware applies does not reach the monitor. PulseAudio applies its own volume before the
// monitor; PipeWire does so only for sinks with this property.
bool scalesItsMonitor(const SinkQuestion& question, const pa_sink_info& info) {
  if (info.flags & PA_SINK_HW_VOLUME_CTRL) return false;
  if (!question.isPipeWire) return true;
  const char* applied = question.pulse.pa_proplist_gets(info.proplist, "monitor.channel-volumes");
  return applied && std::string_view(applied) == "true";
}

// Called once with the sink and once more, without it, at the end of the list or on an error.
void copySink(pa_context*, const pa_sink_info* info, int endOfList, void* data) {
  if (endOfList != 0 || !info || !info->monitor_source_name) return;
  auto& question = *static_cast<SinkQuestion*>(data);
  const pa_volume_t loudest = question.pulse.pa_cvolume_max(&info->volume);
  const bool isMuted = info->mute != 0 || loudest == PA_VOLUME_MUTED;
  const bool isScaled = !isMuted && scalesItsMonitor(question, *info);
  question.answer = PulseSink{
      .monitorSource = info->monitor_source_name,
      .isRunning = info->state == PA_SINK_RUNNING,
      .isMuted = isMuted,
      .monitorGain = isScaled ? static_cast<float>(question.pulse.pa_sw_volume_to_linear(loudest)) : 1.0F,
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
  ServerAnswer server;
  if (!await(pulse_.pa_context_get_server_info(context_, copyServer, &server), deadline))
    return std::unexpected(lastError());
  if (server.defaultSink.empty()) return std::unexpected(static_cast<int>(PA_ERR_NOENTITY));

  SinkQuestion sink{pulse_, server.isPipeWire, std::nullopt};
  const char* name = server.defaultSink.c_str();
  if (!await(pulse_.pa_context_get_sink_info_by_name(context_, name, copySink, &sink), deadline))
    return std::unexpected(lastError());
  if (!sink.answer) return std::unexpected(static_cast<int>(PA_ERR_NOENTITY));
  return *sink.answer;
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

// Cancels an operation that is not finished in time, so that its callback does not use a dangling pointer.
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
