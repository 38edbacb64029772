#pragma once

#include <QRectF>
#include <cstddef>
#include <vector>

namespace vorli::ui {

/// Lengths of the list of startup items, in points.
struct StartupAppsMetrics {
  static constexpr double left = 32.0, width = 600.0;
  static constexpr double top = 12.0;
  static constexpr double searchHeight = 36.0;
  static constexpr double bannerGap = 8.0, firstBannerGap = 12.0, bannerHeight = 60.0;
  static constexpr double sectionGap = 20.0, headingHeight = 20.0, headingGap = 8.0;
  static constexpr double footerGap = 20.0, bottom = 28.0;

  // Inside of a row.
  static constexpr double padding = 14.0, sidePadding = 16.0;
  static constexpr double iconSide = 40.0, columnGap = 14.0;
  static constexpr double textLeft = sidePadding + iconSide + columnGap;
  static constexpr double lineHeight = 18.0;
  static constexpr double descriptionGap = 1.0, metaGap = 3.0;
  static constexpr double buttonTop = 20.0, buttonHeight = 30.0, buttonGap = 2.0;

  // The panel under a row.
  static constexpr double panelLeft = textLeft, panelWidth = width - textLeft - sidePadding;
  static constexpr double panelPadding = 14.0, panelSidePadding = 16.0, panelGap = 14.0;
  static constexpr double panelTextWidth = panelWidth - 2.0 * panelSidePadding;
  static constexpr double panelHeading = 20.0, panelBodyGap = 3.0, panelButtonGap = 11.0;

  // Room below the list while toasts cover its end.
  static constexpr double oneToast = 72.0, twoToasts = 128.0;
};

/// Places of the parts of one row, relative to its upper left corner. All rows share the right edge of their
/// buttons.
struct StartupAppRowLayout {
  QRectF icon;
  QRectF text;  // the name and the description
  QRectF name;
  QRectF description;
  QRectF meta;
  double height = 0.0;

  /// Heights of the texts, whose lines are higher where the desktop's fonts are larger.
  struct Texts {
    double name = 18.0;
    double description = 18.0;
    double meta = 16.0;
  };
  /// `buttonsWidth` is that of all buttons with the gaps between them.
  static StartupAppRowLayout of(const Texts& texts, double buttonsWidth);
  /// Room for a name or a description beside buttons of this width.
  static double textWidth(double buttonsWidth);
  /// Height of a panel whose body takes `bodyLines`.
  static double panelHeight(int bodyLines);
};

/// Heights of the parts of the list, from top to bottom.
struct StartupAppsShape {
  struct Row {
    double height = 0.0;       // without the panel
    double panelHeight = 0.0;  // 0: none
    // Shares of the full height while the row or its panel appears or disappears.
    double shown = 1.0;
    double panelShown = 1.0;
  };

  struct Section {
    std::vector<Row> rows;
    double heading = StartupAppsMetrics::headingHeight;
  };

  std::vector<double> banners;
  std::vector<Section> sections;
  double footer = 0.0;     // 0: none
  double toastRoom = 0.0;  // after everything else
  double visible = 0.0;    // height of the part that is visible at once
};

/// Turns heights into rectangles. Knows no widget and no text; finds the rows of any stretch of the list in
/// logarithmic time.
class StartupAppsLayout {
 public:
  struct RowPlace {
    std::size_t section = 0;
    std::size_t row = 0;

    bool operator==(const RowPlace&) const = default;
  };

  explicit StartupAppsLayout(const StartupAppsShape& shape);

  double height() const { return height_; }
  QRectF search() const;
  QRectF banner(std::size_t index) const { return banners_.at(index); }
  QRectF heading(std::size_t section) const { return sections_.at(section).heading; }
  QRectF card(std::size_t section) const { return sections_.at(section).card; }
  /// The row without its panel, cut while it appears or disappears.
  QRectF row(RowPlace place) const;
  /// Empty when the row has none.
  QRectF panel(RowPlace place) const;
  /// The row with its panel.
  QRectF block(RowPlace place) const;
  QRectF footer() const { return footer_; }

  std::size_t sectionCount() const { return sections_.size(); }
  /// The rows that meet the stretch from `top` to `bottom`, in order.
  std::vector<RowPlace> rowsBetween(double top, double bottom) const;

 private:
  struct Block {
    double top, rowHeight, panelTop, panelHeight, bottom;
  };
  struct Section {
    QRectF heading;
    QRectF card;
    std::vector<Block> blocks;
  };

  const Block& at(RowPlace place) const { return sections_.at(place.section).blocks.at(place.row); }

  std::vector<QRectF> banners_;
  std::vector<Section> sections_;
  QRectF footer_;
  double height_ = 0.0;
};

}  // namespace vorli::ui
