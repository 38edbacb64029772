#pragma once

#include "linux/session/LinkHandlers.h"
#include "ports/FileViewer.h"

#include <QDBusConnection>
#include <QObject>
#include <string>

namespace vorli::linuxhost {

/// Shows files in the file manager on the session bus, which the bus starts when it is not running. Without
/// one, opens the folder in the user's program for folders.
class FileViewer final : public ports::FileViewer {
 public:
  FileViewer(QDBusConnection sessionBus, LinkHandlers::Places places);

  void reveal(const std::string& path) override;

 private:
  void openFolderOf(const std::string& path) const;

  QDBusConnection bus_;
  const LinkHandlers handlers_;
  const QObject receiver_;  // answers after its destruction are ignored
};

}  // namespace vorli::linuxhost
