#include "core/host/linux/journal/JournalMessage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace spacemint {

namespace {

using namespace JournalMessage;

constexpr std::string_view messageHeader = "spacemint-journal 1";
constexpr std::string_view end = "end";

constexpr std::array<std::pair<JournalError, std::string_view>, 11> errorWords{{
    {JournalError::notRecording, "not-recording"},
    {JournalError::settingUp, "setting-up"},
    {JournalError::olderThanSession, "older-than-session"},
    {JournalError::fromTheFuture, "from-the-future"},
    {JournalError::eventsLost, "events-lost"},
    {JournalError::timedOut, "timed-out"},
    {JournalError::rootReplaced, "root-replaced"},
    {JournalError::unmounted, "unmounted"},
    {JournalError::tooManyChanges, "too-many-changes"},
    {JournalError::unreportedChanges, "unreported-changes"},
    {JournalError::failed, "failed"},
}};

// A message is a sequence of fields. Each ends with a NUL byte, which no path contains.
class Fields {
 public:
  Fields() { add(messageHeader); }

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
  explicit Reader(std::string_view bytes) : rest_(bytes) { valid_ = text() == messageHeader; }

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

  // Whether every field had the expected form and nothing follows the last one.
  bool isWhole() const { return valid_ && rest_.empty(); }

 private:
  std::string_view rest_;
  bool valid_ = true;
};

std::string_view wordOf(JournalError error) {
  return std::ranges::find(errorWords, error, &decltype(errorWords)::value_type::first)->second;
}

}  // namespace

std::string JournalMessage::encode(const Request& request) {
  Fields fields;
  const JournalQuery& query = request.query;
  if (request.kind == Kind::id) {
    fields.add("id");
  } else {
    const auto milliseconds = std::max(query.timeout.count(), std::chrono::milliseconds::rep{0});
    fields.add("changes").add(query.since).add(static_cast<std::uint64_t>(milliseconds));
  }
  return fields.add(std::string_view{query.root}).add(end).take();
}

std::optional<Request> JournalMessage::decodeRequest(std::string_view bytes) {
  Reader reader{bytes};
  const std::string_view kind = reader.text();
  Request request;
  if (kind == "changes") {
    request.kind = Kind::changes;
    request.query.since = reader.number();
    // No client waits longer than an hour.
    request.query.timeout = std::chrono::milliseconds{std::min<std::uint64_t>(reader.number(), 3'600'000)};
  } else if (kind != "id") {
    return std::nullopt;
  }
  request.query.root = reader.text();
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
    const auto* error =
        std::ranges::find(errorWords, reader.text(), &decltype(errorWords)::value_type::second);
    // A later version may have errors that this one does not know.
    answer = std::unexpected(error != errorWords.end() ? error->first : JournalError::failed);
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
