#pragma once

#include "base/Scheduler.h"
#include "ports/KeyValueStore.h"

#include <memory>
#include <string>

class QSettings;
class QVariant;

namespace vorli::linuxhost {

/// Preferences in an ini file that a person can read. Writes are gathered over one turn of the main loop and
/// replace the file whole. A file that cannot be understood is kept beside it as `<name>.damaged`, and the
/// program starts with its defaults.
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
  void setAsideIfDamaged();

  Scheduler& scheduler_;
  const std::string file_;
  std::unique_ptr<QSettings> settings_;
  std::shared_ptr<bool> writeIsQueued_ = std::make_shared<bool>(false);
  bool lastWriteFailed_ = false;
};

}  // namespace vorli::linuxhost
