#include "Pages.h"

#include "ui_kit/Colours.h"
#include "ui_kit/Symbols.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace spacemint::gallery {

namespace {

QString kit(const char* file) {
  return QStringLiteral("qrc:/qt/qml/Spacemint/Gallery/kit/%1.qml").arg(QLatin1StringView(file));
}

/// The property `names`: the names in a table.
template <typename Table>
QVariantMap namesOf(const Table& table) {
  QStringList names;
  for (const auto& row : table) {
    names << QString::fromUtf8(row.name.data(), static_cast<qsizetype>(row.name.size()));
  }
  return {{QStringLiteral("names"), names}};
}

}  // namespace

std::vector<Page> pages() {
  std::vector<Page> all{
      {QStringLiteral("kit-colours"), kit("Colours"), [] { return namesOf(colours); }},
      {QStringLiteral("kit-fonts"), kit("Fonts")},
      {QStringLiteral("kit-symbols"), kit("Symbols"), [] { return namesOf(symbolDrawings); }},
      {QStringLiteral("kit-logo"), kit("Logo")},
      {QStringLiteral("kit-buttons"), kit("Buttons")},
      {QStringLiteral("kit-controls"), kit("Controls")},
      {QStringLiteral("kit-surfaces"), kit("Surfaces")},
      {QStringLiteral("kit-menu"), kit("Popups"),
       [] {
         return QVariantMap{{QStringLiteral("shown"), 0}};
       }},
      {QStringLiteral("kit-picker"), kit("Popups"),
       [] {
         return QVariantMap{{QStringLiteral("shown"), 1}};
       }},
      {QStringLiteral("kit-help"), kit("Popups"),
       [] {
         return QVariantMap{{QStringLiteral("shown"), 2}};
       }},
  };
  std::ranges::move(pagesOfPanel(), std::back_inserter(all));
  std::ranges::move(pagesOfTabs(), std::back_inserter(all));
  std::ranges::move(pagesOfPictures(), std::back_inserter(all));
  std::ranges::move(pagesOfScans(), std::back_inserter(all));
  return all;
}

}  // namespace spacemint::gallery
