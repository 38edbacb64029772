#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <optional>
#include <span>

namespace vorli::ports {

/// Bytes of the output mix as the system delivers them: 32-bit floats with full scale 1.0. A null `data` is a
/// gap in the stream.
struct AudioBuffer {
  const void* data = nullptr;
  std::size_t byteSize = 0;
};

/// The step at which setting up the tap failed, with the system's error code.
struct AudioTapFailure {
  enum class Step { createTap, readTapIdentifier, createDevice, createInputProcedure, start };
  Step step = Step::createTap;
  int status = 0;
};

/// The machine's audio output: everything that plays, mixed. The volume of the speakers does not change the
/// mix; only a muted output is silent.
class AudioOutputTap {
 public:
  using InputBlock = std::function<void(std::span<const AudioBuffer>)>;

  virtual ~AudioOutputTap() = default;

  /// False where the system cannot provide its output mix at all; `listen` is then useless. Main thread; the
  /// first call may load the sound library, which takes 10 ms.
  virtual bool canListen() = 0;

  /// Passes every list of buffers of the next `windowSeconds` to `input`, which runs on the calling thread or
  /// a thread of the sound system, and never after this call returns. Returns early, without calling it, when
  /// the system knows that nothing is playing. Everything set up is torn down before the return, also after a
  /// failure. Main thread; blocks for the window plus the set-up, which takes at most 0.35 s.
  [[nodiscard]] virtual std::expected<void, AudioTapFailure> listen(double windowSeconds,
                                                                    InputBlock input) = 0;

  /// Whether any program is using the default output device, even if it plays silence. Empty when there is no
  /// such device or it cannot be read. Main thread; blocks for at most 0.1 s.
  virtual std::optional<bool> isOutputRunning() = 0;
};

}  // namespace vorli::ports
