#pragma once

#include "base/Scheduler.h"
#include "ports/KeyValueStore.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace vorli::linuxhost {

/// Preferences in an ini file that a person can read. All writes of one turn of the main loop are combined
/// and replace the whole file; keys that others added in the meantime are kept. A file that cannot be
/// understood is renamed to `<name>.damaged`, and the program starts with its defaults.
class KeyValueStore final : public ports::KeyValueStore {
 public:
  /// `file` is the absolute path of the ini file; its folder is created when the first value is written.
  KeyValueStore(Scheduler& scheduler, std::string file);
  ~KeyValueStore() override;

  /// `Vorli/Vorli.ini` in the user's configuration folder.
  static std::string defaultFile();

  std::optional<StoredValue> object(const std::string& key) const override;
  void setObject(const std::string& key, std::optional<StoredValue> value) override;
  void synchronize() override;

 private:
  /// Checks the file and sets a damaged one aside. False when the file must be neither read nor written.
  bool prepareFile();
  bool setAside() const;
  void load();
  bool write() const;
  /// Writes the file's current content with the unwritten changes to `path`. Returns the keys that it then
  /// holds; empty on failure.
  std::optional<QStringList> writeMerged(const QString& path) const;

  Scheduler& scheduler_;
  const std::string file_;
  const bool isUsable_;
  QMap<QString, QVariant> values_;
  std::set<QString> unwritten_;  // the keys that were set or removed since the last write
  std::shared_ptr<bool> writeIsQueued_ = std::make_shared<bool>(false);
  bool lastWriteFailed_ = false;
};

}  // namespace vorli::linuxhost
