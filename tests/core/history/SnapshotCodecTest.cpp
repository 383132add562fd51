#include "core/history/SnapshotCodec.h"

#include "core/host/AtomicFile.h"
#include "support/ChildProcess.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <filesystem>
#include <random>
#include <tuple>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using SnapshotCodec::Fault;
using testing::HasSubstr;

template <class Integer>
constexpr Integer highest = std::numeric_limits<Integer>::max();
constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr Date day{1'700'000'000s};

// The keys of an object with their values as JSON texts.
class Fields {
 public:
  Fields(std::initializer_list<std::pair<std::string, std::string>> fields) : fields_(fields) {}

  // Puts the value in the place of an earlier one, or removes that where there is none.
  Fields with(const std::string& key, const std::string& value) const {
    Fields changed = *this;
    std::erase_if(changed.fields_, [&](const auto& field) { return field.first == key; });
    if (!value.empty()) changed.fields_.emplace_back(key, value);
    return changed;
  }
  std::string text() const {
    std::string text;
    for (const auto& [key, value] : fields_) text += (text.empty() ? "{\"" : ",\"") + key + "\":" + value;
    return text + "}";
  }

 private:
  std::vector<std::pair<std::string, std::string>> fields_;
};

const Fields someNode{{"name", R"("n")"}, {"size", "1"}};
const Fields someSnapshot{{"date", "0"},       {"duration", "2.5"}, {"root", someNode.text()},
                          {"fileCount", "3"},  {"volumeFree", "4"}, {"volumeTotal", "5"},
                          {"minNodeSize", "6"}};

Snapshot theSnapshot() {
  return {.date = Date{SnapshotCodec::epoch},
          .duration = 2.5s,
          .root = {.name = "n", .size = 1},
          .fileCount = 3,
          .volumeFree = 4,
          .volumeTotal = 5,
          .minNodeSize = 6,
          .format = std::nullopt};
}

// A document with that node as the second child of its root.
std::string documentAround(const std::string& node) {
  const std::string children = "[" + someNode.text() + "," + node + "]";
  return someSnapshot.with("root", someNode.with("children", children).text()).text();
}

std::string encoded(const Snapshot& snapshot) {
  return SnapshotCodec::encode(snapshot).value_or("an error");
}

// The fault and what was said of it; fault 0 for a document that can be read.
std::pair<Fault, std::string> faultOf(std::string_view document) {
  const auto snapshot = SnapshotCodec::decode(document);
  if (snapshot) return {};
  EXPECT_EQ(snapshot.error().domain, SnapshotCodec::domain);
  return {Fault{snapshot.error().code}, snapshot.error().message};
}

const std::pair<Fault, std::string> fine{};

class RandomSnapshot {
 public:
  explicit RandomSnapshot(unsigned seed) : random_(seed) {}

  Snapshot make() {
    // As far from 2001 as dates are exact to the microsecond.
    const auto date = [&] {
      return Date{SnapshotCodec::epoch} + below(1ULL << 52U) * 1us * (flag() ? 1 : -1);
    };
    Snapshot result{.date = date(),
                    .duration = Seconds{std::bit_cast<double>(random_())},
                    .root = node(0),
                    .fileCount = count(),
                    .volumeFree = count(),
                    .volumeTotal = count(),
                    .minNodeSize = count()};
    if (!std::isfinite(result.duration.count())) result.duration = Seconds{0.1};
    if (flag()) result.eventID = flag() ? random_() : highest<std::uint64_t>;
    if (flag()) result.fullScanDate = date();
    if (flag()) result.format = flag() ? std::nullopt : std::optional{any()};
    result.coverage = coverage();
    return result;
  }

 private:
  std::int64_t below(std::uint64_t limit) { return static_cast<std::int64_t>(random_() % limit); }
  bool flag() { return below(2) == 0; }
  std::int64_t any() {
    const std::array choices{std::bit_cast<std::int64_t>(random_()), below(1'000), highest<std::int64_t>,
                             lowest};
    return choices.at(static_cast<std::size_t>(below(choices.size())));
  }
  std::int64_t count() { return any() & highest<std::int64_t>; }
  std::string name() {
    constexpr std::array<std::string_view, 12> parts{
        "a",         "/",       "\\",     "\"",     "\n\t\r\b\f", {"\0\x1f\x7f", 3},
        "caf\u00e9", "e\u0301", "\u2028", "\uffff", "\U0010ffff", "</x>"};
    std::string text;
    for (auto i = below(6); i > 0; --i) text += parts.at(static_cast<std::size_t>(below(parts.size())));
    return text;
  }
  Coverage coverage() {
    Coverage result;
    for (auto i = below(3); i > 0; --i) {
      result.places.push_back(
          {{name(), name(), name(), random_()}, count(), count(), count(), count(), count()});
    }
    for (auto i = below(4); i > 0; --i) {
      result.leftOut.push_back({name(), static_cast<LeftOut::Kind>(below(5))});
      if (flag()) result.leftOut.back().created = dateFromUnixSeconds(any());
      if (flag()) result.leftOut.back().size = count();
    }
    for (auto i = below(4); i > 0; --i) result.unread.paths.push_back(name());
    for (auto i = below(4); i > 0; --i) result.excludes.push_back(name());
    result.unread.folders = flag() ? count() : 0;
    result.unread.entries = flag() ? count() : 0;
    return result;
  }
  Node node(int depth) {
    Node result{.name = name(),
                .size = count(),
                .isDirectory = flag(),
                .fileCount = flag() ? count() : 0,
                .isWorktree = flag()};
    if (flag()) result.modified = dateFromUnixSeconds(any());
    for (auto i = depth < 5 ? below(5) : 0; i > 0; --i) result.children.push_back(node(depth + 1));
    return result;
  }

  std::mt19937_64 random_;
};

TEST(SnapshotCodec, readsBackWhatItWrote) {
  for (unsigned seed = 1; seed <= 150; ++seed) {
    const Snapshot snapshot = RandomSnapshot{seed}.make();
    const std::string document = encoded(snapshot);
    ASSERT_EQ(SnapshotCodec::decode(document), snapshot) << "seed " << seed << ": " << document;
  }
}

TEST(SnapshotCodec, writesJustThis) {
  const Snapshot snapshot{
      .date = Date{1'700'000'000'250'001us},
      .duration = 12.5s,
      .root = {.name = "/home/ann",
               .size = 30,
               .isDirectory = true,
               .children =
                   {{.name = "a\"\\/\n\x01\xc3\xa9\x7f", .size = 20, .modified = Date{1'600'000'000s}},
                    {.name = "empty", .size = 10, .isDirectory = true, .fileCount = 1, .isWorktree = true}},
               .fileCount = 2},
      .fileCount = 2,
      .volumeFree = -1,
      .volumeTotal = highest<std::int64_t>,
      .minNodeSize = 20'000'000,
      .eventID = highest<std::uint64_t>,
      .fullScanDate = Date{SnapshotCodec::epoch} - 1s};
  EXPECT_EQ(
      encoded(snapshot),
      R"({"date":721692800.250001,"duration":12.5,"fileCount":2,"volumeFree":-1,)"
      R"("volumeTotal":9223372036854775807,"minNodeSize":20000000,"eventID":18446744073709551615,)"
      R"("fullScanDate":-1,"format":3,"root":{"name":"\/home\/ann","size":30,"isDirectory":true,"fileCount":2,)"
      R"("children":[{"name":"a\"\\\/\n\u0001)"
      "\u00e9\x7f"
      R"(","size":20,"modified":1600000000},)"
      R"({"name":"empty","size":10,"isDirectory":true,"fileCount":1,"isWorktree":true}]}})");
}

TEST(SnapshotCodec, writesModifiedInWholeSecondsHalvesAwayFromZero) {
  const std::pair<Date, Date> cases[]{
      {day + 600ms, day + 1s},
      {day + 400ms, day},
      {day + 500ms, day + 1s},
      {day + 499'999us, day},
      {Date{-500ms}, Date{-1s}},
      {Date{-499'999us}, Date{}},
      {Date{-1'500ms}, Date{-2s}},
      {Date::max(), Date{9'223'372'036'854s}},
      {Date::min(), Date{-9'223'372'036'854s}},
  };
  for (const auto& [modified, read] : cases) {
    Snapshot snapshot = theSnapshot();
    snapshot.root.modified = modified;
    EXPECT_EQ(SnapshotCodec::decode(encoded(snapshot)).value().root.modified, read)
        << modified.time_since_epoch();
  }
}

TEST(SnapshotCodec, replacesWhatIsNotUtf8InNames) {
  const std::pair<std::string, const char*> cases[]{{"a\xff"
                                                     "b",
                                                     "a\uFFFDb"},
                                                    {"\xc3", "\uFFFD"},
                                                    {"caf\xe9/", "caf\uFFFD/"},
                                                    {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"}};
  for (const auto& [name, read] : cases) {
    Snapshot snapshot = theSnapshot();
    snapshot.root.name = name;
    EXPECT_EQ(SnapshotCodec::decode(encoded(snapshot)).value().root.name, read);
  }
}

TEST(SnapshotCodec, readsWhatOthersMayWrite) {
  Snapshot fractional = theSnapshot();
  fractional.root.modified = Date{1'500ms};
  Snapshot far = theSnapshot();
  far.root.modified = Date{9'223'372'036'854s};
  const std::string deep = "{\"x\":[" + std::string(9'000, '[') + std::string(9'000, ']') + ",1e5]}";
  const std::string bulky = "\"" + std::string(3'000'000, 'x') + "\"";
  const std::pair<std::string, Snapshot> cases[]{
      {someSnapshot.text(), theSnapshot()},
      {"\xef\xbb\xbf \t\r\n" + someSnapshot.text() + " \n", theSnapshot()},
      {someSnapshot.with("root", R"({"size" : 1 , "name" : "\u006e"})").text(), theSnapshot()},
      {someSnapshot.with("date", "0.0").with("duration", "25e-1").text(), theSnapshot()},
      {someSnapshot.with("root", someNode.with("modified", "1.5").text()).text(), fractional},
      {someSnapshot.with("root", someNode.with("modified", "1e300").text()).text(), far},
      {someSnapshot.with("root", someNode.with("children", "[]").with("isDirectory", "false").text()).text(),
       theSnapshot()},
      {someSnapshot.with("root", someNode.with("later", deep).text())
           .with("\\u0000", deep)
           .with("x", bulky)
           .text(),
       theSnapshot()},
      {someSnapshot.with("x", R"({"date":"?","root":[{"size":null}],"x":1,"x":2})").with("y", "null").text(),
       theSnapshot()},
      {someSnapshot.with("children", "1").with("root", someNode.with("date", "true").text()).text(),
       theSnapshot()},
  };
  for (const auto& [document, snapshot] : cases)
    EXPECT_EQ(SnapshotCodec::decode(document), snapshot) << document.substr(0, 300);
}

struct Key {
  const char* name;
  bool isRequired;
  const char* kind;
  std::vector<std::string> right;
};
const Key snapshotKeys[]{
    {"date", true, "a number", {"1", "1.5"}},
    {"duration", true, "a number", {"1", "1.5"}},
    {"root", true, "an object", {"{}"}},
    {"fileCount", true, "an integer", {"1"}},
    {"volumeFree", true, "an integer", {"1"}},
    {"volumeTotal", true, "an integer", {"1"}},
    {"minNodeSize", true, "an integer", {"1"}},
    {"eventID", false, "an integer", {"1"}},
    {"fullScanDate", false, "a number", {"1", "1.5"}},
    {"format", false, "an integer", {"1"}},
    {"places", false, "an array", {"[]"}},
    {"leftOut", false, "an array", {"[]"}},
    {"unread", false, "an array", {"[]"}},
    {"unreadFolders", false, "an integer", {"1"}},
    {"unreadEntries", false, "an integer", {"1"}},
    {"excludes", false, "an array", {"[]"}},
};
const Key nodeKeys[]{
    {"name", true, "a string", {R"("x")"}},        {"size", true, "an integer", {"1"}},
    {"isDirectory", false, "a boolean", {"true"}}, {"modified", false, "a number", {"1", "1.5"}},
    {"children", false, "an array", {"[]"}},       {"fileCount", false, "an integer", {"1"}},
    {"isWorktree", false, "a boolean", {"true"}},
};
const Key leftOutKeys[]{
    {"path", true, "a string", {R"("x")"}},
    {"kind", true, "a string", {R"("x")"}},
    {"created", false, "a number", {"1", "1.5"}},
    {"size", false, "an integer", {"1"}},
};

// Every value of a wrong kind, none at all, and two for one key of an object at `place`.
template <class Document>
void expectFaults(const Key& key, const Fields& object, const std::string& place, Document document) {
  const std::string subject = place + ": \"" + key.name + "\" ";
  for (const std::string value : {"null", "true", R"("x")", "1", "1.5", "[]", "{}"}) {
    if (std::ranges::count(key.right, value) > 0) continue;
    const auto fault = faultOf(document(object.with(key.name, value).text()));
    EXPECT_EQ(fault, std::pair(Fault::wrongType, subject + "is not " + key.kind)) << value;
  }
  const auto missing = std::pair(Fault::missingKey, subject + "is missing");
  EXPECT_EQ(faultOf(document(object.with(key.name, "").text())), key.isRequired ? missing : fine) << subject;

  std::string twice = object.with(key.name, key.right[0] == "{}" ? someNode.text() : key.right[0]).text();
  twice.insert(twice.size() - 1, ",\"" + std::string{key.name} + "\":" + key.right[0]);
  const auto [fault, message] = faultOf(document(twice));
  EXPECT_EQ(fault, Fault::duplicateKey) << twice;
  EXPECT_THAT(message, HasSubstr(std::string{key.name} + "\" is given twice"));
}

TEST(SnapshotCodec, refusesMissingKeysWrongTypesAndKeysGivenTwice) {
  for (const Key& key : snapshotKeys) {
    expectFaults(key, someSnapshot, "snapshot", [](const std::string& text) { return text; });
  }
  for (const Key& key : nodeKeys) {
    expectFaults(key, someNode, key.name == std::string{"name"} ? "root/#1" : "root/n", documentAround);
  }
  const auto leftOut = [](const std::string& items) { return someSnapshot.with("leftOut", items).text(); };
  for (const Key& key : leftOutKeys) {
    expectFaults(key, {{"path", R"("p")"}, {"kind", R"("snapshot")"}, {"later", R"([{"path":1}])"}},
                 "snapshot/leftOut", [&](const std::string& item) { return leftOut("[" + item + "]"); });
  }
  EXPECT_EQ(faultOf(leftOut("[1]")).first, Fault::wrongType);
}

TEST(SnapshotCodec, refusesNumbersOutsideTheirRange) {
  struct Case {
    const char* key;
    const char* value;
    Fault fault;
  };
  const Case ofSnapshot[]{
      {"volumeFree", "9223372036854775807", Fault{}},
      {"volumeFree", "9223372036854775808", Fault::outOfRange},
      {"volumeFree", "-9223372036854775808", Fault{}},
      {"volumeFree", "-9223372036854775809", Fault::outOfRange},
      {"fileCount", "18446744073709551616", Fault::outOfRange},
      {"format", "1e3", Fault::wrongType},
      {"eventID", "18446744073709551615", Fault{}},
      {"eventID", "18446744073709551616", Fault::outOfRange},
      {"eventID", "-1", Fault::outOfRange},
      {"date", "1e300", Fault::outOfRange},
      {"date", "9e12", Fault{}},
      {"fullScanDate", "-9.3e12", Fault::outOfRange},
      {"fullScanDate", "99999999999999999999999", Fault::outOfRange},
      {"duration", "1e300", Fault{}},
      {"duration", "1e999", Fault::outOfRange},
      {"x", "1e999", Fault::outOfRange},
      {"x", "99999999999999999999999", Fault{}},
  };
  const Case ofNode[]{
      {"size", "9223372036854775808", Fault::outOfRange},
      {"size", "-9223372036854775808", Fault{}},
      {"size", "1.0", Fault::wrongType},
      {"fileCount", "-9223372036854775809", Fault::outOfRange},
      {"modified", "-1e300", Fault{}},
  };
  for (const Case& c : ofSnapshot) {
    EXPECT_EQ(faultOf(someSnapshot.with(c.key, c.value).text()).first, c.fault) << c.key << ' ' << c.value;
  }
  for (const Case& c : ofNode) {
    EXPECT_EQ(faultOf(documentAround(someNode.with(c.key, c.value).text())).first, c.fault)
        << c.key << ' ' << c.value;
  }
  EXPECT_EQ(faultOf(someSnapshot.with("format", "9223372036854775808").text()).second,
            "snapshot: \"format\" is out of range");
  for (const double endless : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    Snapshot snapshot = theSnapshot();
    snapshot.duration = Seconds{-endless};
    const auto text = SnapshotCodec::encode(snapshot);
    EXPECT_TRUE(!text && text.error().code == static_cast<int>(Fault::outOfRange));
  }
}

TEST(SnapshotCodec, readsANegativeCountAsNone) {
  Snapshot snapshot = theSnapshot();
  snapshot.root = {.name = "n", .size = lowest, .isDirectory = true, .fileCount = 7};
  snapshot.root.children.push_back({.name = "f", .size = -1});
  snapshot.fileCount = snapshot.volumeFree = snapshot.volumeTotal = snapshot.minNodeSize = lowest;
  const Snapshot read = SnapshotCodec::decode(encoded(snapshot)).value();
  EXPECT_EQ(read.root.size, 0);
  EXPECT_EQ(read.root.fileCount, 7);
  EXPECT_EQ(read.root.children.at(0).size, 0);
  for (const std::int64_t count : {read.fileCount, read.volumeFree, read.volumeTotal, read.minNodeSize})
    EXPECT_EQ(count, 0);
}

TEST(SnapshotCodec, refusesWhatIsNotJson) {
  const std::string document = someSnapshot.text();
  for (const std::string& text :
       {std::string{}, std::string{" \n"}, std::string{"\xef\xbb\xbf"}, std::string{"\xef\xbb"},
        document + "x", document + document, document + std::string(1, '\0'), "\xff\xfe" + document,
        "[" + document, someSnapshot.with("x", "\"\xff\"").text(), someSnapshot.with("\xc3", "1").text(),
        someSnapshot.with("x", "\"\\ud800\"").text(), someSnapshot.with("x", "\"\n\"").text(),
        someSnapshot.with("x", "'1'").text(), someSnapshot.with("x", "01").text(),
        someSnapshot.with("x", "nan").text(), someSnapshot.with("x", "[1,]").text(),
        someSnapshot.with("x", "1 // one").text()}) {
    const auto [fault, message] = faultOf(text);
    EXPECT_TRUE(fault == Fault::notJson || text.starts_with('[')) << text;
    EXPECT_THAT(message, testing::AnyOf(HasSubstr("at byte"), HasSubstr("is not an object"))) << text;
  }
}

TEST(SnapshotCodec, readsOrRefusesADamagedDocument) {
  const Node child = {.name = "caf\u00e9/", .size = 20, .modified = day};
  Snapshot snapshot = theSnapshot();
  snapshot.root = {.name = "/", .size = 30, .isDirectory = true, .children = {child, child}, .fileCount = 2};
  snapshot.eventID = 77;
  const std::string document = encoded(snapshot);
  for (std::size_t length = 0; length < document.size(); ++length) {
    EXPECT_EQ(faultOf(std::string_view{document}.substr(0, length)).first, Fault::notJson) << length;
  }
  int readable = 0;
  for (std::size_t at = 0; at < document.size(); ++at) {
    for (const unsigned flips : {0x01U, 0x02U, 0x04U, 0x08U, 0x10U, 0x20U, 0x40U, 0x80U, 0xffU}) {
      std::string damaged = document;
      damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ flips);
      const auto read = SnapshotCodec::decode(damaged);
      if (read) {
        ++readable;
        EXPECT_EQ(SnapshotCodec::decode(encoded(*read)), *read) << damaged;
      } else {
        EXPECT_NE(read.error().message, "") << damaged;
      }
    }
  }
  EXPECT_GT(readable, 300);  // digits and letters that became others
}

std::string repeated(std::string_view unit, std::size_t count) {
  std::string text;
  while (count-- > 0) text += unit;
  return text;
}

// A document whose root is the uppermost of so many levels, and that tree.
std::string nestedDocument(std::size_t levels) {
  const std::string level = R"({"name":"n","size":1,"children":[)";
  return someSnapshot.with("root", repeated(level, levels - 1) + someNode.text() + repeated("]}", levels - 1))
      .text();
}
Node nestedNode(std::size_t levels) {
  Node node{.name = "n", .size = 1};
  while (--levels > 0) {
    Node above{.name = "n", .size = 1};
    above.children.push_back(std::move(node));
    node = std::move(above);
  }
  return node;
}

TEST(SnapshotCodec, readsAndWritesTreesAsDeepAsTheyMayBe) {
  Snapshot snapshot = theSnapshot();
  snapshot.root = nestedNode(Node::maximumDepth);
  EXPECT_TRUE(SnapshotCodec::decode(nestedDocument(Node::maximumDepth)) == snapshot);
  EXPECT_TRUE(SnapshotCodec::decode(encoded(snapshot)) == snapshot);
  snapshot.root = nestedNode(Node::maximumDepth + 1);
  EXPECT_EQ(SnapshotCodec::encode(snapshot).error().code, static_cast<int>(Fault::tooDeep));
  EXPECT_EQ(faultOf(nestedDocument(Node::maximumDepth + 1)).first, Fault::tooDeep);
  EXPECT_EQ(faultOf(nestedDocument(100'000)).first, Fault::tooDeep);
}

TEST(SnapshotCodec, givesUpEarlyOnADocumentThatOnlyOpens) {
  const std::tuple<const char*, const char*, Fault> cases[]{
      {"", "[", Fault::wrongType},
      {"", R"({"root":)", Fault::tooDeep},
      {"", R"({"x":)", Fault::tooDeep},
      {R"({"x":)", "[", Fault::tooDeep},
      {R"({"x":)", R"([{"root":)", Fault::tooDeep},
      {R"({"date":)", "[", Fault::wrongType},
      {R"({"root":)", R"({"children":[)", Fault::tooDeep},
      {R"({"root":{"x":)", "[", Fault::tooDeep},
      {R"({"root":{"name":)", "[", Fault::wrongType},
      {R"({"root":{"children":[)", "[", Fault::wrongType},
  };
  constexpr std::size_t size = 20'000'000;
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  constexpr long kilobytes = 200'000;  // with what the sanitizers note of every byte and freed block
#else
  constexpr long kilobytes = 10'000;
#endif
  std::string document;
  document.reserve(size + 200'000);
  for (const auto& [opening, unit, wantedFault] : cases) {
    const std::string many = repeated(unit, 10'000);
    document = opening;
    while (document.size() < size) document += many;
    EXPECT_TRUE(support::succeedsInChild([&] {
      rusage before{};
      rusage after{};
      getrusage(RUSAGE_SELF, &before);
      const auto [fault, message] = faultOf(document);
      getrusage(RUSAGE_SELF, &after);
      // A second of the processor and half the document are far more than it takes.
      return fault == wantedFault && message.size() < 1'000 &&
             after.ru_utime.tv_sec - before.ru_utime.tv_sec <= 1 &&
             after.ru_maxrss - before.ru_maxrss < kilobytes;
    })) << opening
        << unit;
  }
}

// Each document that fuzzing ever found is tried in every build.
TEST(SnapshotCorpus, readsTheGoodAndRefusesTheBad) {
  int documents = 0;
  for (const auto& file : std::filesystem::directory_iterator{SPACEMINT_FUZZ_CORPUS "/snapshot"}) {
    const std::string name = file.path().filename();
    const auto bytes = readFile(file.path(), 1'000'000);
    ASSERT_TRUE(bytes) << name;
    EXPECT_EQ(SnapshotCodec::decode(*bytes).has_value(), !name.starts_with("bad-")) << name;
    LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes->data()), bytes->size());
    ++documents;
  }
  EXPECT_GE(documents, 10);
}

}  // namespace
}  // namespace spacemint
