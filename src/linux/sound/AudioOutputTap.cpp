#include "linux/sound/AudioOutputTap.h"

#include "linux/sound/ALSAPlayback.h"
#include "linux/sound/PulseConnection.h"
#include "linux/sound/PulseLibrary.h"
#include "linux/sound/PulseRecording.h"

#include <utility>

namespace vorli::linuxhost {

namespace {

using Step = ports::AudioTapFailure::Step;

// Time from the first request to the first sound data. Measured: 10 to 110 ms, but 0.8 to 1.7 s when the
// player delivers two seconds at a time.
constexpr double setUpLimit = 0.35;
constexpr double stateLimit = 0.1;

std::unexpected<ports::AudioTapFailure> failed(Step step, int status) {
  return std::unexpected(ports::AudioTapFailure{step, status});
}

}  // namespace

bool AudioOutputTap::canListen() {
  return PulseLibrary::load() != nullptr;
}

std::expected<void, ports::AudioTapFailure> AudioOutputTap::listen(double windowSeconds, InputBlock input) {
  const auto* pulse = PulseLibrary::load();
  if (!pulse) return failed(Step::createTap, PA_ERR_NOTIMPLEMENTED);

  const double deadline = clock_.now() + setUpLimit;
  PulseConnection connection(*pulse, clock_);
  if (const auto opened = connection.open(deadline); !opened) return failed(Step::createTap, opened.error());
  const auto sink = connection.defaultSink(deadline);
  if (!sink) return failed(Step::readTapIdentifier, sink.error());
  if (!sink->isRunning || sink->isMuted) return {};

  PulseRecording recording(connection, clock_, std::move(input));
  const auto startedAt = recording.start(*sink, deadline);
  if (!startedAt) return std::unexpected(startedAt.error());
  connection.serveUntil(*startedAt + windowSeconds, [&recording] { return recording.isBroken(); });
  if (recording.isBroken()) return failed(Step::start, connection.lastError());
  return {};
}

std::optional<bool> AudioOutputTap::isOutputRunning() {
  if (const auto* pulse = PulseLibrary::load()) {
    const double deadline = clock_.now() + stateLimit;
    PulseConnection connection(*pulse, clock_);
    if (connection.open(deadline)) {
      const auto sink = connection.defaultSink(deadline);
      if (!sink) return std::nullopt;
      return sink->isRunning;
    }
  }
  return isALSAPlaybackRunning();
}

}  // namespace vorli::linuxhost
