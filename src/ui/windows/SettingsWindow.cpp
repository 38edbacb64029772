#include "ui/windows/SettingsWindow.h"

#include "ui/kit/QtText.h"
#include "ui/kit/Sidebar.h"

#include <QPainter>
#include <algorithm>
#include <utility>

namespace vorli::ui {
namespace {

constexpr double pageFadeSeconds = 0.14, pageRise = 6.0;

}  // namespace

// A picture of the previous page over the current one.
class SettingsWindow::LeavingPage final : public QWidget {
 public:
  LeavingPage(const QPixmap& picture, QWidget* parent) : QWidget(parent), picture_(picture) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
  }
  void setOpacity(double opacity) {
    opacity_ = opacity;
    update();
  }

 private:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setOpacity(opacity_);
    painter.drawPixmap(0, 0, picture_);
  }

  const QPixmap picture_;
  double opacity_ = 1.0;
};

SettingsWindow::SettingsWindow(const WindowSurroundings& surroundings, VorliSettingsView& view,
                               SneakyAppsPageFactory sneakyApps)
    : PaperWindow(surroundings, Qt::Window, QStringLiteral("Vorli Settings"), CloseButton::shown),
      view_(view),
      sneakyApps_(std::move(sneakyApps)),
      tabs_(offeredTabs()) {
  addMinimiseButton();
  setSheetSize(windowSize);
  makeSidebar();
  selection_ = view_.selectedTab.subscribe([this](VorliSettingsTab tab) { showTab(tab); });
  followAppearance([this] {
    makeSidebar();
    showTab(view_.selectedTab);
  });
}

void SettingsWindow::makeSidebar() {
  delete sidebar_;
  QList<Sidebar::Tab> entries;
  for (const auto tab : tabs_) {
    const auto& texts = textsOf(tab, view_.system());
    entries.push_back({texts.symbol, qtText(texts.label), QString::fromStdString(texts.accessibilityLabel()),
                       QString::fromStdString(texts.accessibilityHint())});
  }
  sidebar_ = new Sidebar(entries, appearance(), this,
                         [this](int index) { view_.select(tabs_.at(static_cast<std::size_t>(index))); });
  sidebar_->setGeometry(QRect(sheet().topLeft(), QSize(Sidebar::sidebarWidth, windowSize.height())));
  sidebar_->show();
}

// Leaves out the tabs that have nothing to show in this build.
std::vector<VorliSettingsTab> SettingsWindow::offeredTabs() const {
  std::vector<VorliSettingsTab> tabs;
  for (const auto tab : vorliSettingsTabs) {
    if (tab == VorliSettingsTab::sneakyApps && !sneakyApps_) continue;
    if (tab == VorliSettingsTab::community && !view_.offersFeedback()) continue;
    tabs.push_back(tab);
  }
  return tabs;
}

void SettingsWindow::showTab(VorliSettingsTab tab) {
  const auto found = std::ranges::find(tabs_, tab);
  const auto shown = found == tabs_.end() ? tabs_.begin() : found;
  const bool isSeen = page_ && isVisible() && movement() && page_->tab() != *shown;
  const QPixmap earlier = isSeen ? grab(pagePlace()) : QPixmap();
  // The old page is deleted later, because the control that requested the change may be on it.
  if (page_) {
    page_->hide();
    page_->deleteLater();
  }
  page_ = new SettingsPage(view_, *shown, appearance(), sneakyApps_, this);
  page_->move(pagePlace().topLeft());
  page_->show();
  fadeFrom(earlier);
  sidebar_->select(static_cast<int>(shown - tabs_.begin()));
  keepButtonsLast();
}

QRect SettingsWindow::pagePlace() const {
  return {sheet().topLeft() + QPoint(Sidebar::sidebarWidth, 0), SettingsPage::pageSize};
}

// The window's ground is opaque, so that a fading picture over the new page is a cross-fade of both.
void SettingsWindow::fadeFrom(const QPixmap& earlier) {
  arrival_.jumpTo(1.0);
  rise_.jumpTo(1.0);
  if (earlier.isNull()) return;
  leaving_ = new LeavingPage(earlier, this);
  leaving_->setGeometry(pagePlace());
  leaving_->show();
  arrival_.jumpTo(0.0);
  rise_.jumpTo(0.0);
  arrival_.fadeTo(1.0, pageFadeSeconds);
  rise_.moveTo(1.0, Animation::timingCurve(windowEaseOut, pageFadeSeconds));
}

void SettingsWindow::moveFade() {
  page_->move(pagePlace().topLeft() + QPoint(0, qRound(pageRise * (1.0 - rise_.shown()))));
  if (!leaving_) return;
  leaving_->setOpacity(1.0 - arrival_.shown());
  if (arrival_.shown() >= 1.0) delete std::exchange(leaving_, nullptr);
}

}  // namespace vorli::ui
