#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace vorli::ui {

/// Breaks a sentence into the fewest lines that fit `width`, with the longest line as short as possible. No
/// line ends in a word that belongs to the next one, and "Login Items" stays together.
QStringList balancedLines(const QString& sentence, double width,
                          const std::function<double(const QString&)>& widthOf);

/// A status sentence in its two voices: the text up to the first full stop that is followed by a space, and
/// the rest, which may be empty.
struct SentenceVoices {
  QString headline, aside;
};
SentenceVoices voicesOf(const QString& sentence);

}  // namespace vorli::ui
