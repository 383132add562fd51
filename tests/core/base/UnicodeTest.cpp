#include "core/base/Unicode.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

TEST(Unicode, equalsUnderCanonicalEquivalence) {
  struct Case {
    const char* a;
    const char* b;
    bool equal;
  };
  const Case cases[]{
      {"caf\u00e9", "cafe\u0301", true},         // precomposed and decomposed
      {"\u212b", "\u00c5", true},                // the angstrom sign is an A with a ring
      {"\u212a", "K", true},                     // the Kelvin sign is an ASCII letter
      {"a\u0323\u0307", "a\u0307\u0323", true},  // marks in either order
      {"\ud55c", "\u1112\u1161\u11ab", true},    // Hangul
      {"caf\u00e9", "cafe", false},
      {"\ufb01", "fi", false},  // a ligature is only compatible
      {"A", "a", false},
      {"caf\xe9", "cafe\u0301", false},  // not UTF-8
      {"\xff", "\xfe", false},
      {"\xff", "\xff", true},
      {"", "", true},
  };
  for (const Case& c : cases) EXPECT_EQ(canonicallyEqual(c.a, c.b), c.equal) << c.a << " / " << c.b;
}

TEST(Unicode, findsWhereAPrefixEnds) {
  struct Case {
    const char* text;
    const char* prefix;
    std::optional<std::size_t> length;
  };
  const Case cases[]{
      {"/home/ann/x", "/home/ann", 9},
      {"/home/ann", "/home/ann/x", std::nullopt},
      {"/caf\u00e9/x", "/cafe\u0301", 6},
      {"/cafe\u0301/x", "/caf\u00e9", 7},
      {"/cafe\u0301/x", "/caf\u00e9/", 8},
      {"/caf\u00e9/x", "/cafe\u0300", std::nullopt},
      {"/caf\xe9/x", "/caf\u00e9", std::nullopt},
      {"", "\u00e9", std::nullopt},
  };
  for (const Case& c : cases) EXPECT_EQ(canonicalPrefixLength(c.text, c.prefix), c.length) << c.text;
}

}  // namespace
}  // namespace spacemint
