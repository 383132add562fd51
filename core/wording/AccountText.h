#pragma once

#include "core/base/Translation.h"
#include "core/volume/Account.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The parts of an account, in the order in which they are shown.
enum class AccountPart : std::uint8_t {
  files,
  folders,
  deleted,
  ownBytes,
  inlined,
  saved,
  unread,
  snapshots,
  otherVolumes,
  rest,
  heldBack,
  free
};

/// A line of an account for the user.
struct AccountLine {
  AccountPart part = AccountPart::files;
  std::string title;
  /// What the figure means, or what to do; may be empty.
  std::string note = {};
  /// Absent where only the number of items is known, whose bytes are in another line.
  std::optional<Bytes> size = {};
  /// The name of an icon of the interface.
  std::string symbol = {};
  /// The programs, paths or mount points that the line consists of.
  struct Detail {
    std::string title;
    std::string note = {};
    std::optional<Bytes> size = {};
  };
  std::vector<Detail> details = {};
};

/// The words of an account in the user's language, shared by the application and spacemintctl. `locale` is an
/// ICU locale identifier. Pure; any thread.
namespace AccountText {

/// For an account that shows less than nothing, because the scan is older than the other figures.
inline constexpr const char* scanAgain = i18nMark("Scan again to see what adds up");

/// The lines in which there is something. Their figures add up to the capacity of the volume. `home` is the
/// home folder, for paths; `now` is for the age of snapshots.
std::vector<AccountLine> lines(const Account& account, const std::string& home, const std::string& locale,
                               Date now);

/// "129 GB = 83.1 GB in files + 7.1 GB not in files + 38.8 GB free."
std::string sum(const Account& account, const std::string& locale);

/// The key of a part in JSON.
std::string_view keyOf(AccountPart part);
std::string_view keyOf(RestCause cause);

}  // namespace AccountText

}  // namespace spacemint
