#pragma once

#include "base/Animated.h"
#include "base/Scheduler.h"
#include "base/Subscription.h"
#include "ports/ApplicationIcons.h"
#include "ports/BackgroundWork.h"
#include "ports/CalendarClock.h"
#include "ports/MotionPreference.h"
#include "startup/StartupAppsView.h"
#include "ui/kit/WindowPalette.h"
#include "ui/windows/ApplicationPictures.h"
#include "ui/windows/StartupAppsLayout.h"

#include <QLabel>
#include <QWidget>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QScrollArea;

namespace vorli::ui {

class BulkBanner;
class SearchField;
class StartupAppRowWidget;

/// Dependencies of the page of startup items on the host.
struct StartupAppsHost {
  Scheduler& scheduler;
  const ports::CalendarClock& calendar;
  const ports::MotionPreference& motion;
  ports::ApplicationIcons& icons;
  /// Creates a second thread for reading icons.
  std::function<std::unique_ptr<ports::BackgroundWork>()> makeBackgroundWork;
};

/// The scrolled content of the page: search field, banners, sections and
/// footer. Only the rows near the visible stretch have widgets.
class StartupAppsList final : public QWidget {
 public:
  StartupAppsList(StartupAppsView& view, const StartupAppsHost& host, Appearance appearance,
                  QScrollArea& area);
  ~StartupAppsList() override;

  /// Shows the view's current content; rows that it lacks now leave with `animation`.
  void refresh(const std::optional<Animation>& animation);
  /// Makes and drops rows after the list was scrolled or resized.
  void followScrolling();
  /// Reserves room for toasts below the list.
  void setToastRoom(double room);

  SearchField& search() { return *search_; }
  std::size_t rowWidgetCount() const { return rows_.size(); }
  StartupAppRowWidget* rowWidget(const std::string& itemID) const;
  const StartupAppsLayout& layoutOfRows() const { return layout_; }

 private:
  struct Entry {
    StartupItem item;
    double height = 0.0;
    bool isNew = true;                          // it opens with its panel
    std::shared_ptr<Animated<double>> leaving;  // remaining share; only while the row leaves
  };
  struct Section {
    StartupAppsSection section;  // without items, which are in the entries
    std::vector<Entry> entries;
  };

  /// The panel of a row while it opens, is open or closes.
  struct PanelMotion {
    double height = 0.0;
    Animated<double> shown;  // share of the height
  };

  void paintEvent(QPaintEvent* event) override;

  std::vector<Section> sectionsOfView();
  void keepLeaving(std::vector<Section>& sections, const std::optional<Animation>& animation);
  void updateBanners();
  void updateTexts();
  double panelHeight(const Section& section, const Entry& entry);
  StartupAppsShape::Row shapeOf(const Section& section, Entry& entry);
  double panelShown(const std::string& itemID) const;
  bool isAnyPanelMoving() const;
  void arrange();
  enum class Existing { keep, refresh };
  void updateRows(Existing existing);
  void updateTabOrder();
  bool isGone(const std::string& itemID) const;
  void frame();
  bool isAnyLeaving() const;
  void paintHeading(QPainter& painter, std::size_t index) const;

  StartupAppsView& view_;
  Scheduler& scheduler_;
  const ports::CalendarClock& calendar_;
  const ports::MotionPreference& motion_;
  const Appearance appearance_;
  const WindowPalette& palette_;
  ApplicationPictures pictures_;
  Subscription pictureChanges_;
  QScrollArea& area_;
  SearchField* search_;
  std::vector<BulkBanner*> banners_;
  std::vector<std::string> bannerTitles_;
  std::vector<QLabel*> headings_;
  QLabel* footer_;
  std::vector<Section> sections_;
  StartupAppsLayout layout_{StartupAppsShape{}};
  std::map<std::string, StartupAppRowWidget*> rows_;  // by item
  std::map<std::string, PanelMotion> panels_;         // by item
  double toastRoom_ = 0.0;
  Scheduler::TimerId frameTimer_ = 0;
};

}  // namespace vorli::ui
