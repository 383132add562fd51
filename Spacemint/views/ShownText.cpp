#include "Spacemint/views/ShownText.h"

#include "core/base/Translation.h"

#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace spacemint {

QString ShownText::plain(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString ShownText::onOneLine(QString text) {
  std::vector<QChar*> open;  // isolates that have not ended
  for (QChar& c : text) {
    const auto kind = c.category();
    const bool isEmbedding = c >= u'\u202A' && c <= u'\u202E';
    const bool isBreak = kind == QChar::Separator_Line || kind == QChar::Separator_Paragraph;
    const bool isStrayEnd = c == u'\u2069' && open.empty();
    if (kind == QChar::Other_Control || isBreak || isEmbedding || isStrayEnd) {
      c = QChar::ReplacementCharacter;
    } else if (c >= u'\u2066' && c <= u'\u2068') {
      open.push_back(&c);
    } else if (c == u'\u2069') {
      open.pop_back();
    }
  }
  for (QChar* const c : open) *c = QChar::ReplacementCharacter;
  return text;
}

QString ShownText::sentence(std::string_view text) {
  static const QRegularExpression gap(QStringLiteral("(?<=\\d) (?=(?:bytes|[KMGTP]B)\\b)"),
                                      QRegularExpression::UseUnicodePropertiesOption);
  return plain(text).replace(gap, QString{QChar::Nbsp});
}

QString ShownText::withQuotes(QString text) {
  // A name in the command is isolated; what is isolated between two commands is no part of one.
  static const QRegularExpression command(
      QStringLiteral("`((?:[^`\u2068\u2069]|\u2068[^`\u2068\u2069]*\u2069)+)`"));
  for (auto found = command.match(text); found.hasMatch(); found = command.match(text)) {
    const std::string quoted =
        i18nc("a command in a sentence", "“{command}”", {{"command", found.captured(1).toStdString()}});
    text.replace(found.capturedStart(), found.capturedLength(), plain(quoted));
  }
  return text;
}

double ShownText::share(Bytes part, Bytes whole) {
  return whole < 1 ? 0 : std::clamp(static_cast<double>(part) / static_cast<double>(whole), 0.0, 1.0);
}

}  // namespace spacemint
