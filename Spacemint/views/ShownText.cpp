#include "Spacemint/views/ShownText.h"

#include <QRegularExpression>

#include <algorithm>

namespace spacemint {

QString ShownText::plain(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString ShownText::onOneLine(QString text) {
  for (QChar& c : text) {
    const auto kind = c.category();
    // The isolates of values in sentences stay, which reverse nothing.
    const bool isEmbedding = (c >= u'\u202A' && c <= u'\u202E') || c == u'\u2066' || c == u'\u2067';
    const bool isBreak = kind == QChar::Separator_Line || kind == QChar::Separator_Paragraph;
    if (kind == QChar::Other_Control || isBreak || isEmbedding) c = QChar::ReplacementCharacter;
  }
  return text;
}

QString ShownText::sentence(std::string_view text) {
  static const QRegularExpression gap(QStringLiteral("(?<=\\d) (?=(?:bytes|[KMGTP]B)\\b)"),
                                      QRegularExpression::UseUnicodePropertiesOption);
  return plain(text).replace(gap, QString{QChar::Nbsp});
}

double ShownText::share(Bytes part, Bytes whole) {
  return whole < 1 ? 0 : std::clamp(static_cast<double>(part) / static_cast<double>(whole), 0.0, 1.0);
}

}  // namespace spacemint
