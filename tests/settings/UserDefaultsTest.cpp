#include "settings/UserDefaults.h"
#include "tests/fakes/KeyValueStore.h"

#include <cmath>
#include <limits>

namespace vorli {
namespace {

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largestInteger = std::numeric_limits<std::int64_t>::max();

struct UserDefaultsTest : testing::Test {
  bool boolOf(StoredValue value) {
    store.values["key"] = std::move(value);
    return boolForKey(store, "key");
  }
  std::int64_t integerOf(StoredValue value) {
    store.values["key"] = std::move(value);
    return integerForKey(store, "key");
  }

  fakes::KeyValueStore store;
};

TEST_F(UserDefaultsTest, anAbsentKeyReadsAsFalseZeroOrNone) {
  EXPECT_FALSE(boolForKey(store, "key"));
  EXPECT_EQ(integerForKey(store, "key"), 0);
  EXPECT_FALSE(stringForKey(store, "key").has_value());
  EXPECT_FALSE(dateForKey(store, "key").has_value());
  EXPECT_TRUE(stringArrayForKey(store, "key").empty());
}

TEST_F(UserDefaultsTest, aBooleanIsTakenFromNumbersAndFromTextsThatSpellIt) {
  EXPECT_TRUE(boolOf(true));
  EXPECT_FALSE(boolOf(false));
  EXPECT_TRUE(boolOf(std::int64_t{-3}));
  EXPECT_FALSE(boolOf(std::int64_t{0}));
  EXPECT_TRUE(boolOf(0.25));
  EXPECT_FALSE(boolOf(0.0));
  for (const char* text : {"YES", "yes", "True", "true", "1", "-1", "+7"}) EXPECT_TRUE(boolOf(text)) << text;
  for (const char* text : {"NO", "false", "0", "", "truely", "yes ", "1x", "on"})
    EXPECT_FALSE(boolOf(std::string(text))) << text;
}

TEST_F(UserDefaultsTest, anIntegerIsTakenFromNumbersAndFromTextsThatSpellIt) {
  EXPECT_EQ(integerOf(std::int64_t{-42}), -42);
  EXPECT_EQ(integerOf(true), 1);
  EXPECT_EQ(integerOf(false), 0);
  EXPECT_EQ(integerOf(std::string("60")), 60);
  EXPECT_EQ(integerOf(std::string("+60")), 60);
  EXPECT_EQ(integerOf(std::string("-5")), -5);
  for (const char* text : {"", "sixty", "60x", "+", "+-5", "99999999999999999999"})
    EXPECT_EQ(integerOf(std::string(text)), 0) << text;
}

TEST_F(UserDefaultsTest, aRealNumberLosesItsFractionAndIsHeldInRange) {
  EXPECT_EQ(integerOf(59.99), 59);
  EXPECT_EQ(integerOf(-59.99), -59);
  EXPECT_EQ(integerOf(1e30), largestInteger);
  EXPECT_EQ(integerOf(-1e30), smallest);
  EXPECT_EQ(integerOf(9223372036854775808.0), largestInteger);
  EXPECT_EQ(integerOf(-9223372036854775808.0), smallest);
  EXPECT_EQ(integerOf(std::nan("")), 0);
}

TEST_F(UserDefaultsTest, otherTypesReadAsFalseAndZero) {
  for (const StoredValue& value : {StoredValue(Date{1.0}), StoredValue(std::vector<std::string>{"1"}),
                                   StoredValue(StoredDictionary{{"a", Date{1.0}}})}) {
    EXPECT_FALSE(boolOf(value));
    EXPECT_EQ(integerOf(value), 0);
  }
}

TEST_F(UserDefaultsTest, textsDatesAndArraysAreReadFromTheirOwnTypeOnly) {
  store.values["text"] = std::string("C");
  store.values["date"] = Date{7.0};
  store.values["array"] = std::vector<std::string>{"a", "b"};
  EXPECT_EQ(stringForKey(store, "text"), "C");
  EXPECT_EQ(dateForKey(store, "date"), Date{7.0});
  EXPECT_EQ(stringArrayForKey(store, "array"), (std::vector<std::string>{"a", "b"}));
  EXPECT_FALSE(stringForKey(store, "date").has_value());
  EXPECT_FALSE(dateForKey(store, "text").has_value());
  EXPECT_TRUE(stringArrayForKey(store, "text").empty());
}

}  // namespace
}  // namespace vorli
