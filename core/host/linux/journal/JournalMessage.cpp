#include "core/host/linux/journal/JournalMessage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace spacemint {

namespace {

using namespace JournalMessage;

constexpr std::string_view header = "spacemint-journal 1";
constexpr std::string_view end = "end";

constexpr std::array<std::pair<JournalAbsence, std::string_view>, 10> reasonWords{{
    {JournalAbsence::notRecording, "not-recording"},
    {JournalAbsence::settingUp, "setting-up"},
    {JournalAbsence::olderThanSession, "older-than-session"},
    {JournalAbsence::fromTheFuture, "from-the-future"},
    {JournalAbsence::eventsLost, "events-lost"},
    {JournalAbsence::timedOut, "timed-out"},
    {JournalAbsence::rootReplaced, "root-replaced"},
    {JournalAbsence::unmounted, "unmounted"},
    {JournalAbsence::tooManyChanges, "too-many-changes"},
    {JournalAbsence::failed, "failed"},
}};

// A message is a row of fields, each ended by a NUL byte, which no path has.
class Fields {
 public:
  Fields() { add(header); }

  Fields& add(std::string_view field) {
    bytes_ += field;
    bytes_ += '\0';
    return *this;
  }
  Fields& add(std::uint64_t number) { return add(std::string_view{std::to_string(number)}); }
  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) { valid_ = text() == header; }

  std::string_view text() {
    const std::size_t length = rest_.find('\0');
    if (length == std::string_view::npos) {
      valid_ = false;
      return {};
    }
    const std::string_view field = rest_.substr(0, length);
    rest_.remove_prefix(length + 1);
    return field;
  }

  std::uint64_t number() {
    const std::string_view digits = text();
    std::uint64_t value = 0;
    const auto [read, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    valid_ = valid_ && error == std::errc{} && read == digits.data() + digits.size();
    return value;
  }

  std::vector<std::string> texts(std::uint64_t count) {
    std::vector<std::string> fields;
    while (valid_ && fields.size() < count) fields.emplace_back(text());
    return fields;
  }

  // Whether all was as expected, up to the very end.
  bool isWhole() const { return valid_ && rest_.empty(); }

 private:
  std::string_view rest_;
  bool valid_ = true;
};

std::string_view wordOf(JournalAbsence reason) {
  return std::ranges::find(reasonWords, reason, &decltype(reasonWords)::value_type::first)->second;
}

}  // namespace

std::string JournalMessage::encode(const Request& request) {
  Fields fields;
  if (const auto* id = std::get_if<IdRequest>(&request)) {
    fields.add("id").add(std::string_view{id->root});
  } else {
    const auto& changes = std::get<ChangesRequest>(request);
    const auto milliseconds = std::max(changes.timeout.count(), std::chrono::milliseconds::rep{0});
    fields.add("changes").add(changes.since).add(static_cast<std::uint64_t>(milliseconds));
    fields.add(std::string_view{changes.root});
  }
  return fields.add(end).take();
}

std::optional<Request> JournalMessage::decodeRequest(std::string_view bytes) {
  Reader reader{bytes};
  const std::string_view kind = reader.text();
  Request request;
  if (kind == "id") {
    request = IdRequest{std::string{reader.text()}};
  } else if (kind == "changes") {
    ChangesRequest changes{.since = reader.number(), .root = {}};
    // An hour is more than anybody waits.
    changes.timeout = std::chrono::milliseconds{std::min<std::uint64_t>(reader.number(), 3'600'000)};
    changes.root = reader.text();
    request = std::move(changes);
  } else {
    return std::nullopt;
  }
  if (reader.text() != end || !reader.isWhole()) return std::nullopt;
  return request;
}

std::string JournalMessage::encodeId(std::uint64_t id) {
  return Fields{}.add("id").add(id).add(end).take();
}

std::optional<std::uint64_t> JournalMessage::decodeId(std::string_view bytes) {
  Reader reader{bytes};
  if (reader.text() != "id") return std::nullopt;
  const std::uint64_t id = reader.number();
  if (reader.text() != end || !reader.isWhole()) return std::nullopt;
  return id;
}

std::string JournalMessage::encodeAnswer(const Answer& answer) {
  Fields fields;
  if (!answer) return fields.add("absent").add(wordOf(answer.error())).add(end).take();
  fields.add("changes").add(answer->directories.size()).add(answer->trees.size());
  for (const std::string& path : answer->directories) fields.add(std::string_view{path});
  for (const std::string& path : answer->trees) fields.add(std::string_view{path});
  return fields.add(end).take();
}

std::optional<Answer> JournalMessage::decodeAnswer(std::string_view bytes) {
  Reader reader{bytes};
  const std::string_view kind = reader.text();
  Answer answer;
  if (kind == "absent") {
    const auto reason =
        std::ranges::find(reasonWords, reader.text(), &decltype(reasonWords)::value_type::second);
    // A reason that a later version has.
    answer = std::unexpected(reason != reasonWords.end() ? reason->first : JournalAbsence::failed);
  } else if (kind == "changes") {
    const std::uint64_t directories = reader.number();
    const std::uint64_t trees = reader.number();
    answer->directories = reader.texts(directories);
    answer->trees = reader.texts(trees);
  } else {
    return std::nullopt;
  }
  if (reader.text() != end || !reader.isWhole()) return std::nullopt;
  return answer;
}

}  // namespace spacemint
