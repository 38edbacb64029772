#include "linux/KeyValueStore.h"

#include "base/Logger.h"
#include "linux/StoredValueText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace vorli::linuxhost {

namespace {

constexpr Logger logger{logSubsystem, "settings"};

// More than any settings file of ours ever holds; a bigger one is somebody else's, and is not loaded.
constexpr qint64 largestFileBytes = 4 * 1024 * 1024;

// QSettings takes almost anything for an ini file, so that garbage would be overwritten without a word.
bool looksLikeIni(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly) || file.size() > largestFileBytes) return false;
  while (!file.atEnd()) {
    const QByteArray line = file.readLine().trimmed();
    if (line.contains('\0')) return false;
    if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) continue;
    const bool isSection = line.startsWith('[') && line.endsWith(']');
    if (!isSection && !line.contains('=')) return false;
  }
  return true;
}

}  // namespace

KeyValueStore::KeyValueStore(Scheduler& scheduler, std::string file)
    : scheduler_(scheduler), file_(std::move(file)) {
  setAsideIfDamaged();
  settings_ = std::make_unique<QSettings>(QString::fromStdString(file_), QSettings::IniFormat);
}

KeyValueStore::~KeyValueStore() {
  synchronize();
  *writeIsQueued_ = false;
}

std::string KeyValueStore::defaultFile() {
  return (QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
          QStringLiteral("/Vorli/Vorli.ini"))
      .toStdString();
}

void KeyValueStore::setAsideIfDamaged() {
  const auto path = QString::fromStdString(file_);
  const QFileInfo info(path);
  if (!info.exists()) return;
  if (!info.isFile()) {
    logger.error("settings: %{public}s is no file; settings are not kept", file_);
    return;
  }
  if (!info.isReadable()) {
    logger.error("settings: %{public}s cannot be read; starting with the defaults", file_);
    return;
  }
  if (looksLikeIni(path) && QSettings(path, QSettings::IniFormat).status() == QSettings::NoError) return;

  const QString aside = path + QStringLiteral(".damaged");
  QFile::remove(aside);
  if (QFile::rename(path, aside)) {
    logger.error("settings: %{public}s is damaged; kept as %{public}s, starting with the defaults", file_,
                 aside.toStdString());
  } else {
    logger.error("settings: %{public}s is damaged and cannot be set aside", file_);
  }
}

std::optional<ports::StoredValue> KeyValueStore::object(const std::string& key) const {
  const auto stored = settings_->value(QString::fromStdString(key));
  return stored.isValid() ? fromIni(stored) : std::nullopt;
}

void KeyValueStore::setObject(const std::string& key, std::optional<ports::StoredValue> value) {
  const auto name = QString::fromStdString(key);
  if (value) {
    settings_->setValue(name, toIni(*value));
  } else {
    settings_->remove(name);
  }
  if (std::exchange(*writeIsQueued_, true)) return;
  scheduler_.post([this, queued = writeIsQueued_] {
    if (*queued) synchronize();
  });
}

void KeyValueStore::synchronize() {
  *writeIsQueued_ = false;
  settings_->sync();
  const bool failed = settings_->status() != QSettings::NoError;
  if (failed && !lastWriteFailed_) {
    logger.error("settings: %{public}s could not be written; changes last until the program ends", file_);
  }
  lastWriteFailed_ = failed;
}

}  // namespace vorli::linuxhost
