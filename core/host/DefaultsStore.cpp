#include "core/host/DefaultsStore.h"

#include "core/base/Log.h"
#include "core/base/Translation.h"
#include "core/host/AtomicFile.h"
#include "core/host/FileManager.h"
#include "core/host/UserFolders.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <filesystem>
#include <limits>
#include <set>
#include <tuple>
#include <type_traits>

namespace spacemint {

using nlohmann::json;

struct DefaultsStore::Contents {
  json object = json::object();
};

namespace {

// More nesting than real settings have, and little enough for recursive functions.
constexpr std::size_t maximumDepth = 32;
constexpr int maximumDamagedFiles = 10'000;

// Rejects documents that the JSON library accepts but does not handle well: it would drop one of two equal
// keys, and recurse too deep in nested values.
class StructureCheck : public nlohmann::json_sax<json> {
 public:
  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool string(string_t&) override { return true; }
  bool binary(binary_t&) override { return true; }
  bool start_object(std::size_t) override { return enter(); }
  bool key(string_t& name) override { return names_.back().insert(name).second; }
  bool end_object() override { return leave(); }
  bool start_array(std::size_t) override { return enter(); }
  bool end_array() override { return leave(); }
  bool parse_error(std::size_t, const std::string&, const json::exception&) override { return false; }

 private:
  bool enter() {
    names_.emplace_back();
    return names_.size() <= maximumDepth;
  }
  bool leave() {
    names_.pop_back();
    return true;
  }

  std::vector<std::set<std::string>> names_;
};

Error damage(const std::string& path, std::string_view reason) {
  return {.domain = std::string{DefaultsStore::damaged}, .message = path + ": " + std::string{reason}};
}

bool isDamage(const std::optional<Error>& error) {
  return error && error->domain == DefaultsStore::damaged;
}

std::expected<json, Error> readObject(const std::string& path) {
  auto text = readFile(path, DefaultsStore::maximumSize);
  if (!text && text.error().isSystem(ENOENT)) return json::object();
  if (!text && text.error().isSystem(EFBIG))
    return std::unexpected(damage(path, i18n("too large for settings")));
  if (!text) return std::unexpected(std::move(text.error()));
  StructureCheck check;
  // The JSON library would stop at a zero byte and ignore the rest.
  if (text->contains('\0') || !json::sax_parse(*text, &check))
    return std::unexpected(damage(path, i18n("not well-formed JSON")));
  json object = json::parse(*text, nullptr, false);
  if (!object.is_object()) return std::unexpected(damage(path, i18n("not a JSON object")));
  return object;
}

std::expected<std::string, Error> textOf(const json& object, const std::string& path) {
  std::string text;
  try {
    text = object.dump(2) + '\n';
  } catch (const json::type_error&) {
    return std::unexpected(systemError(path, EILSEQ));
  }
  if (text.size() > DefaultsStore::maximumSize) return std::unexpected(systemError(path, EFBIG));
  return text;
}

json jsonOf(const DefaultsArray& elements) {
  json array = json::array();
  for (const DefaultsElement& element : elements) {
    array.push_back(std::visit([](const auto& held) { return json(held); }, element));
  }
  return array;
}

json jsonOf(const DefaultsValue& value) {
  return std::visit(
      [](const auto& held) {
        if constexpr (std::is_same_v<std::decay_t<decltype(held)>, DefaultsArray>) {
          return jsonOf(held);
        } else {
          return json(held);
        }
      },
      value);
}

std::optional<std::int64_t> integerOf(const json& stored) {
  constexpr auto largest = std::numeric_limits<std::int64_t>::max();
  if (stored.is_number_unsigned() && stored.get<std::uint64_t>() > std::uint64_t{largest})
    return std::nullopt;
  if (!stored.is_number_integer()) return std::nullopt;
  return stored.get<std::int64_t>();
}

std::optional<DefaultsElement> elementOf(const json& stored) {
  if (stored.is_boolean()) return stored.get<bool>();
  if (stored.is_string()) return stored.get<std::string>();
  return integerOf(stored);
}

std::optional<DefaultsValue> valueOf(const json& stored) {
  if (!stored.is_array()) {
    const auto element = elementOf(stored);
    if (!element) return std::nullopt;
    return std::visit([](const auto& held) { return DefaultsValue{held}; }, *element);
  }
  DefaultsArray array;
  for (const json& item : stored) {
    auto element = elementOf(item);
    if (!element) return std::nullopt;
    array.push_back(std::move(*element));
  }
  return array;
}

template <typename Held>
std::optional<Held> heldBy(const std::optional<DefaultsValue>& value) {
  const Held* held = value ? std::get_if<Held>(&*value) : nullptr;
  return held == nullptr ? std::nullopt : std::optional<Held>{*held};
}

// If the user replaced the settings file by a symbolic link, write to the link's target and keep the link.
std::string fileToWrite(const std::string& path) {
  std::error_code failure;
  const std::filesystem::path named = std::filesystem::canonical(path, failure);
  return failure ? path : named.string();
}

std::string damagedName(const std::string& path, int number) {
  return path + ".damaged-" + std::to_string(number);
}

std::string settingsPath(std::string_view name) {
  return UserFolders::config() + "/spacemint/" + std::string{name};
}

}  // namespace

DefaultsStore::DefaultsStore(std::string path, Access access)
    : path_(std::move(path)),
      access_(access),
      contents_(std::make_unique<Contents>()) {
  refresh();
  if (!isDamage(readError_) || access_ == Access::readOnly) return;
  // Another process may have moved the damaged file already: read again under the lock. If the file cannot be
  // moved, the file stays in place, readError_ keeps the damage, and the next change fails with the reason.
  if (const auto locked = lock()) std::ignore = readForChange();
}

DefaultsStore::DefaultsStore(DefaultsStore&&) noexcept = default;
DefaultsStore& DefaultsStore::operator=(DefaultsStore&&) noexcept = default;
DefaultsStore::~DefaultsStore() = default;

DefaultsStore DefaultsStore::standard() {
  return DefaultsStore{settingsPath("app.spacemint.Spacemint.json")};
}

std::optional<DefaultsStore> DefaultsStore::formerProduct() {
  std::string path = settingsPath("app.loftmere.Loftmere.json");
  if (fileStamp(path) == FileStamp{}) return std::nullopt;
  return DefaultsStore{std::move(path), Access::readOnly};
}

void DefaultsStore::registerDefaults(const DefaultsValues& values) {
  for (const auto& [key, value] : values) registered_.insert_or_assign(key, value);
}

bool DefaultsStore::has(std::string_view key) const {
  return contents_->object.contains(key);
}

std::optional<DefaultsValue> DefaultsStore::value(std::string_view key) const {
  if (const auto stored = contents_->object.find(key); stored != contents_->object.end())
    return valueOf(*stored);
  if (const auto fallback = registered_.find(key); fallback != registered_.end()) return fallback->second;
  return std::nullopt;
}

std::optional<std::int64_t> DefaultsStore::integer(std::string_view key) const {
  const auto stored = contents_->object.find(key);
  if (stored == contents_->object.end() || !stored->is_number_float())
    return heldBy<std::int64_t>(value(key));
  const auto number = stored->get<double>();
  constexpr double limit = 9'223'372'036'854'775'808.0;
  if (number < -limit || number >= limit) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

std::optional<bool> DefaultsStore::boolean(std::string_view key) const {
  return heldBy<bool>(value(key));
}

std::optional<std::string> DefaultsStore::string(std::string_view key) const {
  return heldBy<std::string>(value(key));
}

std::optional<std::vector<std::string>> DefaultsStore::strings(std::string_view key) const {
  const auto array = heldBy<DefaultsArray>(value(key));
  if (!array) return std::nullopt;
  std::vector<std::string> result;
  for (const DefaultsElement& element : *array) {
    const auto* text = std::get_if<std::string>(&element);
    if (text == nullptr) return std::nullopt;
    result.push_back(*text);
  }
  return result;
}

std::expected<void, Error> DefaultsStore::set(std::string_view key, const DefaultsValue& value) {
  return change([&](Contents& contents) { contents.object[std::string{key}] = jsonOf(value); });
}

std::expected<void, Error> DefaultsStore::remove(std::string_view key) {
  return change([&](Contents& contents) { contents.object.erase(std::string{key}); });
}

std::expected<void, Error> DefaultsStore::copy(const DefaultsStore& from,
                                               std::span<const std::string_view> keys) {
  return change([&](Contents& contents) {
    for (const std::string_view key : keys) {
      if (from.has(key)) contents.object[std::string{key}] = *from.contents_->object.find(key);
    }
  });
}

void DefaultsStore::refresh() {
  // Take the stamp before reading. If the file changes during the read, the stamp is outdated and the next
  // refresh reads the file again.
  const FileStamp stamp = fileStamp(path_);
  if (stamp_ == stamp) return;
  auto object = readObject(path_);
  if (!object) {
    readError_ = std::move(object.error());
    stamp_.reset();
    return;
  }
  readError_.reset();
  stamp_ = stamp;
  if (contents_->object == *object) return;
  contents_->object = std::move(*object);
  ++revision_;
}

std::expected<FileLock, Error> DefaultsStore::lock() const {
  const std::string folder = std::filesystem::path{path_}.parent_path().string();
  if (auto made = createPrivateFolders(folder.empty() ? "." : folder); !made) {
    return std::unexpected(std::move(made.error()));
  }
  return FileLock::take(path_ + ".lock");
}

// The caller holds the lock. Reads the current file; moves a damaged file aside.
std::expected<void, Error> DefaultsStore::readForChange() {
  stamp_.reset();
  refresh();
  if (!readError_) return {};
  if (!isDamage(readError_)) return std::unexpected(*readError_);
  if (auto moved = moveAside(); !moved) return moved;
  readError_.reset();
  return {};
}

bool DefaultsStore::hasDamagedFile() const {
  return isDamage(readError_) || fileStamp(damagedName(path_, 1)) != FileStamp{};
}

std::expected<void, Error> DefaultsStore::moveAside() {
  const FileManager files = FileManager::host();
  std::expected<void, Error> moved;
  for (int number = 1; number <= maximumDamagedFiles; ++number) {
    std::string name = damagedName(path_, number);
    moved = files.move(path_, name);
    if (moved) {
      log(LogLevel::info, "damaged settings were moved to " + name);
      setAside_.push_back(std::move(name));
    }
    if (moved || !moved.error().isSystem(EEXIST)) break;
  }
  return moved;
}

std::expected<void, Error> DefaultsStore::change(const std::function<void(Contents&)>& edit) {
  if (access_ == Access::readOnly) return std::unexpected(systemError(path_, EROFS));
  const auto locked = lock();
  if (!locked) return std::unexpected(locked.error());
  if (auto read = readForChange(); !read) return read;

  Contents edited = *contents_;
  edit(edited);
  const auto text = textOf(edited.object, path_);
  if (!text) return std::unexpected(text.error());
  if (auto written = writeFileAtomically(fileToWrite(path_), *text); !written) return written;
  *contents_ = std::move(edited);
  stamp_.reset();
  return {};
}

}  // namespace spacemint
