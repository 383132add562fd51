#include "core/cleanup/DeletionGuard.h"

#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <filesystem>

namespace spacemint {

namespace {

// False if the item cannot be read: its removal will then fail with the reason.
bool isSymbolicLink(const std::string& path) {
  std::error_code failure;
  return std::filesystem::is_symlink(std::filesystem::symlink_status(path, failure));
}

}  // namespace

DeletionGuard::DeletionGuard(std::string_view home, std::vector<std::string> personal)
    : home_(Paths::logical(home)),
      personal_(std::move(personal)) {}

std::optional<std::string> DeletionGuard::refusal(const Question& question) const {
  auto reason = check(question);
  if (!reason) {
    Question plain = question;
    plain.path = Paths::plain(Paths::logical(question.path));
    if (plain.path != question.path) reason = check(plain);
  }
  if (!reason) return std::nullopt;
  return fillIn(*reason, {{"item", isolatedPath(Paths::display(question.path, home_))}});
}

std::optional<std::string> DeletionGuard::check(const Question& question) const {
  std::string path = Paths::logical(question.path);
  if (!path.starts_with('/') || path.find("/../") != std::string::npos || path.ends_with("/..")) {
    return i18n("{item} isn't a plain absolute path");
  }
  if (path.size() >= 2 && path.ends_with('/')) path.pop_back();
  if (isProtected(path)) return i18n("{item} is a protected folder");
  // Compare bytes: a folder whose name only looks like the home folder's is another folder.
  if (!question.outsideHomeAllowed && !path.starts_with(Paths::join(home_, ""))) {
    return i18n("{item} is outside your home folder");
  }
  if (holdsHome(path)) return i18n("{item} is a protected folder");
  if (!question.linkItself && isSymbolicLink(question.path)) return i18n("{item} is a symbolic link");
  return std::nullopt;
}

bool DeletionGuard::holdsHome(std::string_view path) const {
  return canonicalPrefixLength(Paths::join(home_, ""), Paths::join(path, "")).has_value();
}

// Canonically equal names count as equal here, because some file systems treat them as the same name.
bool DeletionGuard::isProtected(std::string_view path) const {
  const std::string_view home = Paths::withoutTrailingSlash(home_);
  if (canonicallyEqual(path, home)) return true;
  if (std::ranges::find(protectedFolders, path) != protectedFolders.end()) return true;
  if (std::ranges::any_of(personal_,
                          [&](const std::string& folder) { return canonicallyEqual(path, folder); })) {
    return true;
  }
  const auto length = canonicalPrefixLength(path, Paths::join(home, ""));
  if (!length) return false;
  return std::ranges::find(protectedInHome, path.substr(*length)) != protectedInHome.end();
}

}  // namespace spacemint
