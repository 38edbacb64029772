#include "ui/linux/StatusNotifierTypes.h"

#include <QDBusMetaType>
#include <QImage>
#include <QtEndian>

namespace vorli::ui {

IconPixmap IconPixmap::fromImage(const QImage& image) {
  const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
  IconPixmap pixmap{straight.width(), straight.height(), {}};
  const qsizetype bytesInLine = qsizetype{4} * straight.width();
  pixmap.bytes.resize(bytesInLine * straight.height());
  for (int y = 0; y < straight.height(); ++y) {
    qToBigEndian<quint32>(straight.constScanLine(y), straight.width(), pixmap.bytes.data() + y * bytesInLine);
  }
  return pixmap;
}

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap) {
  argument.beginStructure();
  argument << pixmap.width << pixmap.height << pixmap.bytes;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap) {
  argument.beginStructure();
  argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip) {
  argument.beginStructure();
  argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip) {
  argument.beginStructure();
  argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
  argument.endStructure();
  return argument;
}

void registerStatusNotifierTypes() {
  qDBusRegisterMetaType<IconPixmap>();
  qDBusRegisterMetaType<IconPixmaps>();
  qDBusRegisterMetaType<NotifierToolTip>();
}

}  // namespace vorli::ui
