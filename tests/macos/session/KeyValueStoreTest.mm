#include "macos/session/KeyValueStore.h"
#include "tests/macos/runtime/Foundation.h"
#include "tests/macos/runtime/Machine.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vorli::machost {
namespace {

using macfake::machine;

TEST(KeyValueStoreTest, everyKindOfValueIsReadBackAsItself) {
  const std::pair<const char*, StoredValue> values[] = {
      {"yes", StoredValue(true)},
      {"no", StoredValue(false)},
      {"one", StoredValue(std::int64_t{1})},
      {"large", StoredValue(std::int64_t{9'007'199'254'740'993})},
      {"real", StoredValue(1.0)},
      {"text", StoredValue(std::string("a text"))},
      {"date", StoredValue(Date{1'700'000'000.5})},
      {"texts", StoredValue(std::vector<std::string>{"a", "b"})},
      {"none", StoredValue(std::vector<std::string>{})},
      {"entries",
       StoredValue(StoredDictionary{{"yes", true}, {"date", Date{1.0}}, {"text", std::string("t")}})}};
  KeyValueStore store;
  for (const auto& [key, value] : values) store.setObject(key, value);
  for (const auto& [key, value] : values) EXPECT_EQ(store.object(key), value) << key;
}

TEST(KeyValueStoreTest, anAbsentKeyIsNotAStoredFalse) {
  KeyValueStore store;
  EXPECT_FALSE(store.object("key"));
  store.setObject("key", false);
  EXPECT_EQ(store.object("key"), StoredValue(false));
  store.setObject("key", std::nullopt);
  EXPECT_FALSE(store.object("key"));
  store.setObject("key", std::nullopt);
}

TEST(KeyValueStoreTest, aValueThatCannotBeUnderstoodIsPresentAndNothing) {
  KeyValueStore store;
  const id foreign[] = { [NSData dataWithText:"bytes"], @[ @"a", @1 ], @{@"list" : @[]}, @{@1 : @"a"} };
  for (id object : foreign) {
    machine().defaults[@"key"] = object;
    EXPECT_EQ(store.object("key"), StoredValue(StoredDictionary{}));
  }
}

TEST(KeyValueStoreTest, anEntryThatCannotBeUnderstoodDoesNotSpoilItsDictionary) {
  machine().defaults[@"key"] = @{@"list" : @[], @"kept" : @7, @1 : @"a"};
  EXPECT_EQ(KeyValueStore().object("key"), StoredValue(StoredDictionary{{"kept", std::int64_t{7}}}));
}

TEST(KeyValueStoreTest, aTextThatIsNotUTF8IsRepaired) {
  KeyValueStore store;
  store.setObject("key", std::string("a\xFF"));
  EXPECT_EQ(store.object("key"), StoredValue(std::string("a\xEF\xBF\xBD")));
}

TEST(KeyValueStoreTest, pendingChangesAreWrittenOnDemand) {
  KeyValueStore().synchronize();
  EXPECT_EQ(machine().synchronizations, 1);
}

}  // namespace
}  // namespace vorli::machost
