#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace vorli::ui {

/// Cuts a sentence into the fewest lines that fit `width`, and those so that the longest is as short as it
/// can be. No line ends in a word that leans on the next one, and "Login Items" stays together.
QStringList balancedLines(const QString& sentence, double width,
                          const std::function<double(const QString&)>& widthOf);

/// A status sentence in its two voices: what stands to the first full stop that a blank follows, and the
/// rest, which may be empty.
struct SentenceVoices {
  QString headline, aside;
};
SentenceVoices voicesOf(const QString& sentence);

}  // namespace vorli::ui
