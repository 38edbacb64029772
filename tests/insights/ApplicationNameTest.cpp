#include "insights/ApplicationName.h"

namespace vorli {
namespace {

using Name = std::optional<std::string>;

struct Row {
  const char* given;
  Name expected;
};

TEST(ApplicationNameTest, aNameIsCleaned) {
  const Row rows[] = {
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
      // The maker's name goes, exactly as it is spelled, and from the front only.
      {"Google Chrome", "Chrome"},
      {"Google Chrome Canary", "Chrome Canary"},
      {"google chrome", "Google chrome"},
      {"Google", "Google"},
      {"Google ", "Google"},
      {"GoogleEarth", "GoogleEarth"},
      {"My Google Docs", "My Google Docs"},
      {"Google docs", "Docs"},
      {"Google Google Chrome", "Google Chrome"},
      // A helper is called by its application's name.
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
      // Parentheses tell whom a worker works for.
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
      // What only looks like a process number.
      {"pid x1", "Pid x1"},
      {"pid 12a", "Pid 12a"},
      {"pid 1 2", "Pid 1 2"},
      {"pidgin", "Pidgin"},
      {"pid", "Pid"},
      // What only looks like an identifier.
      {"Company", "Company"},
      {"communique", "Communique"},
      {"Apple", "Apple"},
      {"Networks", "Networks"},
      {"a.com.b", "A.com.b"},
  };
  for (const auto& [given, expected] : rows) EXPECT_EQ(cleanedApplicationName(given), expected) << given;
}

TEST(ApplicationNameTest, whatIsNoNameNeverBecomesOne) {
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

}  // namespace
}  // namespace vorli
