// FatApplication TITLE MEBIBYTES [HELPER MEBIBYTES]...: an application that holds memory, with helper
// processes. FatApplication --hold MEBIBYTES: holds memory and shows nothing, like those helpers.

#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

std::vector<char> hold(const char* mebibytes) {
  std::vector<char> memory(std::strtoul(mebibytes, nullptr, 10) << 20);
  for (std::size_t at = 0; at < memory.size(); at += 4096) memory[at] = static_cast<char>(at >> 12);
  return memory;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && argv[1] == std::string_view("--hold")) {
    const auto memory = hold(argv[2]);
    for (;;) pause();
  }
  QApplication application(argc, argv);
  if (argc < 3) return 64;
  const auto memory = hold(argv[2]);
  std::vector<std::unique_ptr<QProcess>> helpers;
  for (int i = 3; i + 1 < argc; i += 2) {
    helpers.push_back(std::make_unique<QProcess>());
    helpers.back()->start(QString::fromUtf8(argv[i]),
                          {QStringLiteral("--hold"), QString::fromUtf8(argv[i + 1])});
  }
  QLabel window(QString::fromUtf8(argv[1]));
  window.setWindowTitle(QString::fromUtf8(argv[1]));
  window.resize(300, 120);
  window.show();
  const int status = QApplication::exec();
  for (const auto& helper : helpers) helper->kill();
  for (const auto& helper : helpers) helper->waitForFinished();
  return status;
}
