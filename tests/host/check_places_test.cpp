#include "config/check/places.h"

#include <gtest/gtest.h>

namespace {

using lm::check::Place;
using lm::check::Places;

void expect_place(Place place, int line, int column) {
  EXPECT_EQ(place.line, line);
  EXPECT_EQ(place.column, column);
}

TEST(CheckPlaces, OfKeysAndValuesAreCountedFromOne) {
  const std::string text = "{\"a\": 1,\n  \"b\" : [true, {\"c\": \"d\"}]}";
  const Places places(text);
  expect_place(places.ofKey("a"), 1, 2);
  expect_place(places.ofValue("a"), 1, 7);
  expect_place(places.ofKey("b"), 2, 3);
  expect_place(places.ofValue("b"), 2, 9);
  expect_place(places.ofValue("b[0]"), 2, 10);
  expect_place(places.ofValue("b[1]"), 2, 16);
  expect_place(places.ofKey("b[1].c"), 2, 17);
  expect_place(places.ofValue("b[1].c"), 2, 22);
  expect_place(places.ofValue("b[2]"), 0, 0);
}

TEST(CheckPlaces, IgnoreTheContentsOfStringsAndComments) {
  const std::string text = "// {\"a\": 0}\n{ /* \" */ \"x\\\"}\": \"{\\\\\", // ]\n \"a\": 5 }";
  const Places places(text);
  expect_place(places.ofValue("x\"}"), 2, 19);
  expect_place(places.ofValue("a"), 3, 7);
}

TEST(CheckPlaces, CountCharactersNotBytes) {
  const std::string text = "{\"t\xC3\xBCr\": \"\xE2\x82\xAC\", \"a\": 1}";
  const Places places(text);
  expect_place(places.ofValue("t\xC3\xBCr"), 1, 9);
  expect_place(places.ofValue("a"), 1, 19);
}

TEST(CheckPlaces, DoNotCountAByteOrderMark) {
  const std::string text = "\xEF\xBB\xBF{\"a\": 1}";
  expect_place(Places(text).ofValue("a"), 1, 7);
}

TEST(CheckPlaces, OfADuplicateKeyAreThoseOfTheLast) {
  const std::string text = "{\"a\": 1, \"b\": {\"a\": 2, \"\\u0061\": 3}, \"a\": 4}";
  const Places places(text);
  ASSERT_EQ(places.repeats().size(), 2U);
  EXPECT_EQ(places.repeats()[0].path, "b.a");
  expect_place(places.repeats()[0].place, 1, 24);
  expect_place(places.repeats()[0].before, 1, 16);
  EXPECT_EQ(places.repeats()[1].path, "a");
  expect_place(places.ofValue("a"), 1, 43);
}

TEST(CheckPlaces, TruncatedTextEndsTheSearch) {
  for (const std::string text :
       {"", "{", "{\"a\"", "{\"a\": [", "{\"a\": \"\\", "{\"a\": [1, /*", "[,]", "{,}", "\xEF\xBB\xBF"}) {
    const Places places(text);
    EXPECT_TRUE(places.repeats().empty()) << text;
  }
}

}  // namespace
