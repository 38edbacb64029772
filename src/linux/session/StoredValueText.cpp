#include "linux/session/StoredValueText.h"

#include <QLocale>
#include <cmath>

namespace vorli::linuxhost {

namespace {

const QString stringMark = QStringLiteral("@String ");
const QString dateMark = QStringLiteral("@Date ");
const QString listMark = QStringLiteral("@Strings");
const QString dictionaryMark = QStringLiteral("@Dictionary");

QString secondsText(Date date) {
  return QString::number(date.secondsSince1970, 'f', 6);
}

std::optional<Date> dateFrom(const QString& text) {
  bool understood = false;
  const double seconds = text.toDouble(&understood);
  if (!understood || !std::isfinite(seconds)) return std::nullopt;
  return Date{seconds};
}

QString realText(double real) {
  const QString text = QString::number(real, 'g', QLocale::FloatingPointShortest);
  return text.contains(QLatin1Char('.')) || text.contains(QLatin1Char('e')) ? text
                                                                            : text + QStringLiteral(".0");
}

// Interprets an unmarked text. It is a number only in the exact spelling that this file writes; any other
// text stays a text.
ports::StoredEntry plainValue(const QString& text) {
  if (text == QLatin1String("true")) return true;
  if (text == QLatin1String("false")) return false;
  bool understood = false;
  if (const qlonglong number = text.toLongLong(&understood); understood && QString::number(number) == text) {
    return std::int64_t{number};
  }
  const double real = text.toDouble(&understood);
  if (understood && realText(real) == text) return real;
  return text.toStdString();
}

QString plainText(const std::string& text) {
  const auto plain = QString::fromStdString(text);
  const bool staysText =
      std::holds_alternative<std::string>(plainValue(plain)) && !plain.startsWith(QLatin1Char('@'));
  return staysText ? plain : stringMark + plain;
}

struct EntryWriter {
  QString operator()(bool flag) const { return flag ? QStringLiteral("true") : QStringLiteral("false"); }
  QString operator()(std::int64_t number) const { return QString::number(number); }
  QString operator()(double real) const { return realText(real); }
  QString operator()(const std::string& text) const { return plainText(text); }
  QString operator()(Date date) const { return dateMark + secondsText(date); }
};

std::optional<ports::StoredEntry> entryFrom(const QString& text) {
  if (text.startsWith(stringMark)) return text.mid(stringMark.size()).toStdString();
  if (text.startsWith(dateMark)) return dateFrom(text.mid(dateMark.size()));
  if (text.startsWith(QLatin1Char('@'))) return std::nullopt;
  return plainValue(text);
}

std::optional<ports::StoredValue> listFrom(QStringList items) {
  const QString mark = items.takeFirst();
  if (mark == listMark) {
    std::vector<std::string> texts;
    for (const auto& item : items) texts.push_back(item.toStdString());
    return texts;
  }
  if (mark != dictionaryMark) return std::nullopt;
  ports::StoredDictionary dictionary;
  for (qsizetype i = 0; i + 1 < items.size(); i += 2) {
    if (auto entry = entryFrom(items[i + 1])) dictionary[items[i].toStdString()] = std::move(*entry);
  }
  return dictionary;
}

}  // namespace

QVariant toIni(const ports::StoredValue& value) {
  struct Writer : EntryWriter {
    using EntryWriter::operator();
    QStringList operator()(const std::vector<std::string>& texts) const {
      QStringList items{listMark};
      for (const auto& text : texts) items << QString::fromStdString(text);
      return items;
    }
    QStringList operator()(const ports::StoredDictionary& dictionary) const {
      QStringList items{dictionaryMark};
      for (const auto& [key, entry] : dictionary) {
        items << QString::fromStdString(key) << std::visit(EntryWriter{}, entry);
      }
      return items;
    }
  };
  return std::visit([](const auto& held) { return QVariant(Writer{}(held)); }, value);
}

std::optional<ports::StoredValue> fromIni(const QVariant& stored) {
  // A list that holds only its mark is read back as a single text.
  auto items = stored.toStringList();
  if (items.size() > 1 || items.value(0) == listMark || items.value(0) == dictionaryMark) {
    return items.value(0).startsWith(QLatin1Char('@')) ? listFrom(std::move(items))
                                                       : items.join(QStringLiteral(", ")).toStdString();
  }
  const auto entry = entryFrom(stored.toString());
  if (!entry) return std::nullopt;
  return std::visit([](const auto& held) { return ports::StoredValue(held); }, *entry);
}

}  // namespace vorli::linuxhost
