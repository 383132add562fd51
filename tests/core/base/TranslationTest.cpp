#include "core/base/Translation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace spacemint {

namespace {

TEST(Translation, PutsValuesIntoTheirPlacesOnce) {
  EXPECT_EQ(fillIn("{size} in {place}", {{"place", "{size}"}, {"size", "1 GB"}}), "1 GB in {size}");
  EXPECT_EQ(fillIn("{a}{b} {", {{"b", "2"}}), "{a}2 {");
  EXPECT_EQ(fillIn("{{a}}}", {{"a", ""}}), "{}}");
  std::mt19937 random{7};
  for (int round = 0; round < 2'000; ++round) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = "{}ab"[random() % 4];
    EXPECT_EQ(fillIn(text, {}), text);
    EXPECT_EQ(fillIn(text, {{"a", "{a}"}, {"b", "{b}"}, {"", "{}"}}), text);
  }
}

}  // namespace

}  // namespace spacemint
