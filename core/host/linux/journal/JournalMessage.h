#pragma once

#include "core/host/EventJournal.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// The wire format between journal clients and the recorder (docs/formats/journal.md). Pure functions.
namespace JournalMessage {

/// The largest request in bytes. The server closes the connection of a client that sends more.
inline constexpr std::size_t requestLimit = 8'192;

enum class Kind : std::uint8_t { id, changes, totals };

/// What a client asks. An id request carries only the root of the query; only a request for totals carries
/// the threshold and the limit.
struct Request {
  Kind kind = Kind::id;
  JournalQuery query = {};
};

std::string encode(const Request& request);
/// Absent when the bytes are not one whole request.
std::optional<Request> decodeRequest(std::string_view bytes);

std::string encodeId(std::uint64_t id);
/// Absent when the bytes are not one whole answer.
std::optional<std::uint64_t> decodeId(std::string_view bytes);

using Answer = std::expected<FolderChanges, JournalError>;
std::string encodeAnswer(const Answer& answer);
/// Absent when the bytes are not one whole answer.
std::optional<Answer> decodeAnswer(std::string_view bytes);

using MeasuredAnswer = std::expected<MeasuredChanges, JournalError>;
std::string encodeMeasured(const MeasuredAnswer& answer);
/// Absent when the bytes are not one whole answer in which every position is that of an earlier folder.
std::optional<MeasuredAnswer> decodeMeasured(std::string_view bytes);

}  // namespace JournalMessage

}  // namespace spacemint
