#pragma once

#include "core/host/EventJournal.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace spacemint {

/// What askers and recorders say to each other; docs/formats/journal.md describes it. Pure functions.
namespace JournalMessage {

/// A longer request is not read to its end.
inline constexpr std::size_t requestLimit = 8'192;

/// Asks for the current event id.
struct IdRequest {
  std::string root;
};
/// Asks for what changed.
using ChangesRequest = EventJournal::Question;
using Request = std::variant<IdRequest, ChangesRequest>;

std::string encode(const Request& request);
std::optional<Request> decodeRequest(std::string_view bytes);

std::string encodeId(std::uint64_t id);
std::optional<std::uint64_t> decodeId(std::string_view bytes);

using Answer = std::expected<FolderChanges, JournalAbsence>;
std::string encodeAnswer(const Answer& answer);
/// Absent for bytes that are not a whole answer.
std::optional<Answer> decodeAnswer(std::string_view bytes);

}  // namespace JournalMessage

}  // namespace spacemint
