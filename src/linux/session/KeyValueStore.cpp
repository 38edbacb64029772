#include "linux/session/KeyValueStore.h"

#include "base/Logger.h"
#include "formats/StoredValueText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QVariant>
#include <cstdio>
#include <string_view>

namespace vorli::linuxhost {

namespace {

constexpr Logger settingsLog{logSubsystem, "settings"};

// Larger than this program's settings file ever is. A larger file belongs to something else and is not
// loaded.
constexpr qint64 largestFileBytes = 4 * 1024 * 1024;

// QSettings accepts almost anything as an ini file, so garbage would be overwritten silently.
bool looksLikeIni(const QString& path) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly) || file.size() > largestFileBytes) return false;
  if (file.peek(byteOrderMark.size()) == QByteArrayView(byteOrderMark)) file.skip(byteOrderMark.size());
  while (!file.atEnd()) {
    const QByteArray line = file.readLine().trimmed();
    if (line.contains('\0')) return false;
    if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) continue;
    const bool isSection = line.startsWith('[') && line.endsWith(']');
    if (!isSection && !line.contains('=')) return false;
  }
  return true;
}

// When the disk fills up, QSettings reports success for a half-written file.
bool isWhole(const QString& path, const QStringList& keys) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return false;
  const bool endsInLine = file.size() == 0 || (file.seek(file.size() - 1) && file.peek(1) == "\n");
  return endsInLine && QSettings(path, QSettings::IniFormat).allKeys() == keys;
}

QVariant toIni(const StoredValue& value) {
  QStringList texts;
  for (const auto& text : formats::storedTexts(value)) texts << QString::fromStdString(text);
  return texts.size() == 1 ? QVariant(texts.first()) : QVariant(texts);
}

// QSettings reads a list of one text as that text.
std::optional<StoredValue> fromIni(const QVariant& stored) {
  std::vector<std::string> texts;
  for (const auto& text : stored.toStringList()) texts.push_back(text.toStdString());
  if (texts.empty()) texts.push_back(stored.toString().toStdString());
  return formats::parseStoredTexts(texts);
}

bool moveOver(const QString& from, const QString& to) {
  return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

}  // namespace

KeyValueStore::KeyValueStore(Scheduler& scheduler, std::string file)
    : scheduler_(scheduler), file_(std::move(file)), isUsable_(prepareFile()) {
  load();
}

KeyValueStore::~KeyValueStore() {
  synchronize();
  *writeIsQueued_ = false;
}

std::string KeyValueStore::defaultFile() {
  auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  // A relative XDG_CONFIG_HOME must be ignored; Qt uses it.
  if (QDir::isRelativePath(folder)) folder = QDir::homePath() + QStringLiteral("/.config");
  return (folder + QStringLiteral("/Vorli/Vorli.ini")).toStdString();
}

bool KeyValueStore::prepareFile() {
  const auto path = QString::fromStdString(file_);
  const QFileInfo info(path);
  if (!info.exists()) return true;
  if (info.isDir()) {
    settingsLog.error("settings: %{public}s is no file; settings are not kept", file_);
    return false;
  }
  if (!info.isFile()) return setAside();  // not opened: reading a FIFO would wait for its writer
  if (!info.isReadable()) {
    settingsLog.error("settings: %{public}s cannot be read; starting with the defaults", file_);
    return false;
  }
  if (looksLikeIni(path) && QSettings(path, QSettings::IniFormat).status() == QSettings::NoError) return true;
  return setAside();
}

bool KeyValueStore::setAside() const {
  const std::string aside = file_ + ".damaged";
  if (std::rename(file_.c_str(), aside.c_str()) != 0) {
    settingsLog.error("settings: %{public}s is damaged and cannot be set aside; settings are not kept",
                      file_);
    return false;
  }
  settingsLog.error("settings: %{public}s is damaged; kept as %{public}s, starting with the defaults", file_,
                    aside);
  return true;
}

void KeyValueStore::load() {
  if (!isUsable_) return;
  const QSettings settings(QString::fromStdString(file_), QSettings::IniFormat);
  for (const auto& key : settings.allKeys()) values_.insert(key, settings.value(key));
}

std::optional<StoredValue> KeyValueStore::object(const std::string& key) const {
  const auto stored = values_.value(QString::fromStdString(key));
  if (!stored.isValid()) return std::nullopt;
  return fromIni(stored).value_or(StoredDictionary());
}

void KeyValueStore::setObject(const std::string& key, std::optional<StoredValue> value) {
  const auto name = QString::fromStdString(key);
  const auto stored = value ? toIni(*value) : QVariant();
  if (stored == values_.value(name) && !unwritten_.contains(name)) return;  // a write waits for the disk
  if (value) {
    values_.insert(name, stored);
  } else {
    values_.remove(name);
  }
  unwritten_.insert(name);
  if (std::exchange(*writeIsQueued_, true)) return;
  scheduler_.post([this, queued = writeIsQueued_] {
    if (*queued) synchronize();
  });
}

void KeyValueStore::synchronize() {
  *writeIsQueued_ = false;
  if (unwritten_.empty()) return;
  const bool failed = !write();
  if (failed && !lastWriteFailed_) {
    settingsLog.error("settings: %{public}s could not be written; changes last until the program ends",
                      file_);
  }
  lastWriteFailed_ = failed;
  if (!failed) unwritten_.clear();
}

// Writes everything or nothing: the new file replaces the old one only when it is known to be complete.
bool KeyValueStore::write() const {
  if (!isUsable_) return false;
  const QFileInfo present(QString::fromStdString(file_));
  if (present.exists() && !present.isWritable()) return false;
  // Writes to the target of a link, so that the link itself stays.
  const QString target = present.exists() ? present.canonicalFilePath() : present.filePath();
  if (!QDir().mkpath(QFileInfo(target).path())) return false;
  // QSettings caches files by their names, so the written file is renamed before it is read back.
  const QTemporaryDir folder(target + QStringLiteral(".XXXXXX"));
  const QString written = folder.filePath(QStringLiteral("written"));
  const QString complete = folder.filePath(QStringLiteral("complete"));
  const auto keys = folder.isValid() ? writeMerged(written) : std::nullopt;
  if (!keys || !moveOver(written, complete) || !isWhole(complete, *keys)) return false;
  if (present.exists()) QFile::setPermissions(complete, present.permissions());
  return moveOver(complete, target);
}

std::optional<QStringList> KeyValueStore::writeMerged(const QString& path) const {
  const QSettings present(QString::fromStdString(file_), QSettings::IniFormat);
  QSettings merged(path, QSettings::IniFormat);
  for (const auto& key : present.allKeys()) merged.setValue(key, present.value(key));
  for (const auto& key : unwritten_) {
    if (values_.contains(key)) {
      merged.setValue(key, values_.value(key));
    } else {
      merged.remove(key);
    }
  }
  merged.sync();
  if (merged.status() != QSettings::NoError) return std::nullopt;
  auto keys = merged.allKeys();
  // QSettings creates no file when there are no keys.
  if (keys.isEmpty() && !QFile(path).open(QIODevice::WriteOnly)) return std::nullopt;
  return keys;
}

}  // namespace vorli::linuxhost
