#include "ui/windows/StartupAppsLayout.h"

#include <algorithm>

namespace vorli::ui {

double StartupAppRowLayout::textWidth(double buttonsWidth) {
  return StartupAppsMetrics::width - StartupAppsMetrics::textLeft - StartupAppsMetrics::columnGap -
         buttonsWidth - StartupAppsMetrics::sidePadding;
}

StartupAppRowLayout StartupAppRowLayout::of(const Texts& texts, double buttonsWidth) {
  const double width = textWidth(buttonsWidth);
  StartupAppRowLayout layout;
  layout.icon = {StartupAppsMetrics::sidePadding, StartupAppsMetrics::padding + 1.0,
                 StartupAppsMetrics::iconSide, StartupAppsMetrics::iconSide};
  layout.name = {StartupAppsMetrics::textLeft, StartupAppsMetrics::padding, width, texts.name};
  layout.description = {StartupAppsMetrics::textLeft,
                        layout.name.bottom() + StartupAppsMetrics::descriptionGap, width, texts.description};
  layout.text = layout.name.united(layout.description);
  const double metaTop = layout.description.bottom() + StartupAppsMetrics::metaGap;
  layout.meta = {StartupAppsMetrics::textLeft, metaTop,
                 StartupAppsMetrics::width - StartupAppsMetrics::textLeft - StartupAppsMetrics::sidePadding,
                 texts.meta};
  layout.height = layout.meta.bottom() + StartupAppsMetrics::padding;
  return layout;
}

double StartupAppRowLayout::panelHeight(int bodyLines) {
  return 2.0 * StartupAppsMetrics::panelPadding + StartupAppsMetrics::panelHeading +
         StartupAppsMetrics::panelBodyGap + bodyLines * StartupAppsMetrics::lineHeight +
         StartupAppsMetrics::panelButtonGap + StartupAppsMetrics::buttonHeight;
}

StartupAppsLayout::StartupAppsLayout(const StartupAppsShape& shape) {
  double y = search().bottom();
  for (const double height : shape.banners) {
    y += banners_.empty() ? StartupAppsMetrics::firstBannerGap : StartupAppsMetrics::bannerGap;
    banners_.emplace_back(StartupAppsMetrics::left, y, StartupAppsMetrics::width, height);
    y += height;
  }
  for (const auto& given : shape.sections) {
    Section section;
    y += StartupAppsMetrics::sectionGap;
    section.heading = {StartupAppsMetrics::left, y, StartupAppsMetrics::width, given.heading};
    y += given.heading + StartupAppsMetrics::headingGap;
    const double cardTop = y;
    for (const auto& row : given.rows) {
      Block block{};
      block.top = y;
      block.rowHeight = row.height * row.shown;
      block.panelTop = y + block.rowHeight;
      const double panelShown = row.panelShown * row.shown;
      block.panelHeight = row.panelHeight * panelShown;
      y = block.panelTop + block.panelHeight;
      if (row.panelHeight > 0.0) y += StartupAppsMetrics::panelGap * panelShown;
      block.bottom = y;
      section.blocks.push_back(block);
    }
    section.card = {StartupAppsMetrics::left, cardTop, StartupAppsMetrics::width, y - cardTop};
    sections_.push_back(std::move(section));
  }
  if (shape.footer > 0.0) {
    y += StartupAppsMetrics::footerGap;
    // Without sections, the footer is at the bottom, below the notice that replaces them.
    const double lowest = shape.visible - shape.toastRoom - StartupAppsMetrics::bottom - shape.footer;
    if (shape.sections.empty()) y = std::max(y, lowest);
    footer_ = {StartupAppsMetrics::left, y, StartupAppsMetrics::width, shape.footer};
    y += shape.footer;
  }
  height_ = y + StartupAppsMetrics::bottom + shape.toastRoom;
}

QRectF StartupAppsLayout::search() const {
  return {StartupAppsMetrics::left, StartupAppsMetrics::top, StartupAppsMetrics::width,
          StartupAppsMetrics::searchHeight};
}

QRectF StartupAppsLayout::row(RowPlace place) const {
  return {StartupAppsMetrics::left, at(place).top, StartupAppsMetrics::width, at(place).rowHeight};
}

QRectF StartupAppsLayout::panel(RowPlace place) const {
  const Block& block = at(place);
  if (block.panelHeight <= 0.0) return {};
  return {StartupAppsMetrics::left + StartupAppsMetrics::panelLeft, block.panelTop,
          StartupAppsMetrics::panelWidth, block.panelHeight};
}

QRectF StartupAppsLayout::block(RowPlace place) const {
  return {StartupAppsMetrics::left, at(place).top, StartupAppsMetrics::width,
          at(place).bottom - at(place).top};
}

std::vector<StartupAppsLayout::RowPlace> StartupAppsLayout::rowsBetween(double top, double bottom) const {
  std::vector<RowPlace> found;
  for (std::size_t index = 0; index < sections_.size(); ++index) {
    const Section& section = sections_[index];
    if (section.card.bottom() <= top || section.card.top() >= bottom) continue;
    const auto& blocks = section.blocks;
    auto block =
        std::ranges::partition_point(blocks, [top](const Block& each) { return each.bottom <= top; });
    for (; block != blocks.end() && block->top < bottom; ++block)
      found.push_back({index, static_cast<std::size_t>(block - blocks.begin())});
  }
  return found;
}

}  // namespace vorli::ui
