#include "core/host/linux/journal/SessionCounter.h"

#include "core/host/AtomicFile.h"
#include "core/host/FileLock.h"
#include "core/host/linux/journal/EventClock.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <optional>
#include <random>
#include <string_view>

namespace spacemint {

namespace {

constexpr std::string_view counterHeader = "spacemint journal session 1\n";
constexpr std::uint64_t lastSession = (std::uint64_t{1} << SessionCounter::sessionBits) - 1;
static_assert(SessionCounter::sessionBits + SessionCounter::randomBits + EventClock::bits == 64);

std::optional<std::uint64_t> parse(std::string_view text) {
  if (!text.starts_with(counterHeader) || !text.ends_with('\n')) return std::nullopt;
  text.remove_prefix(counterHeader.size());
  if (text.empty()) return std::nullopt;
  text.remove_suffix(1);
  std::uint64_t session = 0;
  const char* end = text.data() + text.size();
  const auto [read, error] = std::from_chars(text.data(), end, session);
  if (error != std::errc{} || read != end || session > lastSession) return std::nullopt;
  return session;
}

}  // namespace

std::expected<std::uint64_t, Error> SessionCounter::begin(const std::string& folder,
                                                          const std::function<std::uint64_t()>& draw) {
  const std::string path = folder + "/journal-session";
  if (auto made = createPrivateFolders(folder); !made) return std::unexpected(std::move(made).error());
  auto lock = FileLock::take(path + ".lock");
  if (!lock) return std::unexpected(std::move(lock).error());

  std::uint64_t last = 0;
  const auto text = readFile(path, 4'096);
  if (!text && !text.error().isSystem(ENOENT) && !text.error().isSystem(EFBIG)) {
    return std::unexpected(text.error());
  }
  if (const auto stored = text ? parse(*text) : std::nullopt) {
    last = *stored;
  } else if (text || text.error().isSystem(EFBIG)) {
    rename(path.c_str(), (path + ".damaged").c_str());
  }
  if (last >= lastSession) return std::unexpected(systemError(path, EOVERFLOW));
  const std::uint64_t session = last + 1;
  auto written = writeFileAtomically(path, std::string{counterHeader} + std::to_string(session) + "\n");
  if (!written) return std::unexpected(std::move(written).error());
  const std::uint64_t random = draw() & ((std::uint64_t{1} << randomBits) - 1);
  return ((session << randomBits) | random) << EventClock::bits;
}

std::uint64_t SessionCounter::drawRandomly() {
  std::random_device device;
  return (std::uint64_t{device()} << 32U) | device();
}

}  // namespace spacemint
