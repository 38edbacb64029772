#include "linux/sound/PulseRecording.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace vorli::linuxhost {

namespace {

using Step = ports::AudioTapFailure::Step;

constexpr std::uint8_t channels = 2;
constexpr pa_usec_t fragmentMicroseconds = 20'000;
constexpr std::uint32_t serverDecides = UINT32_MAX;

// A recording must not keep an idle device awake, and must not move to a microphone when the output
// disappears.
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
  monitorGain_ = sink.monitorGain;
  const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, sink.sampleRate, channels};
  stream_ = pulse_.pa_stream_new(connection_.context(), "Vorli audio probe", &format, nullptr);
  if (!stream_) return std::unexpected(ports::AudioTapFailure{Step::createDevice, connection_.lastError()});

  pulse_.pa_stream_set_read_callback(
      stream_,
      [](pa_stream* stream, size_t, void* self) { static_cast<PulseRecording*>(self)->take(stream); }, this);
  pa_buffer_attr attributes{serverDecides, serverDecides, serverDecides, serverDecides, serverDecides};
  attributes.fragsize = static_cast<std::uint32_t>(pulse_.pa_usec_to_bytes(fragmentMicroseconds, &format));
  // Always names the source: without a name the server picks the microphone.
  if (pulse_.pa_stream_connect_record(stream_, sink.monitorSource.c_str(), &attributes, flags) < 0)
    return std::unexpected(ports::AudioTapFailure{Step::createInputProcedure, connection_.lastError()});

  connection_.serveUntil(deadline, [this] { return firstDataAt_ || isBroken(); });
  if (!firstDataAt_) return std::unexpected(ports::AudioTapFailure{Step::start, connection_.lastError()});
  return *firstDataAt_;
}

bool PulseRecording::isBroken() const {
  return !PA_STREAM_IS_GOOD(pulse_.pa_stream_get_state(stream_));
}

void PulseRecording::take(pa_stream* stream) {
  while (pulse_.pa_stream_readable_size(stream) > 0) {
    const void* data = nullptr;
    std::size_t bytes = 0;
    if (pulse_.pa_stream_peek(stream, &data, &bytes) < 0 || bytes == 0) return;
    if (data && !firstDataAt_) firstDataAt_ = clock_.now();
    passOn(data, bytes);
    pulse_.pa_stream_drop(stream);
  }
}

// Restores the level of the mix before the server's volume, which says nothing about the loudness of an
// amplifier behind it.
void PulseRecording::passOn(const void* data, std::size_t bytes) {
  if (data && monitorGain_ != 1.0F) {
    unscaled_.resize(bytes / sizeof(float));
    std::memcpy(unscaled_.data(), data, unscaled_.size() * sizeof(float));
    for (float& sample : unscaled_) sample /= monitorGain_;
    data = unscaled_.data();
    bytes = unscaled_.size() * sizeof(float);
  }
  const ports::AudioBuffer buffer{data, bytes};
  input_({&buffer, 1});
}

}  // namespace vorli::linuxhost
