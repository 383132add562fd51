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

/// The types of values in the store; `DefaultsElement` is an element of an array.
using DefaultsElement = std::variant<std::int64_t, bool, std::string>;
using DefaultsArray = std::vector<DefaultsElement>;
using DefaultsValue = std::variant<std::int64_t, bool, std::string, DefaultsArray>;
using DefaultsValues = std::map<std::string, DefaultsValue, std::less<>>;

/// A user's key-value store: a JSON object in a file (docs/formats/settings.md).
///
/// - A read returns the stored value; if there is none, the registered default; otherwise nothing. If the
///   stored value has another type than the read function, the function returns nothing, not the default.
/// - When `set` returns, the change is on the disk. It keeps values that other processes stored under other
///   keys, and values of types that the store does not support.
/// - A damaged file is moved aside when the store opens or before a change, and never overwritten or deleted.
///   If the file cannot be read for another reason, it stays as it is and changes fail. In both cases the
///   store keeps the values read before; when it opens, those are the registered defaults.
///
/// One thread at a time. Other processes may use the same file at the same time.
class DefaultsStore {
 public:
  enum class Access { readWrite, readOnly };

  /// The largest size of the file, in bytes.
  static constexpr std::size_t maximumSize = 1'000'000;
  /// The domain of errors about a damaged file.
  static constexpr std::string_view damaged = "damaged settings";

  /// Reads the file at `path`. A missing file is an empty store; the first change creates the file and
  /// missing folders above it (0700).
  explicit DefaultsStore(std::string path, Access access = Access::readWrite);
  DefaultsStore(const DefaultsStore&) = delete;
  DefaultsStore& operator=(const DefaultsStore&) = delete;
  DefaultsStore(DefaultsStore&&) noexcept;
  DefaultsStore& operator=(DefaultsStore&&) noexcept;
  ~DefaultsStore();

  /// The store of the user's settings, shared by all programs of the product.
  static DefaultsStore standard();
  /// The settings of the product's former name, opened read-only; absent if the file does not exist.
  static std::optional<DefaultsStore> formerProduct();

  /// Sets the values that the read functions return for keys without a stored value. They are never written
  /// to the file.
  void registerDefaults(const DefaultsValues& values);

  /// True if a value of any type is stored under `key`. Ignores registered defaults.
  bool has(std::string_view key) const;

  std::optional<DefaultsValue> value(std::string_view key) const;
  /// A stored number with a fraction is rounded toward zero.
  std::optional<std::int64_t> integer(std::string_view key) const;
  std::optional<bool> boolean(std::string_view key) const;
  std::optional<std::string> string(std::string_view key) const;
  /// The array under `key`; absent if an element is not a string.
  std::optional<std::vector<std::string>> strings(std::string_view key) const;

  /// Writes the value to the file before returning. Fails, without changing the file, if the file cannot be
  /// read or written, would be larger than `maximumSize` (EFBIG), if a text is not UTF-8 (EILSEQ), or if the
  /// store is read-only (EROFS). May block while another process holds the lock.
  std::expected<void, Error> set(std::string_view key, const DefaultsValue& value);
  std::expected<void, Error> remove(std::string_view key);
  /// Copies the values of any type that `from` stores under `keys`, in a single change. Fails like `set`.
  std::expected<void, Error> copy(const DefaultsStore& from, std::span<const std::string_view> keys);

  /// Reads the file again if it changed since the last read. Does not move a damaged file: another program
  /// may be writing to it.
  void refresh();

  /// Increases whenever a read (by `refresh` or before a change) finds values that another process has
  /// stored.
  std::uint64_t revision() const { return revision_; }

  /// Why the last read failed; absent if the read succeeded or the file does not exist.
  const std::optional<Error>& readError() const { return readError_; }
  /// The paths to which this object moved damaged files.
  const std::vector<std::string>& setAside() const { return setAside_; }
  /// True if the settings file is damaged, or if a process moved a damaged one aside earlier: the user had
  /// settings although none may be stored now.
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
