#pragma once

#include <QSize>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <string>
#include <vector>

namespace spacemint::gallery {

/// The locale of the pages that are made from now on.
inline std::string locale = "en_US";

/// One picture of the gallery.
struct Page {
  /// The name of the picture, without its extension.
  QString name;
  /// A QML file whose root is an Item. Its optional properties `pointer` and `focused` name the item under
  /// the pointer and the item with the keyboard focus.
  QString url;
  /// The initial properties of the page. Objects that they point to live until the program ends.
  std::function<QVariantMap()> properties = {};
  /// Ends what the item began in the background when it was made.
  std::function<void()> settle = {};
  /// The size of the item; if empty, its implicit size.
  QSize size = {};
  int margin = 24;
};

/// The pages around the tabs.
std::vector<Page> pagesOfPanel();
/// The pages with a tab.
std::vector<Page> pagesOfTabs();
/// The pages with pictures of folders, and the large window.
std::vector<Page> pagesOfPictures();

/// The pages during a scan, and after a scan that was stopped.
std::vector<Page> pagesOfScans();

/// All pages, in the order in which they are drawn.
std::vector<Page> pages();

}  // namespace spacemint::gallery
