#pragma once

#include "ui/popover/PopoverPicture.h"

#include <QList>
#include <QString>

namespace vorli {

/// A picture of the popover and the name of what it shows.
struct PopoverState {
  QString name;
  ui::PopoverPicture picture;
};

/// Every state that the popover rests in, as a user can meet it.
QList<PopoverState> popoverStates(ui::Appearance appearance);

/// A full polish from a critical ring at moments after its start.
QList<PopoverState> polishMoments(ui::Appearance appearance);

/// The card as it unfolds below a panel.
QList<PopoverState> unfurlMoments(ui::Appearance appearance);

}  // namespace vorli
