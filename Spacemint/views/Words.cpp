#include "Spacemint/views/Words.h"

#include "core/base/ByteFormat.h"
#include "core/wording/PictureText.h"

#include <cmath>

namespace spacemint {

QString Words::aboutProduct(const QString& name) {
  return ShownText::plain(i18n("About {application}", {{"application", name.toStdString()}}));
}

QString Words::version(const QString& number) {
  return ShownText::plain(i18n("Version {version}", {{"version", number.toStdString()}}));
}

QString Words::moreDisks(int count) {
  return ShownText::plain(i18np("{count} more", "{count} more", count, {{"count", numberText(count)}}));
}

QString Words::spoken(const QStringList& texts) {
  QStringList said = texts;
  said.removeAll(QString{});
  return said.join(ShownText::plain(i18nc("between the texts of a row, for screen readers", ", ")));
}

QString Words::spokenUnfolding(const QString& text, bool isUnfolded) {
  return spoken({text, ShownText::plain(isUnfolded ? i18nc("a row", "open") : i18nc("a row", "closed"))});
}

QString Words::share(double fraction) {
  constexpr Bytes whole = 1'000'000;
  return fraction <= 0 ? QString{}
                       : ShownText::plain(PictureText::percent(std::llround(fraction * whole), whole));
}

}  // namespace spacemint
