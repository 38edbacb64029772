#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>

class QImage;

namespace vorli::ui {

/// One size of an icon as the protocol carries it: ARGB, 32 bits, big endian, not premultiplied.
struct IconPixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;

  static IconPixmap fromImage(const QImage& image);
};

using IconPixmaps = QList<IconPixmap>;

/// A tool tip as the protocol carries it.
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

/// Teaches QtDBus the types above. Once or more often.
void registerStatusNotifierTypes();

}  // namespace vorli::ui

Q_DECLARE_METATYPE(vorli::ui::IconPixmap)
Q_DECLARE_METATYPE(vorli::ui::NotifierToolTip)
