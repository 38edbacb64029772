#pragma once

namespace vorli {

// What is told inside the process through the NotificationCenter; the type is the name.

/// The popover has just been shown: its view plays its opening.
struct VorliAnimateAppear {};

/// The popover begins to roll up: its view plays its closing.
struct VorliAnimateDismiss {};

/// The size, in points, that the popover's content wants.
struct VorliPopoverSize {
  double width = 0.0;
  double height = 0.0;
};

/// The popover is to close, from within.
struct VorliClosePopover {};

}  // namespace vorli
