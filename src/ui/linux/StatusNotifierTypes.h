#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>

class QImage;

namespace vorli::ui {

/// One size of an icon in the protocol's format: ARGB, 32 bits, big endian, not premultiplied.
struct IconPixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;

  static IconPixmap fromImage(const QImage& image);
};

using IconPixmaps = QList<IconPixmap>;

/// A tool tip in the protocol's format.
struct NotifierToolTip {
  QString iconName;
  IconPixmaps pixmaps;
  QString title;
  QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const NotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, NotifierToolTip& toolTip);

/// Registers the types above with QtDBus. May be called more than once.
void registerStatusNotifierTypes();

}  // namespace vorli::ui

Q_DECLARE_METATYPE(vorli::ui::IconPixmap)
Q_DECLARE_METATYPE(vorli::ui::NotifierToolTip)
