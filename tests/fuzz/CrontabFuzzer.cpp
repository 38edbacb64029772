#include "base/UTF8.h"
#include "formats/Crontab.h"
#include "tests/fuzz/Fuzz.h"

using namespace vorli::formats;

void fuzz(std::string_view bytes) {
  FUZZ_CHECK(programOfCommand(bytes).size() <= bytes.size());
  for (const auto& command : parseRebootCommands(bytes)) {
    FUZZ_CHECK(!command.empty() && vorli::isUTF8(command));
    FUZZ_CHECK(programOfCommand(command).size() <= command.size());
  }
}
