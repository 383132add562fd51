#include "core/host/linux/journal/JournalMessage.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
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
  Fields& add(std::integral auto number) { return add(std::string_view{std::to_string(number)}); }
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

  template <std::integral Number = std::uint64_t>
  Number number() {
    const std::string_view digits = text();
    Number value = 0;
    const auto [read, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    valid_ = valid_ && error == std::errc{} && read == digits.data() + digits.size();
    return value;
  }

  std::vector<std::string> texts(std::uint64_t count) {
    std::vector<std::string> fields;
    while (valid_ && fields.size() < count) fields.emplace_back(text());
    return fields;
  }

  // A number that must be smaller than `limit`.
  std::uint32_t position(std::size_t limit) {
    const auto value = number<std::uint32_t>();
    require(value < limit);
    return value;
  }

  void require(bool holds) { valid_ = valid_ && holds; }
  bool isValid() const { return valid_; }

  // Whether every field had the expected form and nothing follows the last one.
  bool isWhole() const { return valid_ && rest_.empty(); }

 private:
  std::string_view rest_;
  bool valid_ = true;
};

std::string_view wordOf(JournalError error) {
  return std::ranges::find(errorWords, error, &decltype(errorWords)::value_type::first)->second;
}

// A later version may have errors that this one does not know.
JournalError errorOf(std::string_view word) {
  const auto* error = std::ranges::find(errorWords, word, &decltype(errorWords)::value_type::second);
  return error != errorWords.end() ? error->first : JournalError::failed;
}

std::string encodeError(JournalError error) {
  return Fields{}.add("absent").add(wordOf(error)).add(end).take();
}

using ChangeKind = MeasuredChanges::Kind;
constexpr std::array<std::pair<ChangeKind, std::string_view>, 4> kindWords{
    {{ChangeKind::same, "same"},
     {ChangeKind::below, "below"},
     {ChangeKind::listed, "listed"},
     {ChangeKind::unknown, "unknown"}}};

void add(Fields& fields, const MeasuredChanges::Folder& folder) {
  const auto* kind = std::ranges::find(kindWords, folder.kind, &decltype(kindWords)::value_type::first);
  fields.add(folder.parent).add(kind->second).add(folder.isWorktree ? 1 : 0);
  fields.add(folder.size).add(folder.fileCount).add(std::string_view{folder.name});
}

MeasuredChanges::Folder readFolder(Reader& reader, std::size_t position) {
  MeasuredChanges::Folder folder{.parent = reader.position(std::max<std::size_t>(position, 1))};
  const auto* kind = std::ranges::find(kindWords, reader.text(), &decltype(kindWords)::value_type::second);
  reader.require(kind != kindWords.end());
  if (kind != kindWords.end()) folder.kind = kind->first;
  folder.isWorktree = reader.position(2) == 1;
  folder.size = reader.number<Bytes>();
  folder.fileCount = reader.number<std::int64_t>();
  folder.name = reader.text();
  reader.require(folder.size >= 0 && folder.fileCount >= 0);
  return folder;
}

void add(Fields& fields, const MeasuredChanges::File& file) {
  fields.add(file.folder).add(file.size).add(file.modified).add(std::string_view{file.name});
}

MeasuredChanges::File readFile(Reader& reader, std::size_t folders) {
  MeasuredChanges::File file{.folder = reader.position(folders)};
  file.size = reader.number<Bytes>();
  file.modified = reader.number<std::int64_t>();
  file.name = reader.text();
  reader.require(file.size >= 0);
  return file;
}

}  // namespace

std::string JournalMessage::encode(const Request& request) {
  Fields fields;
  const JournalQuery& query = request.query;
  if (request.kind == Kind::id) {
    fields.add("id");
  } else {
    const auto milliseconds = std::max(query.timeout.count(), std::chrono::milliseconds::rep{0});
    fields.add(request.kind == Kind::totals ? "totals" : "changes").add(query.since).add(milliseconds);
  }
  if (request.kind == Kind::totals) fields.add(query.minNodeSize).add(query.folderLimit);
  return fields.add(std::string_view{query.root}).add(end).take();
}

std::optional<Request> JournalMessage::decodeRequest(std::string_view bytes) {
  Reader reader{bytes};
  const std::string_view kind = reader.text();
  Request request;
  if (kind == "changes" || kind == "totals") {
    request.kind = kind == "totals" ? Kind::totals : Kind::changes;
    request.query.since = reader.number();
    // No client waits longer than an hour.
    request.query.timeout = std::chrono::milliseconds{std::min<std::uint64_t>(reader.number(), 3'600'000)};
  } else if (kind != "id") {
    return std::nullopt;
  }
  if (request.kind == Kind::totals) {
    request.query.minNodeSize = reader.number<Bytes>();
    request.query.folderLimit = reader.number<std::size_t>();
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
  if (!answer) return encodeError(answer.error());
  Fields fields;
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
    answer = std::unexpected(errorOf(reader.text()));
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

std::string JournalMessage::encodeMeasured(const MeasuredAnswer& answer) {
  if (!answer) return encodeError(answer.error());
  Fields fields;
  fields.add("totals").add(answer->folders.size()).add(answer->files.size());
  for (const MeasuredChanges::Folder& folder : answer->folders) add(fields, folder);
  for (const MeasuredChanges::File& file : answer->files) add(fields, file);
  return fields.add(end).take();
}

std::optional<MeasuredAnswer> JournalMessage::decodeMeasured(std::string_view bytes) {
  Reader reader{bytes};
  const std::string_view kind = reader.text();
  MeasuredAnswer answer;
  if (kind == "absent") {
    answer = std::unexpected(errorOf(reader.text()));
  } else if (kind == "totals") {
    const std::uint64_t folders = reader.number();
    const std::uint64_t files = reader.number();
    while (reader.isValid() && answer->folders.size() < folders) {
      answer->folders.push_back(readFolder(reader, answer->folders.size()));
    }
    while (reader.isValid() && answer->files.size() < files) {
      answer->files.push_back(readFile(reader, folders));
    }
  } else {
    return std::nullopt;
  }
  if (reader.text() != end || !reader.isWhole()) return std::nullopt;
  return answer;
}

}  // namespace spacemint
