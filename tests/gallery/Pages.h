#pragma once

#include <QSize>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <vector>

namespace spacemint::gallery {

/// One picture of the gallery.
struct Page {
  /// Its file is called so.
  QString name;
  /// A QML file whose root is an Item. Its properties `pointer` and `focused`, where it has them, are the
  /// items under the pointer and under the keyboard.
  QString url;
  /// What the page is made with; everything it points to lives until the program ends.
  std::function<QVariantMap()> properties = {};
  /// How large the item is; as large as it wants to be where that is empty.
  QSize size = {};
  int margin = 24;
};

/// Those of the page around the tabs.
std::vector<Page> pagesOfPanel();
/// Those of the tabs.
std::vector<Page> pagesOfTabs();

/// All pages, in the order in which they are drawn.
std::vector<Page> pages();

}  // namespace spacemint::gallery
