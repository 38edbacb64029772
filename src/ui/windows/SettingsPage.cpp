#include "ui/windows/SettingsPage.h"

#include "ui/kit/AppMark.h"
#include "ui/kit/ChoiceRow.h"
#include "ui/kit/GlassPillButton.h"
#include "ui/kit/GlassToggle.h"
#include "ui/kit/LetterpressText.h"
#include "ui/kit/LinkRow.h"
#include "ui/kit/Paragraph.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SettingsCard.h"
#include "ui/kit/SpokenText.h"
#include "ui/windows/HelperStatusRow.h"
#include "ui/windows/HotkeyRecorder.h"
#include "ui/windows/MakerLink.h"
#include "ui/windows/PagePicture.h"

#include <QPainter>
#include <cmath>
#include <cstddef>
#include <string>

namespace vorli::ui {
namespace {

constexpr int pageLeft = 32, pageContentWidth = 600;
constexpr int titleTop = 52;
constexpr int usualContentTop = 136, groupGap = 20;
constexpr int sneakyAppsTop = 116, windowLineWidth = 1;
constexpr int footGap = 24;
constexpr int pageMarkSide = 64, pageMarkMargin = 6, pageNameLeft = pageLeft + pageMarkSide + 16;

RowFace faceOf(std::string_view symbol, std::string_view title, std::string_view text,
               Tone tone = Tone::plain) {
  return {symbol, qtText(title), qtText(text), tone};
}

}  // namespace

SettingsPage::SettingsPage(VorliSettingsView& view, VorliSettingsTab tab, Appearance appearance,
                           const SneakyAppsPageFactory& sneakyApps, QWidget* parent)
    : QWidget(parent),
      view_(view),
      tab_(tab),
      appearance_(appearance),
      palette_(WindowPalette::of(appearance)),
      heading_(qtText(textsOf(tab, view.system()).label), qtText(textsOf(tab, view.system()).subtitle),
               pageContentWidth) {
  resize(pageSize);
  const auto& texts = textsOf(tab, view.system());
  setAccessibleName(qtText(texts.label));
  setAccessibleDescription(qtText(texts.subtitle));
  if (tab == VorliSettingsTab::sneakyApps && sneakyApps) {
    auto* list = sneakyApps(appearance, this);
    const int top = sneakyAppsTop + firstContentTop() - usualContentTop;
    list->setGeometry(0, top, width(), height() - top - windowLineWidth);
    return;
  }
  addPicture();
  for (const auto& group : view_.groups(tab)) addGroup(group);
  if (tab == VorliSettingsTab::about) addFoot();
  arrange();
  subscriptions_.push_back(view_.subscribe([this] { arrange(); }));
}

void SettingsPage::addPicture() {
  using Scene = PagePicture::Scene;
  const auto follow = [this](PagePicture* picture, const Observable<bool>& setting,
                             void (PagePicture::*show)(bool)) {
    subscriptions_.push_back(setting.subscribe([picture, show](bool value) { (picture->*show)(value); }));
  };
  const auto add = [this](Scene scene) {
    auto* picture = new PagePicture(scene, appearance_, this);
    picture->setGeometry(pageLeft, firstContentTop(), pageContentWidth, PagePicture::pictureHeight);
    return picture;
  };
  if (tab_ == VorliSettingsTab::notifications) {
    auto* picture = add(Scene::notice);
    follow(picture, view_.gentleNudges(), &PagePicture::setLit);
    follow(picture, view_.quietDuringFocus(), &PagePicture::setQuiet);
  } else if (tab_ == VorliSettingsTab::screen) {
    follow(add(Scene::glow), view_.edgeGlow(), &PagePicture::setLit);
  } else if (tab_ == VorliSettingsTab::community) {
    add(Scene::talk);
  }
}

void SettingsPage::addGroup(const VorliSettingsView::Group& group) {
  auto* card = new SettingsCard(qtText(group.title), appearance_, this);
  cards_.push_back(card);
  for (const auto& row : group.switches) addSwitch(*card, row);
  for (const auto& row : group.choices) addChoice(*card, row);
  if (group.title == VorliSettingsView::shortcutGroup) addRecorder(*card);
  if (group.title == VorliSettingsView::feedbackGroup) addFeedback(*card);
  if (group.title == VorliSettingsView::helperGroup) addHelper(*card);
  if (group.title == VorliSettingsView::updatesGroup) addUpdates(*card);
}

void SettingsPage::addSwitch(SettingsCard& card, const VorliSettingsView::Switch& row) {
  auto* toggle = new GlassToggle(faceOf(row.symbol, row.title, row.subtitle), appearance_, &card);
  toggle->setEnabled(row.isAvailable);
  card.addRow(toggle);
  auto& setting = row.setting;
  subscriptions_.push_back(setting().subscribe([toggle](bool on) { toggle->setChecked(on); }));
  connect(toggle, &QAbstractButton::clicked, this, [&setting](bool on) { setting.set(on); });
}

void SettingsPage::addChoice(SettingsCard& card, const VorliSettingsView::Choice& row) {
  QStringList words;
  for (const auto& option : row.options) words.push_back(qtText(option.word));
  auto* made = new ChoiceRow(faceOf(row.symbol, row.title, row.subtitle), words, appearance_, &card);
  card.addRow(made);
  subscriptions_.push_back(row.setting().subscribe(
      [made, row](const std::string&) { made->choice().choose(static_cast<int>(row.chosen())); }));
  made->choice().setHandler([row](int index) {
    row.setting.set(std::string(row.options.at(static_cast<std::size_t>(index)).stored));
  });
}

void SettingsPage::addRecorder(SettingsCard& card) {
  auto* recorder = new HotkeyRecorder(view_, appearance_, &card);
  card.addRow(recorder);
  subscriptions_.push_back(view_.subscribe([recorder] { recorder->refresh(); }));
}

void SettingsPage::addFeedback(SettingsCard& card) {
  auto* row = new LinkRow(LinkRow::Kind::externalLink,
                          faceOf(VorliSettingsView::feedbackSymbol, VorliSettingsView::feedbackTitle,
                                 VorliSettingsView::feedbackSubtitle, Tone::lit),
                          appearance_, &card);
  row->say(qtText(VorliSettingsView::feedbackTitle), qtText(VorliSettingsView::linkHint));
  connect(row, &QAbstractButton::clicked, this, [this] { view_.giveFeedback(); });
  card.addRow(row);
}

void SettingsPage::addHelper(SettingsCard& card) {
  auto* row = new HelperStatusRow(view_, appearance_, &card);
  card.addRow(row);
  subscriptions_.push_back(view_.subscribe([row] { row->refresh(); }));
}

void SettingsPage::addUpdates(SettingsCard& card) {
  auto* updates = new LinkRow(LinkRow::Kind::action,
                              faceOf(VorliSettingsView::updatesSymbol, VorliSettingsView::updatesTitle,
                                     VorliSettingsView::updatesSubtitle),
                              appearance_, &card);
  connect(updates, &QAbstractButton::clicked, this, [this] { view_.checkForUpdates(); });
  card.addRow(updates);
  const auto showOrHide = [this, updates] { updates->setVisible(view_.offersUpdates()); };
  showOrHide();
  subscriptions_.push_back(view_.subscribe(showOrHide));

  auto* log = new LinkRow(
      LinkRow::Kind::action,
      faceOf(VorliSettingsView::logSymbol, VorliSettingsView::logTitle, VorliSettingsView::logSubtitle),
      appearance_, &card);
  connect(log, &QAbstractButton::clicked, this, [this] { view_.revealLog(); });
  card.addRow(log);
}

void SettingsPage::addFoot() {
  auto* name = new LetterpressText(QStringLiteral("Vorli"), 30.0, appearance_, this);
  name->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  name->setGeometry(pageNameLeft, firstContentTop() + 4, 300, 36);
  auto* version = new SpokenText(this);
  version->setText(QString::fromStdString(view_.version()));
  version->setGeometry(pageNameLeft, firstContentTop() + 42, 400, 18);
  constexpr int ring = GlassPillButton::ringMargin;
  if (view_.offersMakerSite()) {
    auto* link =
        new MakerLink(qtText(VorliSettingsView::madeBy), qtText(VorliSettingsView::maker), appearance_, this);
    link->say(qtText(VorliSettingsView::madeBy) + u' ' + qtText(VorliSettingsView::maker),
              qtText(VorliSettingsView::linkHint));
    link->resize(link->sizeHint());
    link->move(pageLeft + 4 - MakerLink::ringMargin, height() - footGap - 15 - link->height() / 2);
    connect(link, &QAbstractButton::clicked, this, [this] { view_.openMakerSite(); });
  }
  auto* quit = new GlassPillButton(qtText(VorliSettingsView::quitTitle), GlassPillButton::Role::plain,
                                   appearance_, this);
  quit->setSymbol(VorliSettingsView::quitSymbol);
  quit->resize(quit->sizeHint());
  quit->move(pageLeft + pageContentWidth + ring - quit->width(), height() - footGap + ring - quit->height());
  connect(quit, &QAbstractButton::clicked, this, [this] { view_.quit(); });
}

int SettingsPage::firstContentTop() const {
  return usualContentTop + static_cast<int>(std::ceil(heading_.addedHeight()));
}

int SettingsPage::contentTop() const {
  switch (tab_) {
    case VorliSettingsTab::notifications:
    case VorliSettingsTab::screen:
    case VorliSettingsTab::community:
      return firstContentTop() + PagePicture::pictureHeight + groupGap;
    case VorliSettingsTab::about:
      return firstContentTop() + pageMarkSide + groupGap;
    case VorliSettingsTab::general:
    case VorliSettingsTab::sneakyApps:
      break;
  }
  return firstContentTop();
}

void SettingsPage::arrange() {
  int y = contentTop();
  for (auto* card : cards_) {
    card->setGeometry(pageLeft, y, pageContentWidth, card->heightForWidth(pageContentWidth));
    card->arrange();
    y += card->height() + groupGap;
  }
}

void SettingsPage::paintAbout(QPainter& painter) {
  const double ratio = devicePixelRatioF();
  if (mark_.isNull() || mark_.devicePixelRatio() != ratio) {
    mark_ = appMarkImage(qRound(pageMarkSide * ratio), qRound(pageMarkMargin * ratio), palette_);
    mark_.setDevicePixelRatio(ratio);
  }
  painter.drawImage(QPointF(pageLeft - pageMarkMargin, firstContentTop() - pageMarkMargin), mark_);
  paintLine(painter, QString::fromStdString(view_.version()), TextRole::rowText(),
            QRectF(pageNameLeft, firstContentTop() + 42.0, 400.0, TextRole::rowText().leading),
            palette_.meta);
}

void SettingsPage::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  heading_.paint(painter, {pageLeft, titleTop}, palette_);
  if (tab_ == VorliSettingsTab::about) paintAbout(painter);
}

}  // namespace vorli::ui
