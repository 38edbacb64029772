#include "ui/linux/DesktopAppearance.h"

#include "formats/XSettings.h"
#include "ui/kit/QtText.h"
#include "ui/linux/DBusCalls.h"

#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>
#include <QString>

namespace vorli::ui {
namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colourScheme = QStringLiteral("color-scheme");

constexpr int middleLightness = 128;

// The portal wraps the value in one or two variants, depending on its version and on the call.
QVariant unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value;
}

}  // namespace

DesktopAppearance::DesktopAppearance(QDBusConnection bus, ManagerSelections& selections)
    : bus_(std::move(bus)),
      selections_(selections),
      settingChanged_(bus_, portalPath, settingsInterface, QStringLiteral("SettingChanged"),
                      [this](const QDBusMessage& signal) {
                        const auto arguments = signal.arguments();
                        if (arguments.value(0).toString() != appearance) return;
                        if (arguments.value(1).toString() == colourScheme) portalSays(arguments.value(2));
                      }),
      themeSubscription_(selections_.subscribe([this] { update(); })) {
  dark_ = derive();
  if (bus_.isConnected()) askPortal();
}

bool DesktopAppearance::isDark() const {
  return dark_;
}

void DesktopAppearance::askPortal() {
  auto ask =
      QDBusMessage::createMethodCall(portalName, portalPath, settingsInterface, QStringLiteral("Read"));
  ask << appearance << colourScheme;
  callAsync(bus_, ask, &settingChanged_, [this](const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ReplyMessage) portalSays(reply.arguments().value(0));
  });
}

void DesktopAppearance::portalSays(const QVariant& value) {
  const auto number = unwrapped(value).toUInt();
  preference_ = number == 1 ? Preference::dark : number == 2 ? Preference::light : Preference::none;
  update();
}

void DesktopAppearance::update() {
  const bool dark = derive();
  if (dark == dark_) return;
  dark_ = dark;
  changed_.deliver();
}

bool DesktopAppearance::derive() const {
  if (preference_ != Preference::none) return preference_ == Preference::dark;
  if (gtk_.prefersDark) return true;
  const auto published = formats::xSettingsText(
      bytesOf(selections_.published(ManagerSelections::Selection::settings)), "Net/ThemeName");
  const QString theme = published ? QString::fromStdString(*published) : gtk_.theme;
  if (!theme.isEmpty()) return theme.contains(QLatin1String("dark"), Qt::CaseInsensitive);
  return QGuiApplication::palette().color(QPalette::Window).lightness() < middleLightness;
}

}  // namespace vorli::ui
