#include "linux/AudioOutputTap.h"

#include "linux/ALSAPlayback.h"
#include "linux/PulseConnection.h"
#include "linux/PulseLibrary.h"
#include "linux/PulseRecording.h"

#include <utility>

namespace vorli::linuxhost {

namespace {

using Step = ports::AudioTapFailure::Step;

// From the first word to the server to the first sound data: 10 to 110 ms measured, but 0.8 to 1.7 s behind a
// player that hands over two seconds at a time.
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
  if (!sink->isAudible()) return {};

  PulseRecording recording(connection, clock_, std::move(input));
  const auto startedAt = recording.start(*sink, deadline);
  if (!startedAt) return std::unexpected(startedAt.error());
  connection.serveUntil(*startedAt + windowSeconds, [] { return false; });
  return {};
}

std::optional<bool> AudioOutputTap::isOutputRunning() {
  if (const auto* pulse = PulseLibrary::load()) {
    const double deadline = clock_.now() + stateLimit;
    PulseConnection connection(*pulse, clock_);
    if (connection.open(deadline)) {
      const auto sink = connection.defaultSink(deadline);
      if (!sink) return std::nullopt;
      return sink->isAudible();
    }
  }
  return isALSAPlaybackRunning();
}

}  // namespace vorli::linuxhost
