#pragma once

#include "core/base/Error.h"
#include "core/host/FileLock.h"
#include "core/host/FileStamp.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace spacemint {

/// One value of the store, and what an array there may hold.
using DefaultsElement = std::variant<std::int64_t, bool, std::string>;
using DefaultsArray = std::vector<DefaultsElement>;
using DefaultsValue = std::variant<std::int64_t, bool, std::string, DefaultsArray>;
using DefaultsValues = std::map<std::string, DefaultsValue, std::less<>>;

/// A user's key-value store: one JSON object in one file (docs/formats/settings.md).
///
/// - A read answers the stored value, else the registered default, else nothing. A stored value hides the
///   default also when it is of another type than the one asked for; then the answer is nothing.
/// - A change is on the disk when `set` returns, and what other processes stored under other keys stays. So
///   do values of types that the store does not know.
/// - A damaged file is moved aside, when the store opens or before a change, and never overwritten or
/// deleted.
///   A file that cannot be read for another reason is left alone, and changes fail. In both cases the values
///   read before serve: at the start, the defaults.
///
/// One thread at a time. Other processes may use the same file.
class DefaultsStore {
 public:
  enum class Access { readWrite, readOnly };

  /// The largest file that is read or written, in bytes.
  static constexpr std::size_t maximumSize = 1'000'000;
  /// Domain of the error of a damaged file.
  static constexpr std::string_view damaged = "damaged settings";

  /// A file that is not there is an empty store; `set` makes it, with the folders above it (0700).
  explicit DefaultsStore(std::string path, Access access = Access::readWrite);
  DefaultsStore(const DefaultsStore&) = delete;
  DefaultsStore& operator=(const DefaultsStore&) = delete;
  DefaultsStore(DefaultsStore&&) noexcept;
  DefaultsStore& operator=(DefaultsStore&&) noexcept;
  ~DefaultsStore();

  /// The application's own store.
  static DefaultsStore standard();
  /// The store of the product's former name, to be read only; absent where there is none.
  static std::optional<DefaultsStore> formerProduct();

  /// Values that answer for keys without a stored value. They are never written.
  void registerDefaults(const DefaultsValues& values);

  /// Whether a value of any type is stored under `key`; a registered default is none.
  bool has(std::string_view key) const;

  std::optional<DefaultsValue> value(std::string_view key) const;
  /// A stored number with a fraction is cut off towards zero.
  std::optional<std::int64_t> integer(std::string_view key) const;
  std::optional<bool> boolean(std::string_view key) const;
  std::optional<std::string> string(std::string_view key) const;
  /// The array under `key` when it holds strings only.
  std::optional<std::vector<std::string>> strings(std::string_view key) const;

  /// Stores the value at once. Fails, with the file as it was, where it cannot be read or written, where it
  /// would pass `maximumSize` (EFBIG) and for text that is not UTF-8 (EILSEQ).
  std::expected<void, Error> set(std::string_view key, const DefaultsValue& value);
  std::expected<void, Error> remove(std::string_view key);
  /// Takes over, in one change, the values that `from` stores under `keys`, of whatever type they are.
  std::expected<void, Error> copy(const DefaultsStore& from, std::span<const std::string_view> keys);

  /// Reads the file again when it is another than the one read last. A damaged one stays where it is:
  /// somebody may be writing it.
  void refresh();

  /// Grows whenever the file was found to hold other values than this store: what another process stored,
  /// seen by `refresh` or on the way of a change.
  std::uint64_t revision() const { return revision_; }

  /// Why the file could not be read last time; absent when it was read or is not there.
  const std::optional<Error>& readError() const { return readError_; }
  /// Where this store moved damaged files.
  const std::vector<std::string>& setAside() const { return setAside_; }
  /// True when a damaged file of this store lies beside it, moved there by this or an earlier process: the
  /// user had settings, though none are stored now.
  bool hasDamagedFile() const;
  const std::string& path() const { return path_; }

 private:
  struct Contents;

  std::expected<FileLock, Error> lock() const;
  std::expected<void, Error> readForChange();
  std::expected<void, Error> moveAside();
  std::expected<void, Error> change(const std::function<void(Contents&)>& edit);

  std::string path_;
  Access access_;
  std::unique_ptr<Contents> contents_;
  DefaultsValues registered_;
  std::optional<FileStamp> stamp_;
  std::uint64_t revision_ = 0;
  std::optional<Error> readError_;
  std::vector<std::string> setAside_;
};

}  // namespace spacemint
