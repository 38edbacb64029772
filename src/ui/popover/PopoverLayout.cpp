#include "ui/popover/PopoverLayout.h"

#include "popover/FlowingText.h"
#include "popover/PopoverView.h"
#include "ui/kit/QtText.h"
#include "ui/popover/LineBreaks.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace vorli::ui {
namespace {

constexpr double headlineLine = 22.0, headlineBaseline = 16.0;
constexpr double asideLine = 18.0, asideBaseline = 13.0;
constexpr double culpritLine = 14.0, culpritLineSpacing = 2.0, culpritBaseline = 11.0;
constexpr double buttonWidth = 84.0, buttonHeight = 28.0, buttonGap = 8.0;
constexpr double capsulePadding = 12.0;
constexpr double linkSymbolSide = 10.0, linkSymbolGap = 6.0;

QStringList linesOf(const TextStyle& style, const QString& text) {
  const auto widthOf = [&style](const QString& part) { return style.width(part); };
  return balancedLines(text, PopoverMetrics::columnWidth, widthOf);
}

/// Places the elements from the top down.
class Setter {
 public:
  Setter(const WordsPicture& words, double pixelRatio)
      : words_(words), pixelRatio_(pixelRatio), styles_(PopoverTextStyles::shared()) {}

  PopoverLayout run() {
    y_ = onPixel(words_.headlineTop);
    const auto [headline, aside] = voicesOf(words_.sentence.text);
    layout_.headline = setLines(styles_.headline, headline, headlineLine, headlineBaseline);
    layout_.aside = setLines(styles_.aside, aside, asideLine, asideBaseline);
    if (words_.banner) setBanner();
    if (words_.link) setLink();
    const double textBottom = y_;
    const double gap = layout_.aside.empty() ? 14.0 : 12.0;
    if (words_.culprits) {
      y_ = textBottom + gap;
      setCulprits();
    }
    const double culpritsBottom = y_;
    if (words_.quit) {
      y_ = textBottom + gap;
      setQuit();
    }
    layout_.bottom = std::max(y_, culpritsBottom);
    return std::move(layout_);
  }

 private:
  double onPixel(double place) const { return std::round(place * pixelRatio_) / pixelRatio_; }

  PlacedText centred(const TextStyle& style, const QString& text, double centre, double baseline) const {
    return {text, {onPixel(centre - style.width(text) / 2.0), baseline}};
  }

  std::vector<PlacedText> setLines(const TextStyle& style, const QString& text, double pitch,
                                   double baseline) {
    std::vector<PlacedText> placed;
    for (const QString& line : linesOf(style, text)) {
      placed.push_back(centred(style, line, PopoverMetrics::centreX, y_ + baseline));
      y_ += pitch;
    }
    return placed;
  }

  void setBanner() {
    constexpr double above = 12.0, height = 24.0, baseline = 16.0;
    y_ += above;
    // An even width, so that both ends lie on whole points.
    double width = std::ceil(styles_.banner.width(words_.banner->text)) + 2.0 * capsulePadding;
    if (std::fmod(width, 2.0) != 0.0) width += 1.0;
    layout_.banner = {{PopoverMetrics::centreX - width / 2.0, y_, width, height},
                      centred(styles_.banner, words_.banner->text, PopoverMetrics::centreX, y_ + baseline)};
    y_ += height;
  }

  void setLink() {
    constexpr double above = 10.0, height = 26.0, baseline = 17.0, symbolTop = 8.0;
    const QString text = qtText(PopoverView::openSettingsTitle);
    y_ += above;
    const double textWidth = styles_.link.width(text);
    const double width = std::round(textWidth + linkSymbolGap + linkSymbolSide + 2.0 * capsulePadding);
    const double left = std::round(PopoverMetrics::centreX - width / 2.0);
    layout_.link = {{left, y_, width, height}, {text, {left + capsulePadding, y_ + baseline}}};
    layout_.linkSymbol = {left + capsulePadding + textWidth + linkSymbolGap, y_ + symbolTop, linkSymbolSide,
                          linkSymbolSide};
    y_ += height;
  }

  const TextStyle& styleOf(const CulpritPiece& piece) const {
    return piece.kind == CulpritPiece::Kind::name ? styles_.name : styles_.culprit;
  }

  void setCulprits() {
    auto pieces = words_.culprits->pieces;
    std::vector<FlowingText::Size> sizes;
    for (auto& piece : pieces) {
      piece.text = cutToWidth(styleOf(piece), piece.text, PopoverMetrics::columnWidth);
      sizes.push_back({styleOf(piece).width(piece.text), culpritLine});
    }
    const auto flow = FlowingText{.spacing = 0.0, .lineSpacing = culpritLineSpacing}.arrange(
        sizes, PopoverMetrics::columnWidth);

    layout_.culprits.emplace().top = y_;
    const auto count = static_cast<std::size_t>(pieces.size());
    for (std::size_t first = 0; first < count;) {
      std::size_t end = first + 1;
      while (end < count && flow.positions[end].y == flow.positions[first].y) ++end;
      const auto from = static_cast<qsizetype>(first), number = static_cast<qsizetype>(end - first);
      setCulpritLine(pieces.mid(from, number), std::span(sizes).subspan(first, end - first),
                     y_ + flow.positions[first].y);
      first = end;
    }
    y_ += flow.size.height;
    layout_.culprits->bottom = y_;
  }

  // Centres the line as the eye sees it, without the spaces at its ends.
  void setCulpritLine(const QList<CulpritPiece>& pieces, std::span<const FlowingText::Size> sizes,
                      double top) {
    const double blank = styles_.culprit.width(QStringLiteral(" "));
    const double leading = pieces.front().text.startsWith(QLatin1Char(' ')) ? blank : 0.0;
    const double trailing = pieces.back().text.endsWith(QLatin1Char(' ')) ? blank : 0.0;
    double width = 0.0;
    for (const auto& size : sizes) width += size.width;
    double x = onPixel(PopoverMetrics::centreX - (width - leading - trailing) / 2.0 - leading);
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      const auto& piece = pieces[static_cast<qsizetype>(i)];
      if (piece.kind == CulpritPiece::Kind::name) {
        layout_.culprits->names.push_back(
            {piece.text, {x, top, sizes[i].width, culpritLine}, top + culpritBaseline});
      } else {
        layout_.culprits->texts.push_back({piece.text, {x, top + culpritBaseline}});
      }
      x += sizes[i].width;
    }
  }

  void setQuit() {
    constexpr double questionBaseline = 12.0, buttonsTop = 24.0, textBaseline = 18.0;
    const QString opening = QStringLiteral("Quit "), closing = QStringLiteral("?");
    const double room = PopoverMetrics::columnWidth - styles_.question.width(opening + closing);
    const QString question = opening + cutToWidth(styles_.question, words_.quit->name, room) + closing;
    PlacedQuit placed;
    placed.question = centred(styles_.question, question, PopoverMetrics::centreX, y_ + questionBaseline);
    y_ += buttonsTop;
    placed.cancel = {PopoverMetrics::centreX - buttonGap / 2.0 - buttonWidth, y_, buttonWidth, buttonHeight};
    placed.quit = placed.cancel.translated(buttonWidth + buttonGap, 0.0);
    placed.cancelText = centred(styles_.button, qtText(PopoverView::cancelTitle), placed.cancel.center().x(),
                                y_ + textBaseline);
    placed.quitText =
        centred(styles_.button, qtText(PopoverView::quitTitle), placed.quit.center().x(), y_ + textBaseline);
    layout_.quit = placed;
    y_ += buttonHeight;
  }

  const WordsPicture& words_;
  const double pixelRatio_;
  const PopoverTextStyles& styles_;
  PopoverLayout layout_;
  double y_ = 0.0;
};

double tallestRingCentre(const SentenceVoices& sentence, PopoverGrid::Under under) {
  if (!sentence.aside.isEmpty()) return 102.0;
  if (under == PopoverGrid::Under::nothing) return 110.0;
  return linesOf(PopoverTextStyles::shared().headline, sentence.headline).size() > 1 ? 96.0 : 114.0;
}

}  // namespace

PopoverGrid PopoverGrid::of(double height, const QString& sentence, Under under) {
  constexpr double toHeadline = 79.0, toHeadlineWhenTallest = 77.0;
  if (height >= PopoverMetrics::tallest) {
    const double centre = tallestRingCentre(voicesOf(sentence), under);
    return {centre, centre + toHeadlineWhenTallest};
  }
  const double centre = height > 252.0 ? 98.0 : 96.0;
  return {centre, centre + toHeadline};
}

PopoverLayout PopoverLayout::of(const WordsPicture& words, double pixelRatio) {
  return Setter(words, pixelRatio).run();
}

}  // namespace vorli::ui
