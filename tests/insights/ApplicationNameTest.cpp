#include "insights/ApplicationName.h"

namespace vorli {
namespace {

using Name = std::optional<std::string>;

struct NameRow {
  const char* given;
  Name expected;
};

TEST(ApplicationNameTest, aNameIsCleaned) {
  const NameRow rows[] = {
      {"Notes", "Notes"},
      {"  Notes\t\n", "Notes"},
      {"\u00A0Notes\u3000", "Notes"},
      {"my tool", "My tool"},
      {"iTerm2", "ITerm2"},
      {"élan", "Élan"},
      {"яндекс", "Яндекс"},
      {"7-Zip", "7-Zip"},
      {"微信", "微信"},
      {"Visual Studio Code", "Visual Studio Code"},
      {"Notes & More", "Notes & More"},
      {"zoom.us", "Zoom.us"},
      {"Discord.", "Discord."},
      // The maker's name is removed only with this exact spelling, and only at the front.
      {"Google Chrome", "Chrome"},
      {"Google Chrome Canary", "Chrome Canary"},
      {"google chrome", "Google chrome"},
      {"Google", "Google"},
      {"Google ", "Google"},
      {"GoogleEarth", "GoogleEarth"},
      {"My Google Docs", "My Google Docs"},
      {"Google docs", "Docs"},
      {"Google Google Chrome", "Google Chrome"},
      // A helper has its application's name. Its own parentheses contain its kind: "Renderer" would mean
      // nothing to the user.
      {"Slack Helper", "Slack"},
      {"Slack Helper (Renderer)", "Slack"},
      {"Slack Helper (GPU)", "Slack"},
      {"Slack Helper (Plugin)", "Slack"},
      {"Google Chrome Helper (Renderer)", "Chrome"},
      {"slack helper", "Slack helper"},
      {"Slack Helper 2", "Slack"},
      {"Slack Helper (GPU) extra", "Slack"},
      {"Slack  Helper", "Slack"},
      {" Helper", "Helper"},
      {"Helperly", "Helperly"},
      {"A Helper and a Helper (GPU)", "A Helper and a"},
      // Parentheses name the application that a worker belongs to.
      {"Worker (Notes)", "Notes"},
      {"Worker ( Notes )", "Notes"},
      {"Worker (notes)", "Notes"},
      {"Worker (Google Docs)", "Docs"},
      {"Web Content (Notes Helper)", "Notes"},
      {"Slack Helper (Alerts)", "Alerts"},
      {"Worker ()", "Worker ()"},
      {"Worker ( )", "Worker ( )"},
      {"Worker (a) (b)", "Worker (a) (b)"},
      {"Worker (a(b))", "Worker (a(b))"},
      {"Worker (com.example.notes)", "Worker (com.example.notes)"},
      {"Worker (Com.example)", "Worker (Com.example)"},
      {"Worker(Notes)", "Worker(Notes)"},
      {"Worker (Notes) 2", "Worker (Notes) 2"},
      {"(Notes)", "(Notes)"},
      // Text that only looks like a process number.
      {"pid x1", "Pid x1"},
      {"pid 12a", "Pid 12a"},
      {"pid 1 2", "Pid 1 2"},
      {"pidgin", "Pidgin"},
      {"pid", "Pid"},
      // Text that only looks like an identifier.
      {"Company", "Company"},
      {"communique", "Communique"},
      {"Apple", "Apple"},
      {"Networks", "Networks"},
      {"a.com.b", "A.com.b"},
  };
  for (const auto& [given, expected] : rows) EXPECT_EQ(cleanedApplicationName(given), expected) << given;
}

TEST(ApplicationNameTest, improperNamesAreRefused) {
  const char* const rows[] = {
      "",
      " ",
      "\t\n",
      "\u3000",
      "/usr/bin/foo",
      "a/b",
      "Worker (a/b)",
      "/",
      "com.example.notes",
      "COM.Example",
      "io.foo",
      "org.gnome.Shell",
      "net.x",
      "co.y",
      "app.z",
      "dev.w",
      " com.example.notes ",
      "Com.",
      "Google com.example.notes",
      "org.mozilla.firefox Helper",
      "com.example (Notes)",
      "w\uFFFDrker",
      "\uFFFD",
      "Notes (\uFFFD)",
      "pid 123",
      "PID 123",
      "Pid 0",
      " pid 42 ",
  };
  for (const char* given : rows) EXPECT_EQ(cleanedApplicationName(given), std::nullopt) << given;
}

Name shown(const char* name, const char* identifier, ApplicationPathRules::Kind kind) {
  ports::RunningApplication application{.localizedName = SharedText(name)};
  if (identifier) application.bundleIdentifier = SharedText(identifier);
  return shownApplicationName(application, kind);
}

TEST(ShownApplicationNameTest, anInstalledApplicationKeepsItsWholeName) {
  constexpr auto folders = ApplicationPathRules::Kind::folders;
  const NameRow rows[] = {
      {"ImageMagick (color depth=q16)", "ImageMagick (color depth=q16)"},
      {"IDLE (using Python-3.11)", "IDLE (using Python-3.11)"},
      {"Google Chrome (unstable)", "Chrome (unstable)"},
      {"Input/Output", "Input/Output"},
      {"Org.mode", "Org.mode"},
      {"App Helper", "App Helper"},
      {"pid 7", "Pid 7"},
      {"  paint studio ", "Paint studio"},
      {"Google  Earth", "Earth"},
      {"Google", "Google"},
      {"org.example.Tool", std::nullopt},
      {"ORG.example.tool", std::nullopt},
      {"", std::nullopt},
      {" ", std::nullopt},
      {"w\uFFFDrk", std::nullopt},
  };
  for (const auto& [given, expected] : rows)
    EXPECT_EQ(shown(given, "org.example.Tool", folders), expected) << given;
  EXPECT_EQ(shown("firefox", "firefox", folders), "Firefox");
  EXPECT_EQ(shownApplicationName({.bundleIdentifier = SharedText("x")}, folders), std::nullopt);
}

TEST(ShownApplicationNameTest, otherNamesAreCleaned) {
  using enum ApplicationPathRules::Kind;
  EXPECT_EQ(shown("Worker (Notes)", "org.example.Tool", bundles), "Notes");
  EXPECT_EQ(shown("Worker (Notes)", nullptr, folders), "Notes");
  EXPECT_EQ(shown("org.example.Game", nullptr, folders), std::nullopt);
}

}  // namespace
}  // namespace vorli
