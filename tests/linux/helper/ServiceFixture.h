#pragma once

#include "tests/linux/helper/ClientFixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorli {

/// The client's view of an installed daemon and of the authorities that decide about it.
struct ServiceFixture : ClientFixture {
  void startInstalled() {
    bus.installScriptedHelper();
    bus.start();
  }

  void startWithPolkit() {
    startInstalled();
    startClient();
    bus.startAuthority("polkit");
  }

  linuxhost::HelperService& service() { return client->service; }

  int readStatus() {
    std::optional<int> answer;
    service().readStatus(OnceReply<int>([&](int status) { answer = status; }));
    waitUntil([&] { return answer.has_value(); });
    return answer.value_or(-1);
  }

  /// Reads the status for each of these scripts of the authorities.
  void expectStatuses(const std::vector<std::pair<const char*, int>>& rows) {
    for (const auto& [conduct, status] : rows) {
      bus.setAuthority(conduct);
      EXPECT_EQ(readStatus(), status) << conduct;
    }
  }

  /// Reads again after the reading that a changed status causes, so that none is left in progress.
  int readSettledStatus() {
    readStatus();
    return readStatus();
  }

  ports::Consent readConsent() {
    std::optional<ports::Consent> answer;
    service().startupItemConsent(
        OnceReply<ports::Consent>([&](ports::Consent consent) { answer = consent; }));
    waitUntil([&] { return answer.has_value(); });
    return answer.value_or(ports::Consent::missing);
  }

  int prompts() const {
    return static_cast<int>(std::ranges::count_if(
        bus.authorityLog(), [](const auto& line) { return line.ends_with(" prompt"); }));
  }
  int lines(std::string_view line) const {
    return static_cast<int>(std::ranges::count(bus.authorityLog(), line));
  }

  void expectNothingDisturbed() {
    EXPECT_EQ(prompts(), 0);
    EXPECT_EQ(bus.helperPid(), -1);
  }

  /// Writes an executable script.
  void writeProgram(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << "#!/bin/sh\n" << text;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
};

}  // namespace vorli
