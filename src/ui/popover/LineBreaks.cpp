#include "ui/popover/LineBreaks.h"

#include <algorithm>
#include <limits>

namespace vorli::ui {
namespace {

bool leansOnTheNext(const QString& word) {
  static const QStringList words{QStringLiteral("so"),  QStringLiteral("for"), QStringLiteral("a"),
                                 QStringLiteral("the"), QStringLiteral("in"),  QStringLiteral("to"),
                                 QStringLiteral("your")};
  return words.contains(word);
}

// Splits the sentence into pieces between which a line may end.
QStringList unbreakablePieces(const QString& sentence) {
  QStringList pieces;
  bool joins = false;
  for (const QString& word : sentence.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
    const bool isPair = !pieces.isEmpty() && pieces.back().endsWith(QLatin1String("Login")) &&
                        word.startsWith(QLatin1String("Items"));
    if (joins || isPair) {
      pieces.back() += QLatin1Char(' ') + word;
    } else {
      pieces.push_back(word);
    }
    joins = leansOnTheNext(word);
  }
  return pieces;
}

QString line(const QStringList& pieces, qsizetype first, qsizetype end) {
  return pieces.mid(first, end - first).join(QLatin1Char(' '));
}

qsizetype fewestLines(const QStringList& pieces, double width,
                      const std::function<double(const QString&)>& widthOf) {
  qsizetype count = 1, first = 0;
  for (qsizetype end = 1; end <= pieces.size(); ++end) {
    if (end - first > 1 && widthOf(line(pieces, first, end)) > width) {
      first = end - 1;
      ++count;
    }
  }
  return count;
}

struct Cut {
  double longest = std::numeric_limits<double>::infinity();
  QStringList lines;
};

// Tries all ways to break the pieces from `first` on into `count` lines, and returns the one whose longest
// line is shortest. A sentence has only a dozen words and two or three lines.
Cut bestCut(const QStringList& pieces, qsizetype first, qsizetype count,
            const std::function<double(const QString&)>& widthOf) {
  if (count == 1) {
    const QString rest = line(pieces, first, pieces.size());
    return {widthOf(rest), {rest}};
  }
  Cut best;
  for (qsizetype end = first + 1; end <= pieces.size() - (count - 1); ++end) {
    const QString here = line(pieces, first, end);
    Cut below = bestCut(pieces, end, count - 1, widthOf);
    below.longest = std::max(below.longest, widthOf(here));
    if (below.longest >= best.longest) continue;
    below.lines.prepend(here);
    best = below;
  }
  return best;
}

}  // namespace

QStringList balancedLines(const QString& sentence, double width,
                          const std::function<double(const QString&)>& widthOf) {
  const QStringList pieces = unbreakablePieces(sentence);
  if (pieces.isEmpty()) return {};
  return bestCut(pieces, 0, fewestLines(pieces, width, widthOf), widthOf).lines;
}

SentenceVoices voicesOf(const QString& sentence) {
  const qsizetype stop = sentence.indexOf(QLatin1String(". "));
  if (stop < 0) return {sentence, {}};
  return {sentence.left(stop + 1), sentence.mid(stop + 2).trimmed()};
}

}  // namespace vorli::ui
