#pragma once

#include "base/NotificationCenter.h"
#include "base/Published.h"
#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "base/TaskScope.h"
#include "diagnostics/Diagnostics.h"
#include "flows/ProductAddresses.h"
#include "flows/SettingsTexts.h"
#include "flows/UpdaterManager.h"
#include "flows/VorliSettingsTab.h"
#include "helper/HelperManager.h"
#include "nudges/GlobalHotkeyManager.h"
#include "nudges/HotkeyRow.h"
#include "ports/ApplicationBundle.h"
#include "ports/ApplicationHost.h"
#include "ports/KeyMonitor.h"
#include "ports/LinkOpener.h"
#include "ports/MotionPreference.h"
#include "ports/Workspace.h"
#include "settings/AppSettings.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli {

/// Dependencies of the settings.
struct SettingsServices {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  AppSettings& settings;
  HelperManager& helperManager;
  UpdaterManager& updaterManager;
  GlobalHotkeyManager& hotkeys;
  Diagnostics& diagnostics;
  ports::KeyMonitor& keys;
  ports::LinkOpener& links;
  ports::ApplicationHost& application;
  const ports::ApplicationBundle& bundle;
  const ports::MotionPreference& motion;
  ports::Workspace& workspace;
  ProductAddresses addresses;
};

/// Content of the settings window. Lives for the whole run, so that the window opens on the tab that was
/// shown last. Main thread.
class VorliSettingsView {
 public:
  explicit VorliSettingsView(const SettingsServices& services, HostSystem system = hostSystem);

  Published<VorliSettingsTab, VorliSettingsView> selectedTab{VorliSettingsTab::general};
  void select(VorliSettingsTab tab) { selectedTab = tab; }

  /// A switch that is bound to a setting.
  struct Switch {
    std::string_view title;
    std::string_view subtitle;
    std::string_view symbol;
    Setting<bool>& setting;
    bool isAvailable = true;
  };
  /// A choice between a few words that is bound to a setting.
  struct Choice {
    struct Option {
      std::string_view word;
      std::string_view stored;
    };
    std::string_view title;
    std::string_view subtitle;
    std::string_view symbol;
    std::vector<Option> options;  // the first one is chosen when none of them is stored
    Setting<std::string>& setting;

    std::size_t chosen() const;
  };
  /// A titled group of rows. The recorder of the hot key, the feedback link and the rows of About are not
  /// switches; their groups come without any.
  struct Group {
    std::string_view title;
    std::vector<Switch> switches;
    std::vector<Choice> choices{};
  };
  std::vector<Group> groups(VorliSettingsTab tab) const;

  // Settings that the pictures of the pages reflect.
  const Observable<bool>& gentleNudges() const { return services_.settings.gentleNudges(); }
  const Observable<bool>& quietDuringFocus() const { return services_.settings.quietDuringFocus(); }
  const Observable<bool>& edgeGlow() const { return services_.settings.edgeGlow(); }

  static constexpr std::string_view shortcutGroup = "Shortcut";
  static constexpr std::string_view hotkeyTitle = "Global hotkey";
  static constexpr std::string_view hotkeySymbol = "keyboard";
  HotkeyRow& hotkeyRow() { return hotkeyRow_; }
  /// Text that says what the key does, or why it does not work.
  std::string_view hotkeySubtitle() const;
  bool isHotkeyRefused() const;
  const Observable<std::string>& hotkeyCombo() const { return services_.settings.globalHotkeyCombo(); }

  static constexpr std::string_view feedbackGroup = "Talk to us";
  static constexpr std::string_view feedbackTitle = "Give feedback";
  static constexpr std::string_view feedbackSubtitle = "Quirks, ideas, wishes, all welcome.";
  static constexpr std::string_view feedbackSymbol = "bubble.left";
  static constexpr std::string_view linkHint = "Opens in your browser";
  bool offersFeedback() const { return ProductAddresses::isSet(services_.addresses.feedback); }
  void giveFeedback() { services_.links.openURL(services_.addresses.feedback); }

  std::string version() const;

  /// The row "Background helper".
  struct HelperRow {
    enum class Tone { plain, lit, amber, red };
    enum class Button { none, reinstall, reinstalling };

    std::string text;
    std::string_view symbol;  // empty: a spinner
    Tone tone = Tone::plain;
    Button button = Button::none;

    bool operator==(const HelperRow&) const = default;
  };
  static constexpr std::string_view helperGroup = "Helper";
  static constexpr std::string_view helperTitle = "Background helper";
  static constexpr std::string_view reinstallTitle = "Reinstall";
  static constexpr std::string_view reinstallingTitle = "Reinstalling…";
  static constexpr std::string_view reinstallSymbol = "wrench.and.screwdriver";
  HelperRow helperRow() const;
  /// Interval between two steps of the row's spinner; empty when nothing turns.
  std::optional<double> spinnerSeconds() const;
  void reinstallHelper();

  static constexpr std::string_view updatesGroup = "Updates";
  static constexpr std::string_view updatesTitle = "Check for updates";
  static constexpr std::string_view updatesSubtitle = "See if a new version is available.";
  static constexpr std::string_view updatesSymbol = "arrow.triangle.2.circlepath";
  bool offersUpdates() const { return services_.updaterManager.isConfigured; }
  void checkForUpdates() { services_.updaterManager.checkForUpdates(); }

  static constexpr std::string_view logTitle = "Diagnostics log";
  static constexpr std::string_view logSubtitle = "For support requests.";
  static constexpr std::string_view logSymbol = "doc.text.magnifyingglass";
  void revealLog() { services_.diagnostics.revealLogInFinder(); }

  static constexpr std::string_view madeBy = "Made by";
  static constexpr std::string_view maker = "Kelvaran";
  bool offersMakerSite() const { return ProductAddresses::isSet(services_.addresses.makerSite); }
  void openMakerSite() { services_.links.openURL(services_.addresses.makerSite); }

  static constexpr std::string_view quitTitle = "Quit Vorli";
  static constexpr std::string_view quitSymbol = "power";
  void quit() { services_.application.terminate(); }

  HostSystem system() const { return system_; }
  Scheduler& scheduler() const { return services_.scheduler; }
  bool isMotionReduced() const { return services_.motion.isReduced(); }

  /// Calls `handler` when the row of the helper, of the updates or of the hot key may have changed.
  Subscription subscribe(std::function<void()> handler) { return changed_.add(std::move(handler)); }

 private:
  using HotkeyState = GlobalHotkeyManager::State;
  using Case = InstallStatus::Case;

  Group polishGroup() const;
  std::vector<Group> screenGroups() const;
  Task<> reinstall();
  std::string helperText() const;

  const SettingsServices services_;
  const HostSystem system_;
  const SettingsTexts& texts_;
  HotkeyRow hotkeyRow_;
  bool reinstalling_ = false;
  SubscriberList<> changed_;
  std::vector<Subscription> subscriptions_;
  TaskScope tasks_;
};

}  // namespace vorli
