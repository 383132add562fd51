#include "core/base/Translation.h"

#include "core/base/ByteFormat.h"
#include "core/base/DateWords.h"
#include "core/base/Error.h"
#include "core/base/RelativeTime.h"
#include "core/base/TextList.h"
#include "core/host/UserFolders.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <random>
#include <utility>

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

// A folder with a catalogue of Polish, which has three plural forms.
class Catalogue : public testing::Test {
 protected:
  Catalogue() {
    const std::string folder = home_ / "pl/LC_MESSAGES";
    support::writeText(folder + "/pl.po",
                       "msgid \"\"\nmsgstr \"Language: pl\\nContent-Type: text/plain; charset=UTF-8\\n\"\n"
                       "\"Plural-Forms: nplurals=3; plural=(n==1 ? 0 : n%10>=2 && n%10<=4 && (n%100<10 || "
                       "n%100>=20) ? 1 : 2);\\n\"\n\n"
                       "msgid \"just now\"\nmsgstr \"przed chwilą\"\n\n"
                       "msgctxt \"month\"\nmsgid \"May\"\nmsgstr \"maj\"\n\n"
                       "msgid \"{count} file\"\nmsgid_plural \"{count} files\"\nmsgstr[0] \"{count} plik\"\n"
                       "msgstr[1] \"{count} pliki\"\nmsgstr[2] \"{count} plików\"\n");
    // An Arabic one without texts.
    const std::string arabic = home_ / "ar/LC_MESSAGES";
    support::writeText(arabic + "/ar.po",
                       "msgid \"\"\nmsgstr \"Language: ar\\nContent-Type: text/plain; charset=UTF-8\\n\"\n");
    made_ = compile(folder + "/pl.po") && compile(arabic + "/ar.po");
  }
  ~Catalogue() override {
    setLanguage("C", "");
    setUpTranslation(home_.path());
  }

  static bool compile(const std::string& file) {
    return std::system(("cd $(dirname " + file + ") && msgfmt -o spacemint.mo " + file).c_str()) == 0;
  }
  static void setLanguage(const char* locale, const char* languages) {
    setenv("LC_ALL", locale, 1);
    setenv("LANGUAGE", languages, 1);
  }

  support::TemporaryFolder home_;
  bool made_ = false;
};

TEST_F(Catalogue, SpeaksTheLanguageOfTheLocale) {
  ASSERT_TRUE(made_);
  setLanguage("pl_PL.UTF-8", "");
  setUpTranslation(home_.path());
  EXPECT_EQ(sentenceLanguage(), "pl");
  EXPECT_EQ(i18nc("month", "May"), "maj");
  EXPECT_EQ(i18n("May"), "May");
  for (const auto& [count, text] : {std::pair{1, "1 plik"}, {3, "3 pliki"}, {12'000, "12\u00a0000 plików"}})
    EXPECT_EQ(counted(count, "{count} file", "{count} files", "pl_PL"), text);
  const Date now{std::chrono::days{20'000}};
  EXPECT_EQ(RelativeTime::string(now, now, "en_US"), "przed chwilą");
  EXPECT_EQ(RelativeTime::age(now - std::chrono::days{2}, now, "en_US"), "2 dni temu");
  EXPECT_EQ(dateInWords(now, "dMMM", "en_US"), "4 paź");
  for (const auto& [english, text] : {std::pair{"5 months ago", "5 miesięcy temu"},
                                      {"About an hour ago", "1 godzinę temu"},
                                      {"Less than a second ago", "przed chwilą"},
                                      {"5 fortnights ago", "5 fortnights ago"},
                                      {"9876543210 days ago", "9876543210 days ago"},
                                      {" ago", " ago"},
                                      {"Never", "Never"}})
    EXPECT_EQ(RelativeTime::translated(english), text);
  EXPECT_EQ(listed({"a", "b", "c"}), "a, b i c");
  EXPECT_EQ(userLocale(), "pl_PL");
  setLanguage("en_US.UTF-8", "pl");
  setUpTranslation(home_.path());
  EXPECT_EQ(sentenceLanguage(), "pl");
  EXPECT_EQ(userLocale(), "pl");
}

// Without the mark, a line would begin at the left if the first letter is that of a name.
TEST_F(Catalogue, MarksTheDirectionInAWindowOnly) {
  ASSERT_TRUE(made_);
  setLanguage("en_US.UTF-8", "ar");
  setUpTranslation(home_.path());
  EXPECT_EQ(i18n("{a} of {b}", {{"a", "~/x"}, {"b", "2"}}), "\u200f\u2068~/x\u2069 of \u20682\u2069");
  EXPECT_EQ(facts({"", "a", "b"}), "\u200f\u2068a\u2069 · \u2068b\u2069");
  setUpTranslation(home_.path(), ShownIn::terminal);
  EXPECT_EQ(sentences({"A.", "", "B."}), "A. B.");
  EXPECT_EQ(fillIn("\u200f\u2066{a}\u2069…", {{"a", "\u2066x"}}), "\u2066x…");
}

TEST_F(Catalogue, IsEnglishWithoutACatalogueOfTheLanguage) {
  for (const auto& [locale, languages] : {std::pair{"de_DE.UTF-8", ""}, {"C", "pl"}, {"POSIX", ""}}) {
    setLanguage(locale, languages);
    setUpTranslation(home_.path());
    EXPECT_EQ(sentenceLanguage(), "en");
    EXPECT_EQ(counted(1'234, "{count} file", "{count} files", "de_DE"), "1.234 files");
    EXPECT_EQ(systemError("x", ENOENT).message, "x: No such file or directory");
    EXPECT_EQ(listed({"a", "b", "c"}), "a, b and c");
  }
}

}  // namespace

}  // namespace spacemint
