#include "linux/PulseRecording.h"

#include <cstdint>
#include <utility>

namespace vorli::linuxhost {

namespace {

using Step = ports::AudioTapFailure::Step;

constexpr std::uint8_t channels = 2;
constexpr pa_usec_t fragmentMicroseconds = 20'000;
constexpr std::uint32_t serverDecides = UINT32_MAX;

// A recording must not keep an idle device awake, and must not wander to a microphone when the output goes.
constexpr auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE |
                                                      PA_STREAM_DONT_INHIBIT_AUTO_SUSPEND);

}  // namespace

PulseRecording::PulseRecording(PulseConnection& connection, const Scheduler& clock,
                               ports::AudioOutputTap::InputBlock input)
    : connection_(connection), pulse_(connection.pulse()), clock_(clock), input_(std::move(input)) {}

PulseRecording::~PulseRecording() {
  if (!stream_) return;
  pulse_.pa_stream_set_read_callback(stream_, nullptr, nullptr);
  pulse_.pa_stream_disconnect(stream_);
  pulse_.pa_stream_unref(stream_);
}

std::expected<double, ports::AudioTapFailure> PulseRecording::start(const PulseSink& sink, double deadline) {
  const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, sink.sampleRate, channels};
  stream_ = pulse_.pa_stream_new(connection_.context(), "Vorli audio probe", &format, nullptr);
  if (!stream_) return std::unexpected(ports::AudioTapFailure{Step::createDevice, connection_.lastError()});

  pulse_.pa_stream_set_read_callback(
      stream_,
      [](pa_stream* stream, size_t, void* self) { static_cast<PulseRecording*>(self)->take(stream); }, this);
  pa_buffer_attr attributes{serverDecides, serverDecides, serverDecides, serverDecides, serverDecides};
  attributes.fragsize = static_cast<std::uint32_t>(pulse_.pa_usec_to_bytes(fragmentMicroseconds, &format));
  // The source is always named: without a name the server takes the microphone.
  if (pulse_.pa_stream_connect_record(stream_, sink.monitorSource.c_str(), &attributes, flags) < 0)
    return std::unexpected(ports::AudioTapFailure{Step::createInputProcedure, connection_.lastError()});

  const auto isDecided = [this] {
    return firstDataAt_ || !PA_STREAM_IS_GOOD(pulse_.pa_stream_get_state(stream_));
  };
  connection_.serveUntil(deadline, isDecided);
  if (!firstDataAt_) return std::unexpected(ports::AudioTapFailure{Step::start, connection_.lastError()});
  return *firstDataAt_;
}

void PulseRecording::take(pa_stream* stream) {
  while (pulse_.pa_stream_readable_size(stream) > 0) {
    const void* data = nullptr;
    std::size_t bytes = 0;
    if (pulse_.pa_stream_peek(stream, &data, &bytes) < 0 || bytes == 0) return;
    if (data && !firstDataAt_) firstDataAt_ = clock_.now();
    const ports::AudioBuffer buffer{data, bytes};
    input_({&buffer, 1});
    pulse_.pa_stream_drop(stream);
  }
}

}  // namespace vorli::linuxhost
