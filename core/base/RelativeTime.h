#pragma once

#include "core/base/Date.h"

#include <string>

namespace spacemint {

/// How long ago something happened, in the language of the sentences. `locale` is an ICU locale identifier;
/// in another language, only its region is used, for the format of the number. Any thread.
namespace RelativeTime {

/// "just now" if `date` is less than a minute from `now`; otherwise the text of `age`.
std::string string(Date date, Date now, const std::string& locale);

/// The age in the largest unit of which at least one has passed, such as "1 day ago"; "in 2 hours" for a
/// future date. A month counts as 30 days, a year as 365.
std::string age(Date date, Date now, const std::string& locale);

/// An age that another program said in English, such as "5 months ago" or "About an hour ago", in the
/// language of the sentences. Other text stays as it is.
std::string translated(const std::string& english);

/// The language of the sentences with the region of `locale`, as an ICU locale identifier: words never are in
/// another language than the sentence around them.
std::string localeOfWords(const std::string& locale);

}  // namespace RelativeTime

}  // namespace spacemint
