#include "Spacemint/views/Words.h"

namespace spacemint {

QString Words::aboutProduct(const QString& name) {
  return QStringLiteral("About %1").arg(name);
}

QString Words::version(const QString& number) {
  return QStringLiteral("Version %1").arg(number);
}

QString Words::moreDisks(int count) {
  return QStringLiteral("%1 more").arg(count);
}

QString Words::spoken(const QStringList& texts) {
  QString result;
  for (const QString& text : texts) {
    if (!text.isEmpty()) result += (result.isEmpty() ? QString{} : QStringLiteral(", ")) + text;
  }
  return result;
}

QString Words::spokenUnfolding(const QString& text, bool isUnfolded) {
  return spoken({text, isUnfolded ? QStringLiteral("open") : QStringLiteral("closed")});
}

}  // namespace spacemint
