#include "ui/kit/ScreenPlaces.h"

#include <QGuiApplication>
#include <QScreen>

namespace vorli::ui {

QList<ScreenPlace> screenPlaces() {
  QList<ScreenPlace> places;
  for (const auto* screen : QGuiApplication::screens()) {
    places.push_back({screen->geometry(), screen->availableGeometry(), screen->devicePixelRatio()});
  }
  return places;
}

}  // namespace vorli::ui
