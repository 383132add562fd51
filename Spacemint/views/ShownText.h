#pragma once

#include "core/base/Bytes.h"

#include <QString>

#include <string>
#include <string_view>

namespace spacemint {

/// How texts of the model become texts of the interface.
namespace ShownText {

/// The locale of words such as "2 hours ago". All sentences are English, whatever locale formats the numbers.
inline const std::string wordsLocale = "en";

/// A name or a path as it is. Bytes that are not UTF-8 become replacement characters.
QString plain(std::string_view text);

/// The text on one line and in the order of its letters. The name of a file may contain characters that break
/// the line or turn around the letters after them: they become U+FFFD. Pairs of isolates stay; they turn
/// nothing outside of the pair, and a sentence has them around its names.
QString onOneLine(QString text);

/// A sentence in which a line never breaks between a figure and its unit: "1.2 GB" has a no-break space.
QString sentence(std::string_view text);

/// A command in a sentence, which stands between backquotes, gets the quotation marks of the language.
QString withQuotes(QString text);

/// `part` as a share of `whole` for a bar, between 0 and 1; 0 if `whole` is below 1.
double share(Bytes part, Bytes whole);

}  // namespace ShownText

}  // namespace spacemint
