#pragma once

#include "base/Scheduler.h"
#include "ports/KeyValueStore.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>
#include <string>

namespace vorli::linuxhost {

/// Preferences in an ini file that a person can read. Writes are gathered over one turn of the main loop and
/// replace the file whole; a key that somebody else put into it meanwhile stays. A file that cannot be
/// understood is kept beside it as `<name>.damaged`, and the program starts with its defaults.
class KeyValueStore final : public ports::KeyValueStore {
 public:
  /// `file` is the absolute path of the ini file; its folder is made when the first value is written.
  KeyValueStore(Scheduler& scheduler, std::string file);
  ~KeyValueStore() override;

  /// `Vorli/Vorli.ini` in the user's configuration folder.
  static std::string defaultFile();

  std::optional<ports::StoredValue> object(const std::string& key) const override;
  void setObject(const std::string& key, std::optional<ports::StoredValue> value) override;
  void synchronize() override;

 private:
  /// False when nothing is to be read from there or written to there.
  bool prepareFile();
  bool setAside() const;
  void load();
  bool write() const;
  /// Writes what stands in the file with our changes to `path`. The keys that are there then.
  std::optional<QStringList> writeMerged(const QString& path) const;

  Scheduler& scheduler_;
  const std::string file_;
  const bool isUsable_;
  QMap<QString, QVariant> values_;
  QSet<QString> unwritten_;  // the keys that were set or removed since the last write
  std::shared_ptr<bool> writeIsQueued_ = std::make_shared<bool>(false);
  bool lastWriteFailed_ = false;
};

}  // namespace vorli::linuxhost
