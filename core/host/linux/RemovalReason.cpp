#include "core/host/linux/RemovalReason.h"

#include "core/base/Translation.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace spacemint {

namespace {

constexpr std::pair<int, const char*> reasons[]{
    {EXDEV, i18nMark("{item} has something else mounted in it")},
    {EBUSY, i18nMark("{item} is in use: something may be mounted on it")},
    {ESTALE, i18nMark("{item} is no longer what it was")},
    {ECANCELED, i18nMark("{item} was not removed: stopped")},
    {ELOOP, i18nMark("{item} is a symbolic link")},
    {EINVAL, i18nMark("{item} isn't a plain absolute path")},
    {ENOENT, i18nMark("{item} does not exist")},
    {ENOTEMPTY, i18nMark("{item} gets new files while it is being removed")},
    {EROFS, i18nMark("{item} lies on a read-only file system")},
};

struct Status {
  struct statx facts {};
  bool isKnown = false;

  bool isFixed() const { return (facts.stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0; }
  bool isMine() const { return facts.stx_uid == geteuid(); }
  std::string mode() const {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%03o", facts.stx_mode & 07777U);
    return text.data();
  }
};

Status statusOf(const FileHandle& folder, const std::string& name) {
  Status status;
  const int flags = name.empty() ? AT_EMPTY_PATH : AT_SYMLINK_NOFOLLOW;
  status.isKnown = statx(folder.get(), name.c_str(), flags | AT_NO_AUTOMOUNT,
                         STATX_MODE | STATX_UID | STATX_TYPE, &status.facts) == 0;
  return status;
}

std::string userName(uid_t user) {
  std::vector<char> buffer(16'384);
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found);
  return found != nullptr ? found->pw_name : i18n("user {number}", {{"number", std::to_string(user)}});
}

// "{item} belongs to root" for another user's item; the mode for the user's own item.
std::string belongingTo(const Status& item) {
  return item.isMine() ? i18n("{item} has insufficient permissions (mode {mode})", {{"mode", item.mode()}})
                       : i18n("{item} belongs to {user}", {{"user", userName(item.facts.stx_uid)}});
}

bool isClosed(const FileHandle& folder, const std::string& name, int rights) {
  const int flags = AT_EACCESS | (name.empty() ? AT_EMPTY_PATH : AT_SYMLINK_NOFOLLOW);
  return faccessat(folder.get(), name.c_str(), rights, flags) != 0;
}

// Why the system refused to remove an item; empty if owner, mode and attributes do not explain it.
std::string refusalReason(const FileHandle& folder, const std::string& name) {
  const Status item = statusOf(folder, name);
  const Status parent = statusOf(folder, "");
  if (item.isKnown && item.isFixed()) return i18n("{item} is marked as immutable");
  if (name.empty()) return item.isKnown ? belongingTo(item) : "";
  if (parent.isKnown && parent.isFixed()) return i18n("{item} lies in a folder that is marked as immutable");
  if (parent.isKnown && isClosed(folder, "", W_OK | X_OK)) {
    return parent.isMine() ? i18n("{item} lies in a folder that has insufficient permissions (mode {mode})",
                                  {{"mode", parent.mode()}})
                           : i18n("{item} lies in a folder that belongs to {user}",
                                  {{"user", userName(parent.facts.stx_uid)}});
  }
  if (!item.isKnown) return "";
  const bool isSticky = parent.isKnown && (parent.facts.stx_mode & S_ISVTX) != 0 && !parent.isMine();
  if (isSticky && !item.isMine()) return belongingTo(item);
  if (S_ISDIR(item.facts.stx_mode) && isClosed(folder, name, R_OK | W_OK | X_OK)) return belongingTo(item);
  return "";
}

std::string reasonOf(int errorNumber, const FileHandle& folder, const std::string& name) {
  if (folder && (errorNumber == EACCES || errorNumber == EPERM)) {
    if (auto reason = refusalReason(folder, name); !reason.empty()) return reason;
  }
  for (const auto& [number, reason] : reasons) {
    if (number == errorNumber) return i18n(reason);
  }
  return i18n("{item} could not be removed: {reason}", {{"reason", std::strerror(errorNumber)}});
}

}  // namespace

std::unexpected<RemovalFailure> removalFailure(std::string path, int errorNumber, const FileHandle& folder,
                                               const std::string& name) {
  return std::unexpected(RemovalFailure{.error = {.domain = std::string{Error::system},
                                                  .code = errorNumber,
                                                  .message = reasonOf(errorNumber, folder, name)},
                                        .path = std::move(path)});
}

}  // namespace spacemint
