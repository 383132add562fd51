#include "spacemintctl/Question.h"

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
  std::fprintf(stderr, "%s [y/N] ", question.c_str());
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

}  // namespace spacemint::ctl
