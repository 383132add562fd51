#include "AppServices/UpdateFeed.h"

#include <QXmlStreamReader>

namespace spacemint {

namespace {

constexpr int deepest = 32;
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
  // The elements that are open, as far as they lead to an enclosure: rss, channel, item, enclosure.
  constexpr QLatin1String way[]{QLatin1String{"rss"}, QLatin1String{"channel"}, QLatin1String{"item"},
                                QLatin1String{"enclosure"}};
  int depth = 0;
  int onWay = 0;
  while (!xml.atEnd()) {
    switch (xml.readNext()) {
      case QXmlStreamReader::DTD:
        return {};
      case QXmlStreamReader::StartElement:
        if (onWay == depth && onWay < 4 && xml.namespaceUri().isEmpty() && xml.name() == way[onWay]) {
          if (++onWay == 4) items.push_back(readEnclosure(xml.attributes()));
        }
        if (++depth > deepest || onWay == 0) return {};
        break;
      case QXmlStreamReader::EndElement:
        if (onWay == depth--) --onWay;
        break;
      default:
        break;
    }
  }
  if (xml.hasError()) return {};
  return items;
}

}  // namespace spacemint
