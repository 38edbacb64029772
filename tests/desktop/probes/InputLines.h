#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <unistd.h>
#include <utility>

namespace vorli {

/// Reads standard input from the main loop and passes on its lines, without their ends.
class InputLines {
 public:
  using Take = std::function<void(const QByteArray& line)>;

  /// `ended` runs when there is no more input.
  explicit InputLines(Take take, std::function<void()> ended = nullptr)
      : take_(std::move(take)), ended_(std::move(ended)), input_(STDIN_FILENO, QSocketNotifier::Read) {
    QObject::connect(&input_, &QSocketNotifier::activated, [this] { read(); });
  }

 private:
  void read() {
    char piece[4096];
    const auto got = ::read(STDIN_FILENO, piece, sizeof piece);
    if (got <= 0) return end();
    pending_.append(piece, static_cast<int>(got));
    for (auto end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
      const auto line = pending_.left(end);
      pending_.remove(0, end + 1);
      take_(line);
    }
  }

  void end() {
    input_.setEnabled(false);
    if (ended_) ended_();
  }

  const Take take_;
  const std::function<void()> ended_;
  QSocketNotifier input_;
  QByteArray pending_;
};

}  // namespace vorli
