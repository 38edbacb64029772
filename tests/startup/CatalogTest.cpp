#include "base/UnicodeText.h"
#include "startup/Catalog.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace vorli {
namespace {

constexpr auto onMac = HostSystem::macOS;
constexpr auto onLinux = HostSystem::linuxDesktop;

struct CatalogRow {
  const char* prefix;
  const char* name;
  const char* description;
};

// Keys in table order; a star marks the ones that ask first.
constexpr std::array<std::string_view, 64> keys{"com.spotify.client",
                                                "com.apple.Music",
                                                "com.microsoft.OneDrive*",
                                                "com.google.drivefs*",
                                                "com.getdropbox.dropbox*",
                                                "com.dropbox*",
                                                "com.apple.bird*",
                                                "com.box.desktop*",
                                                "com.google.Keystone",
                                                "com.google.keystone",
                                                "org.mozilla.updater",
                                                "com.microsoft.EdgeUpdater",
                                                "com.brave.Updater",
                                                "com.microsoft.autoupdate",
                                                "com.microsoft.teams",
                                                "com.microsoft.office",
                                                "com.hnc.Discord",
                                                "com.tinyspeck.slackmacgap",
                                                "net.whatsapp.WhatsApp",
                                                "com.tdesktop.Telegram",
                                                "com.apple.iChat",
                                                "com.adobe.acc",
                                                "com.adobe.ccxprocess",
                                                "com.adobe.AdobeCreativeCloud",
                                                "com.adobe",
                                                "us.zoom.xos",
                                                "com.loom.desktop",
                                                "com.docker",
                                                "com.jetbrains.toolbox",
                                                "com.jetbrains",
                                                "com.github.GitHubClient",
                                                "com.postmanlabs.mac",
                                                "com.sublimetext",
                                                "com.microsoft.VSCode",
                                                "notion.id",
                                                "com.notion.calendar",
                                                "com.notion",
                                                "net.shinyfrog.bear",
                                                "com.todesktop.230313mzl4w4u92",
                                                "com.1password.1password*",
                                                "com.agilebits.onepassword*",
                                                "com.lastpass.LastPass*",
                                                "com.bitwarden.desktop*",
                                                "com.knollsoft.Rectangle",
                                                "com.if.Amphetamine",
                                                "com.raycast.macos",
                                                "com.runningwithcrayons.Alfred",
                                                "com.apple.ScriptEditor2",
                                                "com.figma.Desktop",
                                                "com.bohemiancoding.sketch3",
                                                "com.teamviewer",
                                                "com.anydesk.AnyDesk",
                                                "com.logitech.optionsplus",
                                                "com.elgato",
                                                "com.tailscale.ipn*",
                                                "com.nordvpn.NordVPN*",
                                                "com.backblaze.bzbmenu*",
                                                "com.carbon-copy-cloner*",
                                                "com.openai.chat",
                                                "com.anthropic.claudefordesktop",
                                                "com.lwouis.alt-tab-macos",
                                                "com.rogueamoeba.arkaudiod",
                                                "com.macpaw.CleanMyMac",
                                                "com.ledger.live"};

TEST(CatalogTest, hasItsRowsInTheirOrder) {
  EXPECT_EQ(catalogOf(onMac).size(), 64u);
  EXPECT_GE(catalogOf(onLinux).size(), 64u + 80u);
  for (const auto system : {onMac, onLinux}) {
    const auto catalog = catalogOf(system).last(64);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const bool asks = keys[i].ends_with('*');
      EXPECT_EQ(catalog[i].prefix, keys[i].substr(0, keys[i].size() - asks));
      EXPECT_EQ(catalog[i].requiresConfirmation, asks) << keys[i];
    }
  }
}

TEST(CatalogTest, knowsWhatLinuxUsersMeet) {
  const std::pair<const char*, const char*> rows[] = {
      {"nextcloud.service", "Nextcloud"},
      {"org.keepassxc.KeePassXC", "KeePassXC"},
      {"tailscaled.service", "Tailscale"},
      {"wg-quick@home.service", "WireGuard"},
      {"ssh.service", "Remote Login"},
      {"sshd.service", "Remote Login"},
      {"cups-browsed.service", "Printing"},
      {"docker.service", "Docker"},
      {"postgresql@15-main.service", "PostgreSQL"},
      {"com.valvesoftware.Steam", "Steam"},
      {"slack_slack", "Slack"},
      {"teams-for-linux", "Microsoft Teams"},
      {"teamspeak3", "TeamSpeak"},
      {"element-desktop", "Element"},
      {"elementary-tour", "given"},
  };
  for (const auto& [identifier, name] : rows)
    EXPECT_EQ(lookupCatalog(identifier, identifier, "given", onLinux).displayName, name) << identifier;
  EXPECT_EQ(lookupCatalog("ssh-something.service", "x", "given", onLinux).displayName, "given");
}

TEST(CatalogTest, asksBeforeItStopsWhatAUserReliesOn) {
  for (const char* identifier :
       {"nextcloud", "syncthing.service", "deja-dup-monitor", "restic.timer", "keepassxc",
        "tailscaled.service", "openvpn@work.service", "mullvad-daemon.service"})
    EXPECT_TRUE(lookupCatalog(identifier, "x", "", onLinux).requiresConfirmation) << identifier;
  for (const char* identifier : {"steam", "cups.service", "discord"})
    EXPECT_FALSE(lookupCatalog(identifier, "x", "", onLinux).requiresConfirmation) << identifier;
}

// All updaters can be paused at once, without a question.
TEST(CatalogTest, itemsThatAskFirstAreNotDescribedAsUpdaters) {
  EXPECT_TRUE(lookupCatalog("unattended-upgrades.service", "x", "", onLinux).requiresConfirmation);
  for (const auto system : {onMac, onLinux}) {
    for (const auto& entry : catalogOf(system)) {
      if (!entry.requiresConfirmation) continue;
      EXPECT_FALSE(entry.description.starts_with("Updates ")) << entry.prefix;
      EXPECT_FALSE(entry.description.contains(" updater")) << entry.prefix;
    }
  }
}

TEST(CatalogTest, everyRowCanBeFound) {
  for (const auto system : {onMac, onLinux}) {
    for (const auto& entry : catalogOf(system)) {
      const auto found = lookupCatalog(std::string(entry.prefix), "x", "", system);
      EXPECT_EQ(found.displayName, entry.displayName) << entry.prefix << " is hidden by an earlier row";
      EXPECT_EQ(found.description, entry.description) << entry.prefix;
    }
  }
}

TEST(CatalogTest, describesKnownItems) {
  const CatalogRow rows[] = {
      {"com.spotify.client", "Spotify", "Opens with your Mac so music plays instantly when you want it."},
      {"com.apple.Music", "Apple Music", "Opens with your Mac so music plays instantly when you want it."},
      {"com.microsoft.OneDrive", "OneDrive", "Keeps your files in sync between your Mac and the cloud."},
      {"com.google.Keystone", "Google Chrome Updater", "Updates Google Chrome quietly in the background."},
      {"com.google.keystone", "Google Chrome Updater", "Updates Google Chrome quietly in the background."},
      {"org.mozilla.updater", "Firefox Updater", "Updates Firefox quietly in the background."},
      {"com.microsoft.EdgeUpdater", "Microsoft Edge Updater", "Updates Microsoft Edge in the background."},
      {"com.microsoft.autoupdate", "Microsoft AutoUpdate",
       "Checks for updates to your Microsoft apps like Word, Excel and Outlook."},
      {"com.hnc.Discord", "Discord",
       "Stays ready in the background so messages and calls come through right away."},
      {"com.adobe.acc", "Adobe Creative Cloud",
       "Keeps Adobe apps up to date and signs you in automatically."},
      {"com.adobe", "Adobe", "Keeps Adobe apps up to date in the background."},
      {"com.docker", "Docker Desktop",
       "Runs developer tools in the background so containers can start instantly."},
      {"com.todesktop.230313mzl4w4u92", "Cursor",
       "Stays ready in the background so your projects open quickly."},
      {"com.1password.1password", "1Password", "Stays ready to fill in passwords when you need them."},
      {"com.if.Amphetamine", "Amphetamine",
       "Runs quietly in your menu bar so it can keep your Mac awake when you need it."},
      {"com.teamviewer", "TeamViewer", "Lets other trusted people connect to this Mac."},
      {"com.tailscale.ipn", "Tailscale", "Stays connected so your private network is always available."},
      {"com.carbon-copy-cloner", "Carbon Copy Cloner", "Runs scheduled backups of your Mac."},
      {"com.rogueamoeba.arkaudiod", "ARK Audio",
       "Handles audio routing for Rogue Amoeba apps like Audio Hijack and Loopback."},
      {"com.macpaw.CleanMyMac", "CleanMyMac Updater",
       "Checks for updates to CleanMyMac quietly in the background."},
      {"com.ledger.live", "Ledger Live", "Stays ready to talk to your Ledger hardware wallet."},
  };
  for (const auto& [prefix, name, description] : rows) {
    const auto text = lookupCatalog(prefix, "x", "given", onMac);
    EXPECT_EQ(text.displayName, name);
    EXPECT_EQ(text.description, description);
  }
}

TEST(CatalogTest, describesThemWithoutAMacOnLinux) {
  const std::pair<const char*, const char*> rows[] = {
      {"com.spotify.client", "Opens with your computer so music plays instantly when you want it."},
      {"com.apple.Music", "Opens with your computer so music plays instantly when you want it."},
      {"com.microsoft.OneDrive", "Keeps your files in sync between your computer and the cloud."},
      {"com.if.Amphetamine",
       "Runs quietly in your panel so it can keep your computer awake when you need it."},
      {"com.teamviewer", "Lets other trusted people connect to this computer."},
      {"com.carbon-copy-cloner", "Runs scheduled backups of your computer."},
      {"com.hnc.Discord", "Stays ready in the background so messages and calls come through right away."},
  };
  for (const auto& [prefix, description] : rows)
    EXPECT_EQ(lookupCatalog(prefix, "x", "given", onLinux).description, description);
}

TEST(CatalogTest, everyRowIsOneSentenceInTheUsersWords) {
  for (const auto system : {onMac, onLinux}) {
    for (const auto& entry : catalogOf(system)) {
      EXPECT_FALSE(entry.displayName.empty());
      EXPECT_TRUE(entry.description.ends_with('.')) << entry.description;
      EXPECT_EQ(entry.description.find(". "), std::string_view::npos) << entry.description;
      EXPECT_LE(entry.description.size(), 90u) << entry.description;
    }
  }
}

TEST(CatalogTest, noLinuxRowSpeaksOfAMac) {
  for (const auto& entry : catalogOf(onLinux)) {
    std::string text(entry.description);
    if (const auto product = text.find("CleanMyMac"); product != std::string::npos) text.erase(product, 10);
    for (const char* word : {"Mac", "macOS", "menu bar", "Finder", "Dock ", "Trash", "Login Items"})
      EXPECT_FALSE(text.contains(word)) << text;
  }
}

TEST(CatalogTest, theNarrowerRowWins) {
  EXPECT_EQ(lookupCatalog("com.adobe.acc.AdobeCreativeCloud", "x", "", onMac).displayName,
            "Adobe Creative Cloud");
  EXPECT_EQ(lookupCatalog("com.adobe.Reader", "x", "", onMac).displayName, "Adobe");
  EXPECT_EQ(lookupCatalog("com.adobeflash", "x", "", onMac).displayName, "Adobe");  // no word boundary
  EXPECT_EQ(lookupCatalog("com.jetbrains.toolbox", "x", "", onMac).displayName, "JetBrains Toolbox");
  EXPECT_EQ(lookupCatalog("com.notion.calendar.x", "x", "", onMac).displayName, "Notion Calendar");
  EXPECT_EQ(lookupCatalog("com.notion.x", "x", "", onMac).displayName, "Notion");
}

TEST(CatalogTest, aRowsNameReplacesTheGivenOne) {
  EXPECT_EQ(lookupCatalog("com.microsoft.autoupdate2", "x", "MAU", onMac),
            (CatalogText{"Microsoft AutoUpdate",
                         "Checks for updates to your Microsoft apps like Word, Excel and Outlook.", false}));
  EXPECT_TRUE(lookupCatalog("com.tailscale.ipn.macos", "x", "", onMac).requiresConfirmation);
}

TEST(CatalogTest, caseCounts) {
  EXPECT_EQ(lookupCatalog("com.Spotify.client", "com.spotify.client", "given", onMac),
            (CatalogText{"given", "Runs quietly in the background.", false}));
}

TEST(CatalogTest, guessesFromTheIdentifierInAFixedOrder) {
  const std::pair<const char*, const char*> rows[] = {
      {"com.acme.AutoUpdate.sync", "Checks for updates quietly in the background."},
      {"com.acme.Updater", "Checks for updates quietly in the background."},
      {"com.acme.update-check", "Checks for updates quietly in the background."},
      {"com.acmeupdate", "Runs quietly in the background."},
      {"com.acme.SYNC.push", "Keeps files or settings in sync in the background."},
      {"com.acme.LaunchAtLogin.notif", "Opens with your Mac so it's ready when you are."},
      {"com.acme.Notifier.push", "Listens for new notifications in the background."},
      {"com.acme.push", "Listens for new notifications in the background."},
      {"com.acme", "Runs quietly in the background."},
      {"", "Runs quietly in the background."},
  };
  for (const auto& [identifier, description] : rows) {
    EXPECT_EQ(lookupCatalog("com.acme.push", identifier, "Acme", onMac),
              (CatalogText{"Acme", description, false}))
        << identifier;
  }
  EXPECT_EQ(lookupCatalog("x", "com.acme.launchatlogin", "Acme", onLinux).description,
            "Starts with your computer so it's ready when you are.");
}

TEST(CatalogTest, withoutABundleIdentifierNoRowFits) {
  EXPECT_EQ(lookupCatalog(std::nullopt, "com.spotify.client", "Acme", onMac),
            (CatalogText{"Acme", "Runs quietly in the background.", false}));
}

}  // namespace
}  // namespace vorli
