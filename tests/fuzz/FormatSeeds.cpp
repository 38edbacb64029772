// Writes the files from which the fuzzers of the formats start: FormatSeeds DIRECTORY

#include "tests/formats/SampleFiles.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

using namespace vorli::formats;

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "FormatSeeds DIRECTORY\n";
    return 1;
  }
  const std::string agent = sampleLaunchAgent(), binary = sampleBinaryLaunchAgent(), store = sampleStore(1),
                    xml = sampleArchiveInXML();
  const std::map<std::string, std::vector<std::string>> seeds{
      {"BinaryPropertyList", {binary, store}},
      {"XMLPropertyList", {agent, xml, "\xFE\xFF" + std::string("\0<\0a\0r\0r\0a\0y\0/\0>", 16)}},
      {"PropertyList", {agent, binary, store, xml}},
      {"XMLEncoding", {agent, "<?xml encoding='ISO-8859-1'?>\xFC", "\xFF\xFE" + std::string("<\0", 2)}},
      {"XMLScalars", {"0x1F", "-1.5e3", "2024-02-29T12:00:00Z", "Vm9ybGk=", "&amp;&#x20AC;&#65;"}},
      {"KeyedArchive", {store, xml}},
      {"BookmarkData", {sampleBookmark(), BookmarkDataWriter::bookmarkOf({"a", "..", "b"}, "/Volumes/Disk")}},
  };
  for (const auto& [fuzzer, files] : seeds) {
    const auto folder = std::filesystem::path(arguments[1]) / fuzzer;
    std::filesystem::create_directories(folder);
    for (std::size_t i = 0; i < files.size(); ++i) {
      std::ofstream file(folder / ("sample" + std::to_string(i)), std::ios::binary);
      if (!file.write(files[i].data(), static_cast<std::streamsize>(files[i].size())).flush()) return 1;
    }
  }
}
