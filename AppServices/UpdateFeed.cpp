#include "AppServices/UpdateFeed.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

constexpr std::size_t deepest = 32;
// From the root to what describes a release.
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

}  // namespace spacemint
