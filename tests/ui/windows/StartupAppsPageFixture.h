#pragma once

#include "tests/fakes/ApplicationIcons.h"
#include "tests/fakes/BackgroundWork.h"
#include "tests/fakes/MotionPreference.h"
#include "tests/startup/StartupAppsFixture.h"
#include "tests/ui/windows/SettleWindows.h"
#include "tests/ui/windows/ShownWidgets.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/SearchField.h"
#include "ui/kit/Toast.h"
#include "ui/windows/StartupAppRowWidget.h"
#include "ui/windows/StartupAppsList.h"
#include "ui/windows/StartupAppsPage.h"

#include <QScrollArea>
#include <QScrollBar>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorli::ui {

/// The page of the startup items over the fakes of its service, with the texts of a Linux desktop.
struct StartupAppsPageFixture : StartupAppsFixture {
  ~StartupAppsPageFixture() override {
    window.reset();
    settleWindows();
  }
  void openPage(std::vector<StartupItem> items, Appearance appearance = Appearance::light) {
    window.reset();
    window = std::make_unique<QWidget>();
    window->resize(664, 504);
    page = new StartupAppsPage(linuxView, host, appearance, window.get());
    page->resize(664, 504);
    window->show();
    settle();
    show(std::move(items));
    settleWindows();
  }
  StartupAppsList& list() { return page->list(); }
  StartupAppRowWidget& rowOf(const std::string& id) {
    auto* found = list().rowWidget(id);
    EXPECT_NE(found, nullptr) << id;
    return *found;
  }
  static GlassPillButton* button(QWidget& parent, const QString& text) {
    for (auto* each : shownWidgets<GlassPillButton>(parent))
      if (each->text() == text) return each;
    return nullptr;
  }
  QList<Toast*> toasts() const { return shownWidgets<Toast>(*page); }
  void type(const QString& text) {
    list().search().edit().setText(text);
    scheduler.runReady();
    settleWindows();
  }
  static std::vector<StartupItem> thousandRows() {
    std::vector<StartupItem> items;
    for (int i = 0; i < 1000; ++i) {
      auto item = row("com.acme." + std::to_string(i));
      item.description = "Keeps things up to date in the background, number " + std::to_string(i) + ".";
      items.push_back(std::move(item));
    }
    return items;
  }
  QScrollBar& bar() { return *page->findChild<QScrollArea*>()->verticalScrollBar(); }

  fakes::MotionPreference motion;
  fakes::ApplicationIcons icons;
  StartupAppsHost host{scheduler, calendar, motion, icons,
                       [this] { return std::make_unique<fakes::BackgroundWork>(scheduler); }};
  std::unique_ptr<QWidget> window;
  StartupAppsPage* page = nullptr;
};

}  // namespace vorli::ui
