#include "ui/kit/Pasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QString>

namespace vorli::ui {

void Pasteboard::setString(const std::string& text) {
  QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

}  // namespace vorli::ui
