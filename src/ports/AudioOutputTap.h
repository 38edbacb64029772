#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <optional>
#include <span>

namespace vorli::ports {

/// Bytes of the output mix as the system hands them out, to be read as 32-bit floats of full scale 1.0. A
/// null `data` is a hole in the stream.
struct AudioBuffer {
  const void* data = nullptr;
  std::size_t byteSize = 0;
};

/// Where the way to the output mix ended, with the system's own code.
struct AudioTapFailure {
  enum class Step { createTap, readTapIdentifier, createDevice, createInputProcedure, start };
  Step step = Step::createTap;
  int status = 0;
};

/// The sound that the machine puts out: everything that plays, mixed, as the user hears it.
class AudioOutputTap {
 public:
  using InputBlock = std::function<void(std::span<const AudioBuffer>)>;

  virtual ~AudioOutputTap() = default;

  /// False where the system cannot hand out its mix at all: `listen` has then nothing to offer. Main thread;
  /// the first call may load the sound library, 10 ms.
  virtual bool canListen() = 0;

  /// Gives every list of buffers of the next `windowSeconds` to `input`, which runs on the caller's thread or
  /// on one of the sound system's and not after the return. Returns early and calls nothing when the system
  /// knows that nothing is to be heard. What it set up is gone at its return, also after a failure. Main
  /// thread, which it blocks for the window and the set-up; the set-up ends after 0.35 s at the latest.
  virtual std::expected<void, AudioTapFailure> listen(double windowSeconds, InputBlock input) = 0;

  /// Whether the default output device runs for anybody, were it with silence. Empty: there is no such
  /// device, or it cannot be read. Main thread; blocks for 0.1 s at the longest.
  virtual std::optional<bool> isOutputRunning() = 0;
};

}  // namespace vorli::ports
