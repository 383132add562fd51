#include "AppServices/UpdateChoice.h"

#include "AppServices/WebClient.h"
#include "core/base/DebianVersion.h"
#include "core/base/NumericOrder.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <charconv>

namespace spacemint {

namespace {

constexpr std::size_t deepest = 32;
// The elements from the root to the description of a release.
constexpr std::array<QLatin1String, 4> way{QLatin1String{"rss"}, QLatin1String{"channel"},
                                           QLatin1String{"item"}, QLatin1String{"enclosure"}};
constexpr QLatin1String updates{"http://www.andymatuschak.org/xml-namespaces/sparkle"};

UpdateItem readEnclosure(const QXmlStreamAttributes& attributes) {
  const auto text = [](QStringView value) { return value.toString().toStdString(); };
  const auto own = [&](const char* name) { return text(attributes.value(updates, QLatin1String{name})); };
  return {.version = own("version"),
          .shortVersion = own("shortVersionString"),
          .minimumSystemVersion = own("minimumSystemVersion"),
          .url = text(attributes.value(QStringLiteral("url"))),
          .length = text(attributes.value(QStringLiteral("length"))),
          .signature = own("edSignature")};
}

constexpr std::string_view digits = "0123456789";
constexpr std::string_view smallLettersAndDigits = "abcdefghijklmnopqrstuvwxyz0123456789";
// The characters of a package's upstream version. All of them are allowed in a file name.
constexpr std::string_view versionCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.+~";
constexpr std::size_t longestVersion = 64;

bool consistsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool isVersion(std::string_view text) {
  return text.size() <= longestVersion && consistsOf(text, versionCharacters) &&
         digits.find(text.front()) != std::string_view::npos;
}

// The last part of the URL, still percent-encoded, so that no escape such as "%2F" is decoded into a
// separator.
std::string fileNameOf(const QUrl& url) {
  return url.fileName(QUrl::FullyEncoded).toStdString();
}

// The architecture in the name of a package file; absent if the name is not of this package and version.
std::optional<std::string> architectureIn(std::string_view name, const std::string& package,
                                          const std::string& version) {
  const std::string start = package + "_" + version;
  constexpr std::string_view end = ".deb";
  if (!name.starts_with(start) || !name.ends_with(end) || name.size() < start.size() + end.size()) return {};
  name = name.substr(start.size(), name.size() - start.size() - end.size());
  const std::size_t mark = name.find('_');
  if (mark == std::string_view::npos) return {};
  const std::string_view revision = name.substr(0, mark);
  const std::string_view architecture = name.substr(mark + 1);
  const bool isRevision =
      revision.empty() || (revision.front() == '-' && consistsOf(revision.substr(1), versionCharacters));
  if (!isRevision || !consistsOf(architecture, smallLettersAndDigits)) return {};
  return std::string{architecture};
}

std::int64_t lengthOf(const std::string& text) {
  std::int64_t length = 0;
  const char* end = text.data() + text.size();
  const auto [read, error] = std::from_chars(text.data(), end, length);
  return error == std::errc{} && read == end ? length : 0;
}

bool isCandidate(const UpdateItem& item, const UpdateTarget& target) {
  if (debianVersionOrder(item.version, target.version) <= 0) return false;
  if (numericOrder(item.minimumSystemVersion, target.system.kernel) > 0) return false;
  const QUrl url{QString::fromStdString(item.url), QUrl::StrictMode};
  const auto architecture = architectureIn(fileNameOf(url), target.package, item.version);
  return !architecture || *architecture == target.system.architecture || *architecture == "all";
}

std::expected<std::optional<Update>, UpdateProblem> checked(const UpdateItem& item,
                                                            const UpdateTarget& target) {
  Update update{.version = item.version,
                .shownVersion = isVersion(item.shortVersion) ? item.shortVersion : item.version,
                .url = QUrl{QString::fromStdString(item.url), QUrl::StrictMode},
                .length = lengthOf(item.length)};
  update.fileName = fileNameOf(update.url);
  const auto signature = bytesOfBase64<64>(item.signature);
  if (!isVersion(item.version) || !WebClient::mayAsk(update.url) ||
      !architectureIn(update.fileName, target.package, item.version) || update.length < 1 ||
      update.length > largestUpdate || !signature) {
    return std::unexpected{UpdateProblem::feedRefused};
  }
  update.signature = *signature;
  return update;
}

}  // namespace

std::optional<std::vector<UpdateItem>> parseUpdateFeed(std::string_view document) {
  if (document.size() > largestUpdateFeed) return {};
  QXmlStreamReader xml{QByteArray::fromRawData(document.data(), static_cast<qsizetype>(document.size()))};
  std::vector<UpdateItem> items;
  std::size_t depth = 0;
  std::size_t onWay = 0;  // how many of the open elements, from the root on, are those of the way
  while (!xml.atEnd()) {
    const auto token = xml.readNext();
    if (token == QXmlStreamReader::DTD) return {};
    if (token == QXmlStreamReader::StartElement) {
      if (onWay == depth && depth < way.size() && xml.namespaceUri().isEmpty() && xml.name() == way[depth])
        ++onWay;
      if (++depth > deepest || onWay == 0) return {};
      if (depth == way.size() && onWay == depth) items.push_back(readEnclosure(xml.attributes()));
    } else if (token == QXmlStreamReader::EndElement) {
      onWay = std::min(onWay, --depth);
    }
  }
  if (xml.hasError()) return {};
  return items;
}

std::expected<std::optional<Update>, UpdateProblem> newestUpdate(const std::vector<UpdateItem>& items,
                                                                 const UpdateTarget& target) {
  const UpdateItem* newest = nullptr;
  for (const UpdateItem& item : items) {
    if (!isCandidate(item, target)) continue;
    if (!newest || debianVersionOrder(item.version, newest->version) > 0) newest = &item;
  }
  if (!newest) return std::nullopt;
  return checked(*newest, target);
}

}  // namespace spacemint
