#pragma once

namespace vorli {

// Notifications inside the process, posted through the NotificationCenter; the type is the name.

/// The popover has just been shown: its view plays its opening.
struct VorliAnimateAppear {};

/// The popover begins to roll up: its view plays its closing.
struct VorliAnimateDismiss {};

/// Size that the popover's content needs, in points.
struct VorliPopoverSize {
  double width = 0.0;
  double height = 0.0;
};

/// Requests from the content that the popover close.
struct VorliClosePopover {};

}  // namespace vorli
