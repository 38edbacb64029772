#include "ui/windows/StartupAppsList.h"

#include "ui/kit/BulkBanner.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/MovingValue.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/Plates.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SearchField.h"
#include "ui/kit/SpokenRole.h"
#include "ui/kit/SpokenText.h"
#include "ui/kit/Symbol.h"
#include "ui/windows/StartupAppRowWidget.h"

#include <QAccessible>
#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace vorli::ui {
namespace {

using Place = StartupAppsLayout::RowPlace;

constexpr double panelSeconds = 0.22;
constexpr double hintSymbol = 11.0, hintStroke = 3.0, hintGap = 4.0;
constexpr double headingInset = 4.0, footerInset = 40.0;

Paragraph footerText(const QString& text) {
  return {text, TextRole::footer(), StartupAppsMetrics::width - 2.0 * footerInset, Paragraph::Wrap::balanced};
}

double sortHintWidth() {
  return hintSymbol + hintGap + textWidth(qtText(StartupAppsSection::sortHint), TextRole::sortHint());
}

// Returns the heading, broken into lines beside the sort hint if the section shows it.
Paragraph headingOf(const StartupAppsSection& section) {
  const double hint = section.showsSortHint ? sortHintWidth() + headingInset : 0.0;
  const double width = StartupAppsMetrics::width - 2.0 * headingInset - hint;
  return {qtText(section.heading), TextRole::listHeading(), width};
}

RowFace faceOf(const vorli::BulkBanner& banner) {
  const bool isLeftover = banner.kind == vorli::BulkBanner::Kind::leftover;
  return {banner.symbol, qtText(banner.title), qtText(banner.subtitle), isLeftover ? Tone::red : Tone::lit};
}

BulkBanner::Kind kindOf(const vorli::BulkBanner& banner) {
  const bool isDestructive = banner.actions.front().role == vorli::BulkBanner::Role::destructive;
  return isDestructive ? BulkBanner::Kind::destructive : BulkBanner::Kind::plain;
}

double panelHeightOf(const std::string& heading, const std::string& body) {
  const double width = StartupAppsMetrics::panelTextWidth;
  return std::ceil(2.0 * StartupAppsMetrics::panelPadding +
                   Paragraph(qtText(heading), TextRole::panelHeading(), width).height() +
                   StartupAppsMetrics::panelBodyGap +
                   Paragraph(qtText(body), TextRole::rowText(), width).height() +
                   StartupAppsMetrics::panelButtonGap + StartupAppsMetrics::buttonHeight);
}

}  // namespace

StartupAppsList::StartupAppsList(StartupAppsView& view, const StartupAppsHost& host, Appearance appearance,
                                 QScrollArea& area)
    : view_(view),
      scheduler_(host.scheduler),
      calendar_(host.calendar),
      motion_(host.motion),
      appearance_(appearance),
      palette_(WindowPalette::of(appearance)),
      pictures_(host.icons, host.makeBackgroundWork()),
      area_(area),
      search_(new SearchField(qtText(vorli::SearchField::placeholder),
                              qtText(vorli::SearchField::accessibilityHint), appearance, this)),
      footer_(new SpokenText(this)) {
  installSpokenRole<StartupAppsList, QAccessible::List>();
  connect(&search_->edit(), &QLineEdit::textChanged, this,
          [this](const QString& text) { view_.setSearchQuery(text.toStdString()); });
  pictureChanges_ = pictures_.subscribe([this](const std::string& application) {
    for (const auto& [id, row] : rows_)
      if (row->applicationPath() == application) row->update();
  });
}

StartupAppsList::~StartupAppsList() {
  scheduler_.cancel(frameTimer_);
}

StartupAppRowWidget* StartupAppsList::rowWidget(const std::string& itemID) const {
  const auto row = rows_.find(itemID);
  return row == rows_.end() ? nullptr : row->second;
}

void StartupAppsList::refresh(const std::optional<Animation>& animation) {
  const auto field = view_.searchField();
  if (search_->edit().text().toStdString() != field.query) {
    const QSignalBlocker quiet(&search_->edit());
    search_->edit().setText(qtText(field.query));
  }
  search_->setCount(qtText(field.countText()));
  auto sections = sectionsOfView();
  std::set<std::string> known;
  for (const auto& section : sections_)
    for (const auto& entry : section.entries) known.insert(entry.item.id);
  for (auto& section : sections)
    for (auto& entry : section.entries) entry.isNew = !known.contains(entry.item.id);
  auto departure = animation;
  if (departure && motion_.isReduced()) departure = Animation::timingCurve(windowEaseOut, reducedFadeSeconds);
  keepLeaving(sections, departure);
  sections_ = std::move(sections);
  std::erase_if(panels_, [this](const auto& each) { return isGone(each.first); });
  updateBanners();
  updateTexts();
  arrange();
  if ((isAnyLeaving() || isAnyPanelMoving()) && frameTimer_ == 0) frame();
}

std::vector<StartupAppsList::Section> StartupAppsList::sectionsOfView() {
  std::vector<Section> sections;
  for (auto& given : view_.sections()) {
    Section section;
    for (auto& item : std::exchange(given.items, {})) {
      const double height = StartupAppRowWidget::heightOf(view_.row(item), item, appearance_);
      section.entries.push_back({.item = std::move(item), .height = height, .leaving = nullptr});
    }
    section.section = std::move(given);
    sections.push_back(std::move(section));
  }
  return sections;
}

// Keeps removed rows at their places until they have faded out. Without an animation, only rows that are
// already fading stay.
void StartupAppsList::keepLeaving(std::vector<Section>& sections, const std::optional<Animation>& animation) {
  std::set<std::string> present;
  for (const auto& section : sections)
    for (const auto& entry : section.entries) present.insert(entry.item.id);
  const auto stays = [&](const Entry& entry) {
    return !present.contains(entry.item.id) && (entry.leaving || animation);
  };
  const auto groupOf = [](const Section& each) { return each.section.group; };
  for (auto& earlier : sections_) {
    if (std::ranges::none_of(earlier.entries, stays)) continue;
    auto section = std::ranges::find(sections, groupOf(earlier), groupOf);
    if (section == sections.end()) {
      const auto next = std::ranges::upper_bound(sections, groupOf(earlier), {}, groupOf);
      section = sections.insert(next, Section{earlier.section, {}});
    }
    for (std::size_t i = 0; i < earlier.entries.size(); ++i) {
      Entry& entry = earlier.entries[i];
      if (!stays(entry)) continue;
      if (!entry.leaving) {
        entry.leaving = std::make_shared<Animated<double>>(scheduler_, 1.0);
        withAnimation(*animation, [&entry] { *entry.leaving = 0.0; });
      }
      const auto place = std::min(i, section->entries.size());
      section->entries.insert(section->entries.begin() + static_cast<std::ptrdiff_t>(place), entry);
    }
  }
}

bool StartupAppsList::isAnyLeaving() const {
  return std::ranges::any_of(sections_, [](const Section& section) {
    return std::ranges::any_of(section.entries, [](const Entry& entry) { return entry.leaving != nullptr; });
  });
}

void StartupAppsList::frame() {
  frameTimer_ = 0;
  const double now = scheduler_.now();
  for (auto& section : sections_) {
    std::erase_if(section.entries,
                  [now](const Entry& entry) { return entry.leaving && !entry.leaving->isMoving(now); });
  }
  const auto isEmpty = [](const Section& section) { return section.entries.empty(); };
  if (std::erase_if(sections_, isEmpty) > 0) updateTexts();
  arrange();
  if (isAnyLeaving() || isAnyPanelMoving())
    frameTimer_ = scheduler_.after(windowFrameSeconds, [this] { frame(); });
}

void StartupAppsList::updateBanners() {
  const auto wanted = view_.banners();
  std::vector<std::string> titles;
  for (const auto& banner : wanted) titles.push_back(banner.title);
  if (titles == bannerTitles_) return;
  bannerTitles_ = titles;
  for (auto* banner : std::exchange(banners_, {})) banner->deleteLater();
  for (const auto& banner : wanted) {
    const auto& action = banner.actions.front();
    auto* made = new BulkBanner(kindOf(banner), faceOf(banner), qtText(action.label), appearance_, this,
                                action.action);
    made->button().say(qtText(action.accessibilityLabel));
    made->show();
    banners_.push_back(made);
  }
}

void StartupAppsList::updateTexts() {
  for (auto* heading : std::exchange(headings_, {})) heading->deleteLater();
  for (const auto& section : sections_) {
    auto* heading = new SpokenText(this);
    heading->setText(qtText(section.section.heading));
    heading->show();
    headings_.push_back(heading);
  }
  const auto footer = view_.footer();
  footer_->setText(footer ? qtText(*footer) : QString());
  footer_->setVisible(footer.has_value());
}

double StartupAppsList::panelHeight(const Section& section, const Entry& entry) {
  if (const auto question = view_.pendingConfirmation(entry.item))
    return panelHeightOf(question->title, std::string(question->message));
  if (const auto callout = view_.callout(section.section, entry.item))
    return panelHeightOf(std::string(callout->heading), callout->body);
  return 0.0;
}

// Animates the height of a panel; only the panel of a newly listed item is open at once.
StartupAppsShape::Row StartupAppsList::shapeOf(const Section& section, Entry& entry) {
  const bool shrinks = entry.leaving && !motion_.isReduced();  // else it only fades
  StartupAppsShape::Row row{.height = entry.height, .shown = shrinks ? entry.leaving->shown() : 1.0};
  const double wanted = panelHeight(section, entry);
  const bool isNew = std::exchange(entry.isNew, false);
  auto found = panels_.find(entry.item.id);
  if (found == panels_.end()) {
    if (wanted <= 0.0) return row;
    const double shown = isNew || motion_.isReduced() ? 1.0 : 0.0;
    found = panels_.emplace(entry.item.id, PanelMotion{wanted, Animated<double>(scheduler_, shown)}).first;
  }
  auto& panel = found->second;
  if (wanted > 0.0) panel.height = wanted;
  const double target = wanted > 0.0 ? 1.0 : 0.0;
  if (panel.shown.model() != target) {
    const double seconds = motion_.isReduced() ? 0.0 : panelSeconds;
    withAnimation(Animation::timingCurve(windowEaseOut, seconds), [&panel, target] { panel.shown = target; });
  }
  row.panelHeight = panel.height;
  row.panelShown = panel.shown.shown();
  if (target == 0.0 && !panel.shown.isMoving(scheduler_.now())) {
    panels_.erase(found);
    row.panelHeight = 0.0;
  }
  return row;
}

double StartupAppsList::panelShown(const std::string& itemID) const {
  const auto panel = panels_.find(itemID);
  return panel == panels_.end() ? 0.0 : panel->second.shown.shown();
}

bool StartupAppsList::isAnyPanelMoving() const {
  const double now = scheduler_.now();
  return std::ranges::any_of(panels_, [now](const auto& each) { return each.second.shown.isMoving(now); });
}

void StartupAppsList::arrange() {
  StartupAppsShape shape;
  for (const auto* banner : banners_)
    shape.banners.push_back(banner->heightForWidth(static_cast<int>(StartupAppsMetrics::width)));
  for (auto& section : sections_) {
    auto& shown = shape.sections.emplace_back();
    shown.heading = headingOf(section.section).height();
    for (auto& entry : section.entries) shown.rows.push_back(shapeOf(section, entry));
  }
  if (!footer_->text().isEmpty()) shape.footer = footerText(footer_->text()).height();
  shape.toastRoom = toastRoom_;
  shape.visible = area_.viewport()->height();
  layout_ = StartupAppsLayout(shape);

  const int ring = SearchField::ringMargin;
  search_->setGeometry(layout_.search().toRect().adjusted(-ring, -ring, ring, ring));
  for (std::size_t i = 0; i < banners_.size(); ++i) banners_[i]->setGeometry(layout_.banner(i).toRect());
  for (std::size_t i = 0; i < headings_.size(); ++i) headings_[i]->setGeometry(layout_.heading(i).toRect());
  footer_->setGeometry(layout_.footer().toRect());
  const int height = std::max(static_cast<int>(std::ceil(layout_.height())), area_.viewport()->height());
  resize(area_.viewport()->width(), height);
  updateRows(Existing::refresh);
  update();
}

void StartupAppsList::setToastRoom(double room) {
  if (std::exchange(toastRoom_, room) != room) arrange();
}

void StartupAppsList::followScrolling() {
  updateRows(Existing::keep);
}

// Keeps a screenful of rows ready on both sides, so that the focus finds the
// next row by Tab.
void StartupAppsList::updateRows(Existing existing) {
  const double top = -y(), screen = area_.viewport()->height();
  const auto places = layout_.rowsBetween(top - screen, top + 2.0 * screen);
  std::map<std::string, StartupAppRowWidget*> kept;
  const Date now = calendar_.now();
  for (const Place place : places) {
    const Section& section = sections_[place.section];
    const Entry& entry = section.entries[place.row];
    auto known = rows_.extract(entry.item.id);
    auto* row = known ? known.mapped() : new StartupAppRowWidget(view_, pictures_, appearance_, this);
    if (!known || existing == Existing::refresh) {
      row->show(section.section, entry.item, now,
                {.isFirst = place.row == 0, .isLast = place.row + 1 == section.entries.size()});
    }
    const QRect area = layout_.block(place).toRect();
    if (row->geometry() != area) row->setGeometry(area);
    row->setPresence(entry.leaving ? entry.leaving->shown() : 1.0);
    row->setPanelShown(panelShown(entry.item.id));
    kept[entry.item.id] = row;
  }
  for (auto& [id, row] : rows_) {
    // A row with the focus keeps it while it is out of sight.
    if (row->isAncestorOf(QApplication::focusWidget()) && !isGone(id)) {
      kept[id] = row;
    } else {
      row->deleteLater();
      row->hide();
    }
  }
  rows_ = std::move(kept);
  updateTabOrder();
}

bool StartupAppsList::isGone(const std::string& itemID) const {
  return std::ranges::none_of(sections_, [&itemID](const Section& section) {
    return std::ranges::find(section.entries, itemID, [](const Entry& entry) { return entry.item.id; }) !=
           section.entries.end();
  });
}

void StartupAppsList::updateTabOrder() {
  QWidget* last = &search_->edit();
  const auto follow = [&last](QWidget* next) {
    setTabOrder(last, next);
    last = next;
  };
  for (auto* banner : banners_) follow(&banner->button());
  for (const auto& section : sections_) {
    for (const auto& entry : section.entries) {
      const auto row = rows_.find(entry.item.id);
      if (row == rows_.end()) continue;
      for (auto* control : row->second->controls()) follow(control);
    }
  }
}

void StartupAppsList::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF dirty(event->rect());
  for (std::size_t i = 0; i < layout_.sectionCount(); ++i) {
    if (layout_.card(i).adjusted(-2, -2, 2, 4).intersects(dirty))
      paintCard(painter, layout_.card(i), palette_);
    if (layout_.heading(i).intersects(dirty)) paintHeading(painter, i);
  }
  if (!footer_->text().isEmpty() && layout_.footer().intersects(dirty)) {
    footerText(footer_->text())
        .paint(painter, layout_.footer().adjusted(footerInset, 0.0, -footerInset, 0.0), palette_.meta,
               Qt::AlignHCenter);
  }
}

void StartupAppsList::paintHeading(QPainter& painter, std::size_t index) const {
  const auto& section = sections_[index].section;
  const QRectF place = layout_.heading(index).adjusted(headingInset, 0.0, -headingInset, 0.0);
  headingOf(section).paint(painter, place, palette_.ink2);
  if (!section.showsSortHint) return;
  paintLine(painter, qtText(StartupAppsSection::sortHint), TextRole::sortHint(), place, palette_.meta,
            Qt::AlignRight);
  paintSymbol(
      painter, StartupAppsSection::sortHintSymbol,
      {place.right() - sortHintWidth(), place.center().y() - hintSymbol / 2.0, hintSymbol, hintSymbol},
      palette_.meta, hintStroke);
}

}  // namespace vorli::ui
