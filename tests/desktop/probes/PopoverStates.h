#pragma once

#include "ui/popover/PopoverPicture.h"

#include <QList>
#include <QString>

namespace vorli {

/// A picture of the popover and the name of its state.
struct PopoverState {
  QString name;
  ui::PopoverPicture picture;
};

/// Every state at rest that a user can find the popover in.
QList<PopoverState> popoverStates(ui::Appearance appearance);

/// A full polish from a critical ring, at several times after its start.
QList<PopoverState> polishMoments(ui::Appearance appearance);

/// The card as it unfolds below a panel.
QList<PopoverState> unfurlMoments(ui::Appearance appearance);

}  // namespace vorli
