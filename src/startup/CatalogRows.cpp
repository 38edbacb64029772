#include "startup/Catalog.h"
#include "startup/LinuxCatalogRows.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace vorli {

namespace {

constexpr std::array<CatalogEntry, 64> macOSCatalog{{
    {"com.spotify.client", "Spotify", "Opens with your Mac so music plays instantly when you want it."},
    {"com.apple.Music", "Apple Music", "Opens with your Mac so music plays instantly when you want it."},
    {"com.microsoft.OneDrive", "OneDrive", "Keeps your files in sync between your Mac and the cloud.",
     asksFirst},
    {"com.google.drivefs", "Google Drive", "Keeps your Google Drive files up to date on all your devices.",
     asksFirst},
    {"com.getdropbox.dropbox", "Dropbox", "Keeps the files in your Dropbox the same on all your devices.",
     asksFirst},
    {"com.dropbox", "Dropbox", "Keeps the files in your Dropbox the same on all your devices.", asksFirst},
    {"com.apple.bird", "iCloud Drive", "Keeps your iCloud files in sync across your devices.", asksFirst},
    {"com.box.desktop", "Box", "Keeps your Box files within reach on all your devices.", asksFirst},
    {"com.google.Keystone", "Google Chrome Updater", "Updates Google Chrome quietly in the background."},
    {"com.google.keystone", "Google Chrome Updater", "Updates Google Chrome quietly in the background."},
    {"org.mozilla.updater", "Firefox Updater", "Updates Firefox quietly in the background."},
    {"com.microsoft.EdgeUpdater", "Microsoft Edge Updater", "Updates Microsoft Edge in the background."},
    {"com.brave.Updater", "Brave Updater", "Updates Brave quietly in the background."},
    {"com.microsoft.autoupdate", "Microsoft AutoUpdate",
     "Checks for updates to your Microsoft apps like Word, Excel and Outlook."},
    {"com.microsoft.teams", "Microsoft Teams",
     "Stays ready in the background so calls and messages from your team reach you."},
    {"com.microsoft.office", "Microsoft Office", "Helps your Office documents open without a wait."},
    {"com.hnc.Discord", "Discord",
     "Stays ready in the background so messages and calls come through right away."},
    {"com.tinyspeck.slackmacgap", "Slack",
     "Stays ready in the background so messages from your team reach you right away."},
    {"net.whatsapp.WhatsApp", "WhatsApp",
     "Stays ready in the background so your messages and calls arrive right away."},
    {"com.tdesktop.Telegram", "Telegram",
     "Stays ready in the background so new messages reach you right away."},
    {"com.apple.iChat", "Messages", "Brings in your messages as soon as someone writes to you."},
    {"com.adobe.acc", "Adobe Creative Cloud", "Keeps Adobe apps up to date and signs you in automatically."},
    {"com.adobe.ccxprocess", "Adobe Creative Cloud",
     "Gets templates and tutorials ready before you open an Adobe app."},
    {"com.adobe.AdobeCreativeCloud", "Adobe Creative Cloud",
     "Keeps your Adobe apps, fonts and files at hand."},
    {"com.adobe", "Adobe", "Keeps Adobe apps up to date in the background."},
    {"us.zoom.xos", "Zoom", "Stays ready in the background so you can join meetings quickly."},
    {"com.loom.desktop", "Loom", "Stays ready in the background so you can record your screen at any time."},
    {"com.docker", "Docker Desktop",
     "Runs developer tools in the background so containers can start instantly."},
    {"com.jetbrains.toolbox", "JetBrains Toolbox",
     "Keeps your JetBrains apps up to date and your projects one click away."},
    {"com.jetbrains", "JetBrains", "Helps your JetBrains apps open projects sooner."},
    {"com.github.GitHubClient", "GitHub Desktop",
     "Stays ready in the background so projects open straight from your browser."},
    {"com.postmanlabs.mac", "Postman",
     "Stays ready in the background so you can pick up your requests where you left off."},
    {"com.sublimetext", "Sublime Text", "Stays ready in the background so your files open right away."},
    {"com.microsoft.VSCode", "Visual Studio Code",
     "Stays ready in the background so your projects open right away."},
    {"notion.id", "Notion", "Stays ready in the background so your notes open right away."},
    {"com.notion.calendar", "Notion Calendar", "Reminds you of meetings and keeps your calendar at hand."},
    {"com.notion", "Notion", "Stays ready in the background so your notes open right away."},
    {"net.shinyfrog.bear", "Bear",
     "Stays ready in the background so you can write down a thought at any time."},
    {"com.todesktop.230313mzl4w4u92", "Cursor",
     "Stays ready in the background so your projects open quickly."},
    {"com.1password.1password", "1Password", "Stays ready to fill in passwords when you need them.",
     asksFirst},
    {"com.agilebits.onepassword", "1Password", "Stays ready to fill in passwords when you need them.",
     asksFirst},
    {"com.lastpass.LastPass", "LastPass", "Stays ready to fill in passwords when you need them.", asksFirst},
    {"com.bitwarden.desktop", "Bitwarden", "Stays ready to fill in passwords when you need them.", asksFirst},
    {"com.knollsoft.Rectangle", "Rectangle", "Lets you move and resize windows with a few keys."},
    {"com.if.Amphetamine", "Amphetamine",
     "Runs quietly in your menu bar so it can keep your Mac awake when you need it."},
    {"com.raycast.macos", "Raycast", "Stays ready so you can find and open things from the keyboard."},
    {"com.runningwithcrayons.Alfred", "Alfred",
     "Stays ready so you can find and open things from the keyboard."},
    {"com.apple.ScriptEditor2", "Script Editor", "Runs small tasks that you have set up yourself."},
    {"com.figma.Desktop", "Figma",
     "Stays ready in the background so your own fonts show up in your designs."},
    {"com.bohemiancoding.sketch3", "Sketch", "Stays ready in the background so your designs open quickly."},
    {"com.teamviewer", "TeamViewer", "Lets other trusted people connect to this Mac."},
    {"com.anydesk.AnyDesk", "AnyDesk",
     "Lets you and people you trust see and use your screen from elsewhere."},
    {"com.logitech.optionsplus", "Logi Options+",
     "Makes the extra buttons on your Logitech mouse and keyboard do what you chose."},
    {"com.elgato", "Elgato", "Lets your Elgato lights, cameras and buttons work the way you set them up."},
    {"com.tailscale.ipn", "Tailscale", "Stays connected so your private network is always available.",
     asksFirst},
    {"com.nordvpn.NordVPN", "NordVPN", "Stays connected so others can't see what you do online.", asksFirst},
    {"com.backblaze.bzbmenu", "Backblaze", "Backs up your files while you work.", asksFirst},
    {"com.carbon-copy-cloner", "Carbon Copy Cloner", "Runs scheduled backups of your Mac.", asksFirst},
    {"com.openai.chat", "ChatGPT", "Stays ready so you can ask a question at any time."},
    {"com.anthropic.claudefordesktop", "Claude", "Stays ready so you can ask a question at any time."},
    {"com.lwouis.alt-tab-macos", "AltTab", "Lets you switch between windows from the keyboard."},
    {"com.rogueamoeba.arkaudiod", "ARK Audio",
     "Handles audio routing for Rogue Amoeba apps like Audio Hijack and Loopback."},
    {"com.macpaw.CleanMyMac", "CleanMyMac Updater",
     "Checks for updates to CleanMyMac quietly in the background."},
    {"com.ledger.live", "Ledger Live", "Stays ready to talk to your Ledger hardware wallet."},
}};

// Replaces the description of a row whose macOS text mentions the Mac or its menu bar.
struct Reworded {
  std::string_view prefix;
  std::string_view description;
};

constexpr Reworded linuxWords[] = {
    {"com.spotify.client", "Opens with your computer so music plays instantly when you want it."},
    {"com.apple.Music", "Opens with your computer so music plays instantly when you want it."},
    {"com.microsoft.OneDrive", "Keeps your files in sync between your computer and the cloud."},
    {"com.if.Amphetamine", "Runs quietly in your panel so it can keep your computer awake when you need it."},
    {"com.teamviewer", "Lets other trusted people connect to this computer."},
    {"com.carbon-copy-cloner", "Runs scheduled backups of your computer."},
};

// Rows for Linux come first, because some of their identifiers are in the other catalog as well.
constexpr auto linuxCatalog = [] {
  std::array<CatalogEntry, std::size(linuxRows) + macOSCatalog.size()> catalog;
  const auto shared = std::ranges::copy(linuxRows, catalog.begin()).out;
  std::ranges::copy(macOSCatalog, shared);
  for (const auto& words : linuxWords) {
    const auto row = std::ranges::find(catalog, words.prefix, &CatalogEntry::prefix);
    row->description = words.description;
  }
  return catalog;
}();

}  // namespace

std::span<const CatalogEntry> catalogOf(HostSystem system) {
  if (system == HostSystem::macOS) return macOSCatalog;
  return linuxCatalog;
}

}  // namespace vorli
