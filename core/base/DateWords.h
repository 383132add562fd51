#pragma once

#include "core/base/Date.h"

#include <string>

namespace spacemint {

/// A date in the words and in the order of the language of the sentences, in the system's time zone.
/// `skeleton` names its parts as ICU does: "dMMM" is "24. Nov." in German and "11月24日" in Japanese. The
/// region of `locale`, an ICU locale identifier, decides about the clock. Any thread.
std::string dateInWords(Date date, const char* skeleton, const std::string& locale);

}  // namespace spacemint
