#include "spacemintctl/Question.h"

#include "core/base/AsciiText.h"
#include "core/base/Translation.h"

#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>

namespace spacemint::ctl {

bool canAsk() {
  return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

bool ask(const std::string& question) {
  tcflush(STDIN_FILENO, TCIFLUSH);
  std::fprintf(stderr, "%s ", i18n("{question} [y/N]", {{"question", question}}).c_str());
  std::string answer;
  std::getline(std::cin, answer);
  // English is understood in every language.
  const std::string yes = i18nc("the letter that answers \"[y/N]\" with yes", "y");
  return answer == "y" || answer == "Y" || answer == "yes" || lowerCased(answer) == yes;
}

}  // namespace spacemint::ctl
