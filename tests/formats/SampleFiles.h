#pragma once

#include "tests/formats/BinaryPropertyListWriter.h"
#include "tests/formats/BookmarkDataWriter.h"
#include "tests/formats/KeyedArchiveWriter.h"

#include <string>
#include <vector>

namespace vorli::formats {

// Files like those of a Mac.

inline std::string sampleLaunchAgent() {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Label</key>
	<string>com.example.updater</string>
	<key>ProgramArguments</key>
	<array>
		<string>/Library/Application Support/Example &amp; Sons/updater</string>
		<string>--quiet</string>
	</array>
	<key>EnvironmentVariables</key>
	<dict>
		<key>TOKEN</key>
		<data>Vm9ybGk=</data>
	</dict>
	<key>KeepAlive</key>
	<dict>
		<key>SuccessfulExit</key>
		<false/>
	</dict>
	<key>RunAtLoad</key>
	<true/>
	<key>StartInterval</key>
	<integer>3600</integer>
	<!-- written by the installer -->
	<key>InstalledAt</key>
	<date>2024-02-29T12:00:00Z</date>
	<key>Nice</key>
	<real>1.5</real>
</dict>
</plist>
)";
}

inline std::string sampleBinaryLaunchAgent() {
  BinaryPropertyListWriter writer(1);
  const auto arguments =
      writer.array({writer.text("/usr/local/bin/updater"), writer.utf16(u"--name=B\u00fccher")});
  const auto keepAlive = writer.keyed({{"SuccessfulExit", writer.boolean(false)}});
  const auto root = writer.keyed({{"Label", writer.text("com.example.updater")},
                                  {"ProgramArguments", arguments},
                                  {"KeepAlive", keepAlive},
                                  {"RunAtLoad", writer.boolean(true)},
                                  {"StartInterval", writer.integer(3600)},
                                  {"Token", writer.data("Vorli")}});
  return writer.bytes(root);
}

inline std::string sampleBookmark() {
  return BookmarkDataWriter::bookmarkOf({"Applications", "Example.app", "Contents", "Library", "LoginItems"});
}

/// An archive with one item that names itself, as XML, which people convert archives to.
inline std::string sampleArchiveInXML() {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>$archiver</key><string>NSKeyedArchiver</string>
<key>$version</key><integer>100000</integer>
<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
<key>$objects</key><array>
<string>$null</string>
<dict><key>$class</key><dict><key>CF$UID</key><integer>2</integer></dict>
<key>NS.keys</key><array><dict><key>CF$UID</key><integer>3</integer></dict></array>
<key>NS.objects</key><array><dict><key>CF$UID</key><integer>4</integer></dict></array></dict>
<dict><key>$classname</key><string>NSDictionary</string></dict>
<string>backgroundItems</string>
<dict><key>$class</key><dict><key>CF$UID</key><integer>5</integer></dict>
<key>bookmark</key><dict><key>CF$UID</key><integer>4</integer></dict>
<key>internalItems</key><dict><key>CF$UID</key><integer>6</integer></dict>
<key>userElection</key><integer>2</integer></dict>
<dict><key>$classname</key><string>BackgroundItemContainer</string>
<key>$classhints</key><array><string>BackgroundItem</string></array></dict>
<dict><key>$class</key><dict><key>CF$UID</key><integer>7</integer></dict>
<key>NS.objects</key><array><dict><key>CF$UID</key><integer>4</integer></dict></array></dict>
<dict><key>$classname</key><string>NSSet</string></dict>
</array>
</dict></plist>
)";
}

/// One container: the disabled application /Applications/A.app with the helpers /opt/one and /opt/two.
inline std::string sampleStoreOfHelpers() {
  KeyedArchiveWriter writer;
  const auto set = writer.classNamed("NSSet"), bookmark = writer.classNamed("Bookmark"),
             item = writer.classNamed("BackgroundItem"), uuid = writer.classNamed("NSUUID");
  const auto bookmarkOf = [&](const std::vector<std::string>& components) {
    const auto data = writer.data(BookmarkDataWriter::bookmarkOf(components));
    return writer.refer(writer.object(bookmark, {{"data", writer.refer(data)}}));
  };
  std::vector<KeyedArchiveWriter::Reference> helpers;
  for (const char* name : {"one", "two"})
    helpers.push_back(writer.object(item, {{"bookmark", bookmarkOf({"opt", name})}}));
  const auto internal = writer.collection(set, helpers);
  const auto identifier =
      writer.object(uuid, {{"NS.uuidbytes", writer.inlined().data(std::string(16, 'i'))}});
  const auto container = writer.object(writer.classNamed("BackgroundItemContainer"),
                                       {{"identifier", writer.refer(identifier)},
                                        {"bookmark", bookmarkOf({"Applications", "A.app"})},
                                        {"internalItems", writer.refer(internal)},
                                        {"userElection", writer.inlined().byte(2)}});
  const auto all = writer.collection(set, {container});
  const auto items =
      writer.object(writer.classNamed("BackgroundItems"), {{"allContainers", writer.refer(all)}});
  return writer.bytes(
      writer.dictionary(writer.classNamed("NSDictionary"), {{writer.text("backgroundItems"), items}}));
}

/// The background items of a user with so many applications, each with a helper that names its container.
inline std::string sampleStore(int applications) {
  KeyedArchiveWriter writer;
  using Reference = KeyedArchiveWriter::Reference;
  auto& list = writer.inlined();
  const auto dictionary = writer.classNamed("NSDictionary"), array = writer.classNamed("NSArray"),
             set = writer.classNamed("NSSet"), uuid = writer.classNamed("NSUUID"),
             items = writer.classNamed("BackgroundItems"),
             container = writer.classNamed("BackgroundItemContainer"),
             item = writer.classNamed("BackgroundLoginItem", {"BackgroundItem"}),
             bookmark = writer.classNamed("Bookmark");
  const auto bookmarkOf = [&](const std::vector<std::string>& components) {
    const auto data = writer.data(BookmarkDataWriter::bookmarkOf(components));
    return writer.object(bookmark, {{"data", writer.refer(data)}, {"identifier", writer.refer(0)}});
  };
  std::vector<Reference> containers;
  for (int i = 0; i < applications; ++i) {
    const auto name = "Example " + std::to_string(i) + ".app";
    const auto identifier =
        writer.object(uuid, {{"NS.uuidbytes", list.data(std::string(16, static_cast<char>(i)))}});
    const auto outer = bookmarkOf({"Applications", name});
    const auto inner = bookmarkOf({"Applications", name, "Contents", "Library", "LoginItems", "Helper.app"});
    const Reference itself = writer.next() + 2;
    const auto helper = writer.object(item, {{"bookmark", writer.refer(inner)},
                                             {"container", writer.refer(itself)},
                                             {"hidden", list.boolean(false)},
                                             {"type", list.byte(3)}});
    const auto internal = writer.collection(set, {helper});
    containers.push_back(writer.object(container, {{"identifier", writer.refer(identifier)},
                                                   {"bookmark", writer.refer(outer)},
                                                   {"internalItems", writer.refer(internal)},
                                                   {"userElection", list.byte(i % 3 == 0 ? 2 : 0)}}));
  }
  const auto all = writer.collection(array, containers);
  const auto backgroundItems = writer.object(items, {{"allContainers", writer.refer(all)}});
  const auto version = writer.add(list.byte(2));
  return writer.bytes(writer.dictionary(
      dictionary, {{writer.text("version"), version}, {writer.text("backgroundItems"), backgroundItems}}));
}

}  // namespace vorli::formats
