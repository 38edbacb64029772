#pragma once

#include <QObject>

namespace vorli::bench {

/// Prints a line on standard output for every frame that any window of this program paints:
///   frame PAINTED SHOWN WIDTHxHEIGHT
/// Both times are microseconds of the monotonic clock: when it was painted, and when the X server had it.
class PaintWatch final : public QObject {
 public:
  PaintWatch();
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace vorli::bench
