#pragma once

#include "flows/VorliSettingsView.h"
#include "ui/kit/WindowPalette.h"
#include "ui/windows/PageHeading.h"

#include <QImage>
#include <QWidget>
#include <functional>
#include <vector>

namespace vorli::ui {

class SettingsCard;

/// Creates the content of the tab of startup items, which is not a list of rows.
using SneakyAppsPageFactory = std::function<QWidget*(Appearance, QWidget* parent)>;

/// The page of one tab: title, subtitle and groups of rows that are bound to their settings both ways.
class SettingsPage final : public QWidget {
 public:
  SettingsPage(VorliSettingsView& view, VorliSettingsTab tab, Appearance appearance,
               const SneakyAppsPageFactory& sneakyApps, QWidget* parent);

  VorliSettingsTab tab() const { return tab_; }

  static constexpr QSize pageSize{664, 620};

 private:
  void paintEvent(QPaintEvent* event) override;

  void addPicture();
  void addGroup(const VorliSettingsView::Group& group);
  void addSwitch(SettingsCard& card, const VorliSettingsView::Switch& row);
  void addChoice(SettingsCard& card, const VorliSettingsView::Choice& row);
  void addRecorder(SettingsCard& card);
  void addFeedback(SettingsCard& card);
  void addHelper(SettingsCard& card);
  void addUpdates(SettingsCard& card);
  void addFoot();
  /// Puts the cards below each other.
  void arrange();
  void paintAbout(QPainter& painter);
  /// Top of the contents; lower than usual below a heading of several lines.
  int firstContentTop() const;
  int contentTop() const;

  VorliSettingsView& view_;
  const VorliSettingsTab tab_;
  const Appearance appearance_;
  const WindowPalette& palette_;
  const PageHeading heading_;
  std::vector<SettingsCard*> cards_;
  QImage mark_;
  std::vector<Subscription> subscriptions_;
};

}  // namespace vorli::ui
